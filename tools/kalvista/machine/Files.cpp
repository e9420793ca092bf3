#include "machine/Files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "answer/Console.h"
#include "answer/Failure.h"
#include "machine/Paths.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestInput = 256U << 20U;

[[noreturn]] void failToWrite(const std::string& path, const std::string& reason) {
  throw Failure(ExitCode::CouldNot, "the file " + path + " cannot be written: " + reason +
                                        "; check permissions and free space, or name another file");
}

// Gives the file its name where nothing has that name yet. File systems without hard links leave a
// moment between the look and the renaming.
bool nameUnlessTaken(const std::string& from, const std::string& to) {
  if (link(from.c_str(), to.c_str()) == 0) return unlink(from.c_str()) == 0;
  if (faccessat(AT_FDCWD, to.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
    errno = EEXIST;
    return false;
  }
  return rename(from.c_str(), to.c_str()) == 0;
}

// A hidden name beside others that nobody can take beforehand.
std::string unguessableName(const std::string& directory) {
  std::uint64_t number = 0;
  while (getrandom(&number, sizeof number, 0) != sizeof number) {
  }
  return directory + "/" + std::string(kWorkPrefix) + std::to_string(number) + ".part";
}

// A file that is to be written and named; `name` is empty as long as it has none.
int openNewFile(const std::string& directory, std::string* name) {
  if (access("/proc/self/fd", X_OK) == 0) {
    const int file = open(directory.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kOrdinaryFileMode);
    if (file >= 0) return file;
  }
  *name = unguessableName(directory);
  return open(name->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kOrdinaryFileMode);
}

bool linkTo(const Descriptor& file, const std::string& path) {
  return linkat(AT_FDCWD, pathOf(file).c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

// Nothing links over a file: what replaces one has another name for a moment.
bool giveName(const Descriptor& file, std::string* work, const std::string& path, bool replace) {
  const bool isUnnamed = work->empty();
  if (isUnnamed && !replace) return linkTo(file, path);
  if (isUnnamed) *work = unguessableName(parentOf(path));
  return (!isUnnamed || linkTo(file, *work)) &&
         (replace ? rename(work->c_str(), path.c_str()) == 0 : nameUnlessTaken(*work, path));
}

// As far as this user may give files away.
void keepOwnerAndMode(const Descriptor& file, const struct stat& former) {
  const bool given = fchown(file.number(), former.st_uid, former.st_gid) == 0;
  fchmod(file.number(), former.st_mode & (given ? kAllModes : kOrdinaryFileMode));
}

}  // namespace

bool Descriptor::close() {
  const int number = std::exchange(number_, -1);
  return number < 0 || ::close(number) == 0;
}

std::string readFile(const std::string& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return "";
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

bool isDiskFull(int reason) { return reason == ENOSPC || reason == EDQUOT; }

std::string readStandardInput() {
  std::string content;
  char block[65536];
  for (;;) {
    const ssize_t count = read(STDIN_FILENO, block, sizeof block);
    if (count == 0) return content;
    if (count == -1) {
      throw Failure(ExitCode::CouldNot, std::string("standard input cannot be read: ") +
                                            std::strerror(errno) + "; check where it comes from");
    }
    content.append(block, static_cast<std::size_t>(count));
    if (content.size() > kLongestInput) {
      throw Failure(ExitCode::CouldNot, "standard input is longer than " +
                                            std::to_string(kLongestInput >> 20U) +
                                            " MB; check where it comes from");
    }
  }
}

mode_t userMask() {
  const mode_t mask = umask(0);
  umask(mask);
  return mask;
}

std::string pathOf(const Descriptor& file) {
  return "/proc/self/fd/" + std::to_string(file.number());
}

MemoryFile::MemoryFile(std::string_view content) : file_(memfd_create("kalvista", MFD_CLOEXEC)) {
  if (file_.isOpen() && writeAll(file_.number(), content)) return;
  throw Failure(ExitCode::CouldNot, std::string("memory for a document cannot be had: ") +
                                        std::strerror(errno) + "; end other programs");
}

void writeFileWhole(const std::string& path, std::string_view content, bool replace) {
  std::string work;
  const Descriptor file(openNewFile(parentOf(path), &work));
  if (!file.isOpen()) failToWrite(path, std::strerror(errno));
  struct stat former {};
  if (replace && stat(path.c_str(), &former) == 0) keepOwnerAndMode(file, former);
  if (writeAll(file.number(), content) && fsync(file.number()) == 0 &&
      giveName(file, &work, path, replace)) {
    return;
  }
  const std::string reason = std::strerror(errno);
  unlink(work.c_str());
  failToWrite(path, reason);
}

}  // namespace tool
