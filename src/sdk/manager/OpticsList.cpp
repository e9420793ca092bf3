// IRCalibrationManager: the optics of a camera, for applications.
#include <kalvista/Cali.h>
#include <kalvista/IRCalibrationManager.h>

#include <memory>

#include "imgproc/WholeDegrees.h"

namespace ardo {

namespace {

// The ranges are those of the first optics with this field of view and text.
IROptics describeOptics(ConfigCali& calibration, OPTICS& key) {
  IROptics optics;
  optics.fov = key.FOV;
  if (key.Text != nullptr) optics.text = key.Text;
  for (int i = 0; i < calibration.getTempRangeCount(&key); ++i) {
    const std::unique_ptr<Range> range(calibration.getTempRange(&key, i));
    optics.tempRanges.push_back(
        {cali::wholeDegrees(range->TempLo), cali::wholeDegrees(range->TempHi)});
  }
  return optics;
}

}  // namespace

std::vector<IROptics>* IRCalibrationManager::getAvailableOptics(unsigned long serial) {
  if (serial == 0) return _optics;
  ConfigCali& calibration = *ConfigCali::getInstance();
  const int number = static_cast<int>(serial);
  if (!calibration.isLoaded(number)) calibration.load(_calibrationDir, number);

  _optics->clear();
  for (int i = 0; i < calibration.getOpticsCount(); ++i) {
    const std::unique_ptr<OPTICS> key(calibration.getOptics(i));
    _optics->push_back(describeOptics(calibration, *key));
  }
  return _optics;
}

}  // namespace ardo
