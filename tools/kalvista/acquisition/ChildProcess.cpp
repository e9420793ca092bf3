#include "acquisition/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "answer/Console.h"
#include "answer/Failure.h"
#include "machine/Files.h"

namespace tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kOutputKept = 65536;
constexpr int kLookIntervalMilliseconds = 200;

[[noreturn]] void failToStart() {
  throw Failure(ExitCode::CouldNot, std::string("no further process can be started: ") +
                                        std::strerror(errno) + "; end others and try again");
}

[[noreturn]] void runChild(const std::function<bool()>& call, int output, pid_t parent) {
  // The group is what a time limit kills; the signal is for a parent that is killed itself.
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(EXIT_FAILURE);
  Descriptor nothing(open("/dev/null", O_RDONLY | O_CLOEXEC));
  dup2(nothing.number(), STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(output, STDERR_FILENO);
  bool succeeded = false;
  try {
    succeeded = call();
  } catch (const std::exception& exception) {
    complain(exception.what());
  }
  _exit(succeeded ? EXIT_SUCCESS : EXIT_FAILURE);
}

// Reads until all holders of the other end have ended; false when they were silent for too long.
bool readToEnd(int input, const ChildLimits& limits, std::string* output) {
  auto lastSign = Clock::now();
  std::uintmax_t lastProgress = limits.progress();
  for (;;) {
    pollfd watched{input, POLLIN, 0};
    if (poll(&watched, 1, kLookIntervalMilliseconds) > 0) {
      char block[4096];
      const ssize_t count = read(input, block, sizeof block);
      if (count == 0 || (count < 0 && errno != EINTR)) return true;
      const std::string_view text(block, count < 0 ? 0 : static_cast<std::size_t>(count));
      if (limits.showOutput) quote(text);
      output->append(text);
      if (output->size() > 2 * kOutputKept) output->erase(0, output->size() - kOutputKept);
      lastSign = Clock::now();
    }
    const std::uintmax_t progress = limits.progress();
    if (progress != lastProgress) lastSign = Clock::now();
    lastProgress = progress;
    if (Clock::now() - lastSign > limits.silence) return false;
  }
}

}  // namespace

ChildResult callInChild(const std::function<bool()>& call, const ChildLimits& limits) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) failToStart();
  Descriptor input(ends[0]);
  Descriptor output(ends[1]);
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) failToStart();
  if (child == 0) runChild(call, output.number(), parent);
  // Both sides set the group, so that it is there whoever comes first.
  setpgid(child, child);
  output.close();

  ChildResult result;
  result.timedOut = !readToEnd(input.number(), limits, &result.output);
  if (result.timedOut) kill(-child, SIGKILL);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  result.succeeded = WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
  return result;
}

}  // namespace tool
