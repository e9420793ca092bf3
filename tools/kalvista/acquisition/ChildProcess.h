// A call of the library in a process of its own, with its output captured and a limit on its time.
#ifndef KALVISTA_TOOL_CHILD_PROCESS_H
#define KALVISTA_TOOL_CHILD_PROCESS_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace tool {

struct ChildLimits {
  // The child and all that it started are killed when neither output nor progress was seen for so
  // long.
  std::chrono::seconds silence{};
  std::function<std::uintmax_t()> progress;  // any number that changes while work is done
  bool showOutput = false;                   // at once, on standard error, besides capturing it
};

struct ChildResult {
  bool succeeded = false;  // the call returned true
  bool timedOut = false;
  std::string output;  // standard output and standard error; the end of it when it is very long
};

ChildResult callInChild(const std::function<bool()>& call, const ChildLimits& limits);

}  // namespace tool

#endif  // KALVISTA_TOOL_CHILD_PROCESS_H
