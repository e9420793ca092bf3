// The reader of the device configuration file. The input is the file.
#include <kalvista/IRDeviceParams.h>

#include "Oracle.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ardo::IRDeviceParams params{};
  const std::string file = oracle::writeScratchFile("imager.xml", std::string(data, data + size));
  ardo::IRDeviceParamsReader::readXML(file.c_str(), params);
  for (const char* text : {params.opticsText, params.caliPath, params.formatsPath}) delete[] text;
  return 0;
}
