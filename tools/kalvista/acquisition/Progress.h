// How far an acquisition is, for the person at the terminal.
#ifndef KALVISTA_TOOL_PROGRESS_H
#define KALVISTA_TOOL_PROGRESS_H

#include <chrono>
#include <cstdint>

namespace tool {

// One line on standard error that is written over; it goes with the object.
class Progress {
 public:
  explicit Progress(std::size_t files) : files_(files) {}
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Shows at most some lines a second.
  void show(std::size_t filesDone, std::uintmax_t bytes);

 private:
  using Clock = std::chrono::steady_clock;

  std::size_t files_;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point shown_ = begin_;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_PROGRESS_H
