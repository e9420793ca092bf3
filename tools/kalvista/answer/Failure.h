// What a run of the tool can end with.
#ifndef KALVISTA_TOOL_FAILURE_H
#define KALVISTA_TOOL_FAILURE_H

#include <stdexcept>
#include <string>

namespace tool {

enum class ExitCode : int { Done = 0, AnswerIsNo = 1, WrongUsage = 2, CouldNot = 3 };

// The end of a command that cannot go on. Its text is one sentence: what went wrong, with which
// path or value, and what to do.
class Failure : public std::runtime_error {
 public:
  Failure(ExitCode exitCode, const std::string& sentence)
      : std::runtime_error(sentence), exitCode_(exitCode) {}
  ExitCode exitCode() const { return exitCode_; }

 private:
  ExitCode exitCode_;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_FAILURE_H
