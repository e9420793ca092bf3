#include <kalvista/Cali.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "Files.h"
#include "Workloads.h"

namespace bench {
namespace {

constexpr int kCapacity = 260;
constexpr int kOperations = 1000;
constexpr int kSerial = 1234;
constexpr const char* kFloor = "snprintf";

struct Combination {
  int fov;
  char text[8];
  float tMin, tMax;
  unsigned short framerate;
};

using Combinations = std::vector<Combination>;

Combinations combinations() {
  return {{33, "T", -20, 100, 32}, {62, "wide", 0, 250, 80}, {90, "", 150, 900, 27}};
}

void writeByLibrary(ConfigCali& calibration, Combination& each, char* name) {
  calibration.caliFilenameString(kSerial, each.fov, each.text, each.tMin, each.tMax, each.framerate,
                                 name, kCapacity);
}

const char* marker(float temperature) { return temperature < 0 ? "M" : ""; }
int magnitude(float temperature) { return std::abs(static_cast<int>(temperature)); }

void writeBySnprintf(const Combination& each, char* name) {
  std::snprintf(name, kCapacity, "%i-%i%s%s-%s%i-%s%i-%i", kSerial, each.fov,
                each.text[0] == '\0' ? "" : "-", each.text, marker(each.tMin), magnitude(each.tMin),
                marker(each.tMax), magnitude(each.tMax), each.framerate);
}

void verify(ConfigCali& calibration, Combinations& all) {
  for (Combination& each : all) {
    char one[kCapacity];
    char other[kCapacity];
    writeByLibrary(calibration, each, one);
    writeBySnprintf(each, other);
    require(std::string(one) == other,
            std::string("caliFilenameString gives ") + one + ", not " + other);
  }
}

template <typename Write>
Contestant contestant(const char* name, Combinations& all, const Write& write) {
  return {name,
          [&all, write] {
            char text[kCapacity];
            for (int i = 0; i < kOperations; ++i) {
              write(all[static_cast<std::size_t>(i) % all.size()], text);
              keep(static_cast<std::size_t>(text[0]));
            }
          },
          kOperations};
}

}  // namespace

void benchFileNames(Bench& bench) {
  ConfigCali calibration;
  Combinations all = combinations();
  verify(calibration, all);
  const Timings timings = compete({contestant(kLibrary, all,
                                              [&calibration](Combination& each, char* name) {
                                                writeByLibrary(calibration, each, name);
                                              }),
                                   contestant(kFloor, all, writeBySnprintf)},
                                  bench.shortWork());
  bench.report.measured("name", ratio(timings, kLibrary, kFloor));
  Table table{"Forming the name of a calibration file", {}, {}};
  addTimings(table, "caliFilenameString", timings);
  bench.report.add(table);
}

}  // namespace bench
