// IRCalibrationManager: the optics of a camera, for applications.
#include <kalvista/Cali.h>
#include <kalvista/IRCalibrationManager.h>

#include "imgproc/FirstMatch.h"
#include "imgproc/WholeDegrees.h"

namespace ardo {

namespace {

IROptics describeOptics(const OpticsDef& optics, const OpticsDef& firstOfKey) {
  IROptics description;
  description.fov = optics.FOV;
  if (optics.Text != nullptr) description.text = optics.Text;
  for (int i = 0; i < firstOfKey.rangeCount; ++i) {
    const TemperatureRange& range = *firstOfKey.ranges[i];
    description.tempRanges.push_back(
        {cali::wholeDegrees(range.TempLo), cali::wholeDegrees(range.TempHi)});
  }
  return description;
}

}  // namespace

std::vector<IROptics>* IRCalibrationManager::getAvailableOptics(unsigned long serial) {
  if (serial == 0) return _optics;
  ConfigCali& calibration = *ConfigCali::getInstance();
  const int number = static_cast<int>(serial);
  if (!calibration.isLoaded(number)) calibration.load(_calibrationDir, number);

  _optics->clear();
  cali::FirstOptics firstOptics;
  const OpticsList& list = *calibration.opticsList;
  for (int i = 0; i < list.count; ++i) {
    const OpticsDef& optics = *list.items[i];
    _optics->push_back(describeOptics(optics, firstOptics.sameKeyAs(optics)));
  }
  return _optics;
}

}  // namespace ardo
