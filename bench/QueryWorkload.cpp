#include <kalvista/Cali.h>
#include <kalvista/IRCalibrationManager.h>

#include <memory>

#include "CalibrationFiles.h"
#include "Files.h"
#include "Workloads.h"

namespace bench {
namespace {

constexpr int kSerial = 6001;
constexpr int kHalfSerial = 6002;
constexpr int kFewSerial = 6003;
constexpr int kManyOptics = 8000;

ardo::IRCalibrationManager& manager() { return *ardo::IRCalibrationManager::getInstance(); }

using Call = std::size_t (*)(int serial);

std::size_t check(int serial) {
  const auto number = static_cast<unsigned long>(serial);
  const std::unique_ptr<char[]> list(manager().checkCalibration(number));
  return list != nullptr ? std::string_view(list.get()).size() : 0;
}

std::size_t listOptics(int serial) {
  return manager().getAvailableOptics(static_cast<unsigned long>(serial))->size();
}

std::size_t generate(int serial) {
  return manager().generateConfiguration(static_cast<unsigned long>(serial)).size();
}

// Each call begins with loading its calibration, in place of a small one, so that none inherits
// memory from the larger one before it.
void measureGrowth(Bench& bench, Table& table, const char* name, Call call) {
  const auto forget = [] { keep(listOptics(kFewSerial)); };
  const Timings timings = compete({{kLibrary, [call] { keep(call(kSerial)); }, 1, forget},
                                   {kHalf, [call] { keep(call(kHalfSerial)); }, 1, forget}},
                                  bench.quick ? Effort{1, 0} : Effort{9, 0});
  bench.report.measured("query growth", ratio(timings, kLibrary, kHalf));
  addTimings(table, name, timings);
}

std::size_t sumFramerates(const ConfigCali& calibration) {
  std::size_t sum = 0;
  for (int i = 0; i < calibration.opticsList->count; ++i) {
    const OpticsDef& optics = *calibration.opticsList->items[i];
    OPTICS key{optics.FOV, optics.Text};
    for (int j = 0; j < optics.rangeCount; ++j) {
      Range range{optics.ranges[j]->TempLo, optics.ranges[j]->TempHi};
      for (int k = 0; k < optics.ranges[j]->framerateCount; ++k) {
        sum += calibration.getFramerate(&key, &range, k);
      }
    }
  }
  return sum;
}

void measureFramerates(Bench& bench) {
  constexpr int kFramerates = 2 * 3 * 3;
  ConfigCali calibration;
  require(calibration.load(bench.folder.c_str(), kFewSerial) == 0, "ConfigCali::load fails");
  const Timings timings =
      compete({{kLibrary, [&calibration] { keep(sumFramerates(calibration)); }, kFramerates}},
              bench.shortWork());
  bench.report.measured("framerate", timings.front().median * 1e9);
  Table table{"Looking up a frame rate", {}, {}};
  addTimings(table, "getFramerate", timings);
  bench.report.add(table);
}

}  // namespace

void benchQueries(Bench& bench) {
  manager().setCalibrationDir(bench.folder.c_str());
  const int optics = bench.count(kManyOptics);
  writeCalibration(bench.folder, kSerial, calibrationText(Kind::Distinct, optics));
  writeCalibration(bench.folder, kHalfSerial, calibrationText(Kind::Distinct, optics / 2));
  writeCalibration(bench.folder, kFewSerial, calibrationText(Kind::Full, 2));
  Table table{"Calls on " + std::to_string(optics) + " optics, loading them included", {}, {}};
  measureGrowth(bench, table, "checkCalibration, all missing", check);
  measureGrowth(bench, table, "getAvailableOptics", listOptics);
  measureGrowth(bench, table, "generateConfiguration", generate);
  bench.report.add(table);
  measureFramerates(bench);
}

}  // namespace bench
