// What every command is told: where the files of cameras lie, and how to answer.
#ifndef KALVISTA_TOOL_COMMON_OPTIONS_H
#define KALVISTA_TOOL_COMMON_OPTIONS_H

#include <string>

namespace tool {

struct CommonOptions {
  std::string calibrationDir;
  std::string formatsDir;
  bool json = false;
  std::string verbosity;
  std::string logFile;  // empty for none

  bool isDebug() const { return verbosity == "debug"; }
};

// The calibration directory, as one that exists.
void requireCalibrationDir(const CommonOptions& common);

}  // namespace tool

#endif  // KALVISTA_TOOL_COMMON_OPTIONS_H
