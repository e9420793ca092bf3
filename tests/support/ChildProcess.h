// Runs a piece of code in a child process, so that its user and its crashes stay in there.
#ifndef KALVISTA_TESTS_SUPPORT_CHILD_PROCESS_H
#define KALVISTA_TESTS_SUPPORT_CHILD_PROCESS_H

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

namespace support {

// In a process that ends at once, with what the body gives, or 128 and the signal's number when it
// was killed.
template <typename Body>
int inChildProcess(Body body) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    const int status = static_cast<int>(body());
    std::fflush(nullptr);
    _exit(status);
  }
  int status = 0;
  if (waitpid(child, &status, 0) != child) return -1;
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

// As the user "nobody", for whom permissions count, or as whoever runs the tests without being
// root.
template <typename Body>
int asUnprivilegedUser(Body body) {
  static constexpr unsigned int kNobody = 65534;
  static constexpr int kNoSuchUser = 125;
  return inChildProcess([&body] {
    const bool isRoot = geteuid() == 0;
    if (isRoot && (setgroups(0, nullptr) + setgid(kNobody) + setuid(kNobody)) != 0) {
      return kNoSuchUser;
    }
    return static_cast<int>(body());
  });
}

}  // namespace support

#endif  // KALVISTA_TESTS_SUPPORT_CHILD_PROCESS_H
