// IRCalibrationManager: the optics of a camera, for applications.
#include <kalvista/Cali.h>
#include <kalvista/IRCalibrationManager.h>

#include "imgproc/CaliModel.h"
#include "imgproc/FirstMatch.h"
#include "imgproc/WholeDegrees.h"
#include "sdk/text/NoThrow.h"

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

std::vector<IROptics> describeAll(const OpticsList& list) {
  std::vector<IROptics> descriptions;
  cali::FirstOptics firstOptics;
  for (int i = 0; i < list.count; ++i) {
    const OpticsDef& optics = *list.items[i];
    descriptions.push_back(describeOptics(optics, firstOptics.sameKeyAs(optics)));
  }
  return descriptions;
}

}  // namespace

std::vector<IROptics>* IRCalibrationManager::getAvailableOptics(unsigned long serial) {
  if (serial == 0 || _optics == nullptr) return _optics;
  *_optics = withoutThrowing(std::vector<IROptics>(), [&] {
    ConfigCali& calibration = cali::instance();
    const int number = static_cast<int>(serial);
    if (!calibration.isLoaded(number)) calibration.load(_calibrationDir, number);
    return describeAll(*calibration.opticsList);
  });
  return _optics;
}

}  // namespace ardo
