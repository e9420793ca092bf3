#include "sdk/text/OpenForReading.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace ardo {

namespace {

// The file is held by a descriptor that does not open it, so that it is the one that was looked at,
// and opened through the name that the kernel gives to the descriptor.
int waitForLease(const char* path) {
  const int held = open(path, O_PATH | O_CLOEXEC);
  if (held < 0) return held;
  struct stat status {};
  int descriptor = -1;
  if (fstat(held, &status) == 0 && S_ISREG(status.st_mode)) {
    char name[32];
    std::snprintf(name, sizeof name, "/proc/self/fd/%d", held);
    do {
      descriptor = open(name, O_RDONLY | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
  }
  close(held);
  return descriptor;
}

}  // namespace

int openForReading(const char* path) {
  const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  return descriptor < 0 && errno == EWOULDBLOCK ? waitForLease(path) : descriptor;
}

}  // namespace ardo
