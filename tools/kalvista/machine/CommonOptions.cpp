#include "machine/CommonOptions.h"

#include "machine/Paths.h"

namespace tool {

void requireCalibrationDir(const CommonOptions& common) {
  requireDirectory(common.calibrationDir, "calibration directory");
}

void requireWorkableCalibrationDir(const CommonOptions& common) {
  refuseShellCharacters(common.calibrationDir, "calibration directory");
  requireCalibrationDir(common);
}

}  // namespace tool
