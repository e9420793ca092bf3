#include <kalvista/Cali.h>

#include <memory>
#include <string_view>

#include "FileCase.h"
#include "Files.h"
#include "ModelComparison.h"
#include "peers/Peer.h"

namespace bench {
namespace {

constexpr FileCase kCases[] = {
    {"load real", "real", Kind::Full, 0},
    {"load large", "large", Kind::Full, 1},
    {"load 64 MB", "large", Kind::Full, 64},
    {"load commented", "one comment per element", Kind::Commented, 32},
    {"load sparse", "most optional keys absent", Kind::Sparse, 16},
    {"load one range", "one range with many rates", Kind::OneRange, 16},
};

int countOptics(const CalibrationFile& file) {
  const FileContent content = readFile(file.path.c_str());
  const std::string_view text(content.bytes.get(), content.size);
  int count = 0;
  for (std::size_t at = 0; (at = text.find("<OpticsDef>", at)) != std::string_view::npos; ++at) {
    ++count;
  }
  return count;
}

// A peer that read other values, or the library reading fewer records than were written, would
// make the comparison worthless.
void verify(const CalibrationFile& file) {
  ConfigCali reference;
  require(reference.load(file.folder.c_str(), file.serial) == 0,
          "ConfigCali::load fails for " + file.path);
  require(reference.opticsList->count == countOptics(file),
          "ConfigCali::load reads another number of optics than were written to " + file.path);
  for (const Peer* peer : kPeers) {
    ConfigCali calibration;
    peer->load(file.path.c_str(), calibration);
    const std::string difference = firstDifference(reference, calibration);
    require(difference.empty(), std::string(peer->name) + " and ConfigCali::load differ in " +
                                    file.path + ": " + difference);
  }
}

// Each run pays for a new model, its filling and its release.
Contestant library(const char* name, const CalibrationFile& file) {
  return {name, [file] {
            ConfigCali calibration;
            keep(calibration.load(file.folder.c_str(), file.serial));
          }};
}

Timings measure(const Bench& bench, const FilePair& files) {
  std::vector<Contestant> contestants{library(kLibrary, files.whole)};
  for (const Peer* peer : kPeers) {
    contestants.push_back({peer->name, [path = files.whole.path, peer] {
                             ConfigCali calibration;
                             peer->load(path.c_str(), calibration);
                           }});
  }
  contestants.push_back(library(kHalf, files.half));
  return compete(contestants, effortFor(bench, files.whole));
}

// The second load of an object releases the model of the first.
void measureAgain(Bench& bench, Table& table, const FilePair& files, int otherSerial) {
  const CalibrationFile& file = files.whole;
  std::filesystem::create_hard_link(
      file.path, bench.folder / ("Cali-" + std::to_string(otherSerial) + ".xml"));
  const auto calibration = std::make_shared<ConfigCali>();
  const auto replaced = std::make_shared<std::unique_ptr<ConfigCali>>();
  const Timings timings =
      compete({{kLibrary,
                [calibration, file, otherSerial] {
                  const int serial = calibration->serial == file.serial ? otherSerial : file.serial;
                  keep(calibration->load(file.folder.c_str(), serial));
                }},
               {kPugixml.name,
                [replaced, file] {
                  replaced->reset();
                  *replaced = std::make_unique<ConfigCali>();
                  kPugixml.load(file.path.c_str(), **replaced);
                }}},
              effortFor(bench, file));
  bench.report.measured("load again", ratio(timings, kLibrary, kPugixml.name));
  addTimings(table, files.label, timings);
}

void judge(Report& report, const FileCase& fileCase, const Timings& timings) {
  report.measured(fileCase.target, ratio(timings, kLibrary, kPugixml.name));
  for (const Peer* peer : kPeers) {
    report.measured(std::string("load/") + peer->name, ratio(timings, kLibrary, peer->name));
  }
  if (fileCase.tellsGrowth()) report.measured("load growth", ratio(timings, kLibrary, kHalf));
}

}  // namespace

void benchLoads(Bench& bench) {
  Table table{"Loading a calibration", {}, {}};
  Table again{"Loading again for another serial, the first model released", {}, {}};
  int serial = 1001;
  for (const FileCase& fileCase : kCases) {
    const FilePair files = writeFiles(bench, fileCase, serial);
    serial += 2;
    verify(files.whole);
    const Timings timings = measure(bench, files);
    judge(bench.report, fileCase, timings);
    addTimings(table, files.label, timings);
    if (fileCase.megabytes == 64) measureAgain(bench, again, files, serial++);
  }
  bench.report.add(table);
  bench.report.add(again);
}

}  // namespace bench
