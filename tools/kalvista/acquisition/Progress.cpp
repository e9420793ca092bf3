#include "acquisition/Progress.h"

#include <cmath>
#include <cstdio>
#include <string>

#include "answer/Console.h"
#include "answer/Output.h"

namespace tool {
namespace {

constexpr std::chrono::milliseconds kInterval(200);

}  // namespace

Progress::~Progress() { showProgress(""); }

void Progress::show(std::size_t filesDone, std::uintmax_t bytes) {
  const Clock::time_point now = Clock::now();
  if (now - shown_ < kInterval) return;
  shown_ = now;
  const double seconds = std::chrono::duration<double>(now - begin_).count();
  std::string text =
      std::to_string(filesDone) + " of " + countText(files_, "file") + ", " + bytesText(bytes) +
      ", " + bytesText(static_cast<std::uintmax_t>(static_cast<double>(bytes) / seconds)) + "/s";
  if (filesDone > 0 && filesDone < files_) {
    const double rest =
        seconds * static_cast<double>(files_ - filesDone) / static_cast<double>(filesDone);
    text += ", " + countText(static_cast<std::size_t>(std::ceil(rest)), "second") + " left";
  }
  showProgress(text);
}

}  // namespace tool
