// SIGINT, SIGTERM and SIGHUP in the middle of work that must clear up behind itself.
#ifndef KALVISTA_TOOL_INTERRUPTION_H
#define KALVISTA_TOOL_INTERRUPTION_H

#include <signal.h>

#include <chrono>
#include <exception>

namespace tool {

// Thrown where the work looks for a signal.
class Interruption : public std::exception {
 public:
  const char* what() const noexcept override { return "interrupted by a signal"; }
};

// While it lives, the signals wait. They act when it goes: after what stands below it was cleared
// up, the process ends as the signal ends it.
class SignalHold {
 public:
  SignalHold();
  ~SignalHold();
  SignalHold(const SignalHold&) = delete;
  SignalHold& operator=(const SignalHold&) = delete;

 private:
  sigset_t former_{};
};

bool isInterrupted();
void throwIfInterrupted();
// Throws, too.
void pauseFor(std::chrono::milliseconds time);

}  // namespace tool

#endif  // KALVISTA_TOOL_INTERRUPTION_H
