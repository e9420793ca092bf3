// The device parameters record: defaults and print.
#include <kalvista/IRDeviceParams.h>

#include <cstdio>

#include "sdk/text/NoThrow.h"
#include "sdk/text/TextComposer.h"

namespace ardo {

namespace {

// Without memory for it, the line is lost.
template <typename Value>
void printLine(const char* label, const Value& value) {
  withoutThrowing([&] {
    TextComposer line;
    line << label << value << "\n";
    std::fputs(line.text().c_str(), stdout);
  });
  std::fflush(stdout);
}

void printTextLine(const char* label, const char* text) {
  if (text != nullptr) printLine(label, text);
}

}  // namespace

void IRDeviceParams_InitDefault(IRDeviceParams& params) {
  params.serial = 0;
  params.fov = 0;
  params.opticsText = nullptr;
  params.formatsPath = nullptr;
  params.caliPath = nullptr;
  params.tMin = -20;
  params.tMax = 100;
  params.framerate = 20.0F;
  params.videoFormatIndex = 0;
  params.bispectral = 0;
  params.average = 0;
  params.autoFlag = 1;
  params.minInterval = 15.0F;
  params.maxInterval = 0.0F;
  params.pifInMode = 0;
  params.tChipMode = 0;
  params.tChipFixedValue = 40.0F;
  params.focus = 50.0F;
}

void IRDeviceParams_Print(IRDeviceParams params) {
  printLine("serial: ", params.serial);
  printLine("fov: ", params.fov);
  printTextLine("opticsText: ", params.opticsText);
  printTextLine("formatsPath: ", params.formatsPath);
  printTextLine("caliPath: ", params.caliPath);
  printLine("tMin: ", params.tMin);
  printLine("tMax: ", params.tMax);
  printLine("framerate: ", params.framerate);
  printLine("videoFormatIndex: ", params.videoFormatIndex);
  printLine("bispectral: ", params.bispectral);
  printLine("average: ", params.average);
  printLine("autoFlag: ", params.autoFlag);
  printLine("minInterval: ", params.minInterval);
  printLine("maxInterval: ", params.maxInterval);
  printLine("pifInMode: ", params.pifInMode);
  printLine("tChipMode: ", params.tChipMode);
  printLine("tChipFixedValue: ", params.tChipFixedValue);
}

}  // namespace ardo
