#include "machine/CommonOptions.h"

#include "machine/Paths.h"

namespace tool {

void requireCalibrationDir(const CommonOptions& common) {
  requireDirectory(common.calibrationDir, "calibration directory");
}

}  // namespace tool
