// Writes the sample and a hundred generated calibration files into a folder, each under its serial,
// and prints what the queries answer about every one: a line of JSON for each file.
#include <kalvista/Cali.h>
#include <kalvista/IRCalibrationManager.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "CalibrationFiles.h"

namespace {

void printRange(ConfigCali& calibration, OPTICS& optics, int index) {
  const std::unique_ptr<Range> range(calibration.getTempRange(&optics, index));
  const std::unique_ptr<Range> extended(calibration.getExtendedTempRange(&optics, index));
  const TemperatureRange& own =
      *calibration.opticsList->items[calibration.getOpticsIndex(&optics)]->ranges[index];
  std::printf("%s[%.17g, %.17g, %.17g, %.17g, %d, [", index == 0 ? "" : ", ", range->TempLo,
              range->TempHi, extended->TempLo, extended->TempHi, own.Decimal);
  const int count = calibration.getFramerateCount(&optics, range.get());
  for (int i = 0; i < count; ++i) {
    std::printf("%s%d", i == 0 ? "" : ", ", calibration.getFramerate(&optics, range.get(), i));
  }
  const TableParams& table = *own.tableParams;
  std::printf("], [%d, %.17g, %.17g, %d, %d, %.17g]]", table.Normalize ? 1 : 0, table.T1, table.T3,
              table.E1, table.E3, table.Lambda);
}

void printMain(const MainSection& m) {
  std::printf("[%d, %d, %d, %d", m.TecA, m.TecB, m.TecC, m.TecD);
  for (const float value :
       {m.TempTEC_Step, m.TempTECOffset, m.TempTECGain, m.TempFlagOffset, m.TempChipFactor,
        m.TempChipOffset, m.TempBoxOffset, m.TempOpticsOffset, m.TempProcOffset, m.TempHouseOffset,
        m.PifInOffset, m.PifInGain, m.PifOutOffset, m.PifOutGain}) {
    std::printf(", %.17g", value);
  }
  std::printf(", %d, %.17g, %d, %d, %.17g, %.17g]", m.AddedOffset, m.BindTempChipToTempFlagOffset,
              m.FlagCycles, m.FlagCycles_Ignore, m.AlphaLowTemp, m.AlphaLowFactor);
}

void print(const std::string& folder, int serial) {
  ConfigCali calibration;
  if (calibration.load(folder.c_str(), serial) != 0) return;
  std::printf("[%d, ", serial);
  printMain(*calibration.mainSection);
  std::printf(", [");
  for (int i = 0; i < calibration.getOpticsCount(); ++i) {
    const std::unique_ptr<OPTICS> key(calibration.getOptics(i));
    if (calibration.getOpticsIndex(key.get()) != i)
      continue;  // the queries see the first of its kind
    const OpticsDef& own = *calibration.opticsList->items[i];
    std::printf("%s[%d, \"%s\", %d, %d, [", i == 0 ? "" : ", ", key->FOV,
                key->Text != nullptr ? key->Text : "", own.SerNo, own.SamplePointCali ? 1 : 0);
    for (int j = 0; j < calibration.getTempRangeCount(key.get()); ++j)
      printRange(calibration, *key, j);
    std::printf("]]");
  }
  ardo::IRCalibrationManager& manager = *ardo::IRCalibrationManager::getInstance();
  manager.setCalibrationDir(folder.c_str());
  const std::unique_ptr<char[]> missing(
      manager.checkCalibration(static_cast<unsigned long>(serial)));
  std::printf("], \"%s\"]\n", missing ? missing.get() : "");
}

// Optics and ranges alike: queries and file names see the first one of each.
constexpr const char* kTwins =
    "<CaliData>\n<Temperature><Optics>\n"
    "<OpticsDef><FOV>33</FOV><TempRanges>\n"
    "<TemperatureRange><TempLo>0</TempLo><TempHi>100</TempHi><Framerates>\n"
    "<Framerate><FR>27</FR></Framerate></Framerates></TemperatureRange>\n"
    "<TemperatureRange><TempLo>0</TempLo><TempHi>100</TempHi></TemperatureRange>\n"
    "</TempRanges></OpticsDef>\n"
    "<OpticsDef><FOV>33</FOV><SamplePointCali>true</SamplePointCali><TempRanges>\n"
    "<TemperatureRange><TempLo>5</TempLo><TempHi>9</TempHi></TemperatureRange>\n"
    "</TempRanges></OpticsDef>\n"
    "</Optics></Temperature>\n</CaliData>\n";

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 2;
  const std::string folder = arguments[1];
  constexpr int kSample = 12345678;
  std::filesystem::copy_file(std::string(arguments[2]) + "/Cali-12345678.xml",
                             folder + "/Cali-12345678.xml");
  print(folder, kSample);
  for (int i = 0; i <= 100; ++i) {
    const auto kind = static_cast<bench::Kind>(i % 4);
    bench::writeCalibration(folder, i, i < 100 ? bench::calibrationText(kind, 1 + i / 4) : kTwins);
    print(folder, i);
  }
}
