// The reader of the device configuration file. The input is the file.
#include <kalvista/IRDeviceParams.h>

#include <string>

#include "Comparison.h"
#include "Harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string file = oracle::writeScratchFile("imager.xml", std::string(data, data + size));
  ardo::IRDeviceParams params{};
  ardo::IRDeviceParamsReader::readXML(file.c_str(), params);
  delete[] params.opticsText;
  delete[] params.caliPath;
  delete[] params.formatsPath;
  return 0;
}
