// The calibration loader, all queries on what it loaded, and the file check. The input is the
// calibration file.
#include <kalvista/Cali.h>
#include <kalvista/IRCalibrationManager.h>

#include <memory>
#include <string>

#include "Comparison.h"
#include "Harness.h"

namespace {

// Indexes run one past the ends: what is not there must be answered as well.
void queryRange(ConfigCali& cali, OPTICS& optics, int index) {
  const std::unique_ptr<Range> range(cali.getTempRange(&optics, index));
  const std::unique_ptr<Range> byValue(cali.getTempRange(optics.FOV, optics.Text, index));
  const std::unique_ptr<Range> extended(cali.getExtendedTempRange(&optics, index));
  const std::unique_ptr<Range> extendedByValue(
      cali.getExtendedTempRange(optics.FOV, optics.Text, index));
  Range key = range ? *range : Range{0.0F, 100.0F};
  const std::unique_ptr<Range> extendedByKey(
      cali.getExtendedTempRange(optics.FOV, optics.Text, key.TempLo, key.TempHi));
  cali.getTempRangeIndex(&optics, &key);
  cali.getTempRangeDecimal(optics.FOV, optics.Text, key.TempLo, key.TempHi);
  const int count = cali.getFramerateCount(&optics, &key);
  for (int k = -1; k <= count; ++k) {
    FR rate = cali.getFramerate(&optics, &key, k);
    cali.getFramerateIndex(optics.FOV, optics.Text, key.TempLo, key.TempHi, rate);
    cali.checkFramerate(&optics, &key, rate);
    char name[64];
    cali.caliFilenameString(1, optics.FOV, optics.Text, &key, rate, name, sizeof name);
  }
}

void queryOptics(ConfigCali& cali, int index) {
  const std::unique_ptr<OPTICS> optics(cali.getOptics(index));
  OPTICS key = optics ? *optics : OPTICS{30, nullptr};
  cali.getOpticsIndex(&key);
  cali.getOpticsIndex(key.FOV, key.Text);
  const std::unique_ptr<Range> overAll(cali.getTempRangeOverAll(&key));
  const int ranges = cali.getTempRangeCount(&key);
  for (int j = -1; j <= ranges; ++j) queryRange(cali, key, j);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The loader reads nothing for a serial that is loaded already.
  static unsigned long serial = 1;
  serial = 3 - serial;
  oracle::writeScratchFile("Cali-" + std::to_string(serial) + ".xml",
                           std::string(data, data + size));
  ardo::IRCalibrationManager& manager = *ardo::IRCalibrationManager::getInstance();
  manager.setCalibrationDir(oracle::scratchFolder().c_str());
  const std::unique_ptr<char[]> missing(manager.checkCalibration(serial));
  manager.getAvailableOptics(serial);
  ConfigCali& cali = *ConfigCali::getInstance();
  for (int i = -1; i <= cali.getOpticsCount(); ++i) queryOptics(cali, i);
  const std::unique_ptr<Range> overAll(cali.getTempRangeOverAll());
  return 0;
}
