#include "machine/LogFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "answer/Failure.h"
#include "machine/Files.h"

namespace tool {
namespace {

constexpr int kAppend = O_WRONLY | O_APPEND | O_NOFOLLOW | O_CLOEXEC;

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
  throw Failure(ExitCode::CouldNot, "the log file " + path + " cannot be opened: " + reason +
                                        "; check that its directory exists and that you may write "
                                        "there, or name another file");
}

// A pipe of a stranger must not hold the tool up.
int openExisting(const std::string& path) { return open(path.c_str(), kAppend | O_NONBLOCK); }

bool isOwnFile(const Descriptor& file) {
  struct stat status {};
  return fstat(file.number(), &status) == 0 && S_ISREG(status.st_mode) &&
         status.st_uid == geteuid() && status.st_nlink == 1;
}

}  // namespace

void addLogFile(brivex::Logger& log) {
  const std::string& path = log.filename;
  const int made = open(path.c_str(), kAppend | O_CREAT | O_EXCL, kOrdinaryFileMode);
  const bool exists = made < 0 && errno == EEXIST;
  const Descriptor file(exists ? openExisting(path) : made);
  if (!file.isOpen()) refuse(path, errno == ELOOP ? "it is a link" : std::strerror(errno));
  if (exists && !isOwnFile(file)) refuse(path, "it belongs to someone else");
  // By the open file, not by its name: another file may have that by now.
  log.stream.open(pathOf(file), std::ios::out | std::ios::app);
  if (!log.stream.is_open()) refuse(path, std::strerror(errno));
  log.fileLevel = log.consoleLevel;
  log.conf = brivex::LOGGER_FILE_ON + (log.conf & brivex::LOGGER_CONSOLE_ON);
}

}  // namespace tool
