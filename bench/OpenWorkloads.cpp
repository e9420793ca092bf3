#include <kalvista/SimpleXML.h>

#include "FileCase.h"
#include "Files.h"
#include "Floors.h"

namespace bench {
namespace {

constexpr const char* kRead = "read";
constexpr const char* kReadLines = "read, find lines by memchr";
constexpr const char* kReadBytes = "read, look at every byte";

constexpr FileCase kCases[] = {
    {"open real", "real", Kind::Full, 0},
    {"open 64 MB", "large", Kind::Full, 64},
    {"open commented", "one comment per element", Kind::Commented, 32},
};

template <typename Look>
Contestant floorOf(const char* name, const CalibrationFile& file, const Look& look) {
  return {name, [path = file.path, look] { keep(look(readFile(path.c_str()))); }};
}

Contestant library(const char* name, const CalibrationFile& file) {
  return {name, [path = file.path] {
            ardo::SimpleXML xml;
            keep(xml.open(path.c_str(), "CaliData") ? 1 : 0);
          }};
}

Timings measure(const Bench& bench, const FilePair& files) {
  const CalibrationFile& file = files.whole;
  return compete({library(kLibrary, file),
                  floorOf(kRead, file, [](const FileContent& content) { return content.size; }),
                  floorOf(kReadLines, file, countLines), floorOf(kReadBytes, file, sumBytes),
                  library(kHalf, files.half)},
                 effortFor(bench, file));
}

void verify(const CalibrationFile& file) {
  ardo::SimpleXML xml;
  require(xml.open(file.path.c_str(), "CaliData") && xml.hasRoot() && xml.setNode() &&
              xml.setNode("Temperature"),
          "SimpleXML::open fails for " + file.path);
}

}  // namespace

void benchOpen(Bench& bench) {
  Table table{"Opening a document", {}, {}};
  int serial = 2001;
  for (const FileCase& fileCase : kCases) {
    const FilePair files = writeFiles(bench, fileCase, serial);
    serial += 2;
    verify(files.whole);
    const Timings timings = measure(bench, files);
    bench.report.measured(fileCase.target, ratio(timings, kLibrary, kReadBytes));
    if (fileCase.tellsGrowth()) {
      bench.report.measured("open growth", ratio(timings, kLibrary, kHalf));
    }
    addTimings(table, files.label, timings);
  }
  bench.report.add(table);
}

}  // namespace bench
