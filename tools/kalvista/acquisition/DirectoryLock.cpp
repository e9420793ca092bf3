#include "acquisition/DirectoryLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/vfs.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "answer/Console.h"
#include "answer/Failure.h"
#include "machine/Interruption.h"

namespace tool {
namespace {

constexpr unsigned long kNetworkFileSystems[] = {0x6969UL, 0x517BUL, 0xFF534D42UL, 0xFE534D42UL};
constexpr std::chrono::milliseconds kLookInterval(100);

bool liesOnTheNetwork(int directory) {
  struct statfs system {};
  fstatfs(directory, &system);
  const auto type = static_cast<unsigned int>(system.f_type);
  return std::find(std::begin(kNetworkFileSystems), std::end(kNetworkFileSystems), type) !=
         std::end(kNetworkFileSystems);
}

}  // namespace

DirectoryLock::DirectoryLock(const std::string& directory)
    : directory_(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
      isHeld_(directory_.isOpen() && !liesOnTheNetwork(directory_.number())) {
  if (!directory_.isOpen()) {
    throw Failure(ExitCode::CouldNot, "the directory " + directory + " cannot be opened: " +
                                          std::strerror(errno) + "; check its permissions");
  }
  if (isHeld_) {
    wait(directory);
    return;
  }
  warn("the directory " + directory +
       " lies on a network file system, where runs do not keep each other out: let one run after "
       "the other write there");
}

void DirectoryLock::wait(const std::string& directory) const {
  bool isTold = false;
  while (flock(directory_.number(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK) {
      throw Failure(ExitCode::CouldNot, "the directory " + directory + " cannot be locked: " +
                                            std::strerror(errno) + "; use another one");
    }
    if (!isTold) note("another run works in " + directory + "; waiting for its end");
    isTold = true;
    pauseFor(kLookInterval);
  }
}

}  // namespace tool
