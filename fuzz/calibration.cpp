// The calibration loader, its queries on what it loaded, and the file check. The input is the
// calibration file.
#include <kalvista/Cali.h>
#include <kalvista/IRCalibrationManager.h>

#include <memory>

#include "Oracle.h"

namespace {

void queryRange(ConfigCali& cali, OPTICS& optics, int index) {
  const std::unique_ptr<Range> range(cali.getTempRange(&optics, index));
  Range key = range ? *range : Range{0.0F, 100.0F};
  delete cali.getExtendedTempRange(optics.FOV, optics.Text, key.TempLo, key.TempHi);
  cali.getTempRangeDecimal(optics.FOV, optics.Text, key.TempLo, key.TempHi);
  for (int k = -1; k <= cali.getFramerateCount(&optics, &key); ++k) {
    FR rate = cali.getFramerate(&optics, &key, k);
    cali.checkFramerate(&optics, &key, rate);
    char name[64];
    cali.caliFilenameString(1, optics.FOV, optics.Text, &key, rate, name, sizeof name);
  }
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
  // Indexes run one past the ends: what is not there must be answered as well.
  for (int i = -1; i <= cali.getOpticsCount(); ++i) {
    const std::unique_ptr<OPTICS> optics(cali.getOptics(i));
    OPTICS key = optics ? *optics : OPTICS{30, nullptr};
    delete cali.getTempRangeOverAll(&key);
    for (int j = -1; j <= cali.getTempRangeCount(&key); ++j) queryRange(cali, key, j);
  }
  delete cali.getTempRangeOverAll();
  return 0;
}
