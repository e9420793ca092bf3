#include <fcntl.h>
#include <kalvista/IRCalibrationManager.h>
#include <unistd.h>

#include <memory>
#include <sstream>

#include "CalibrationFiles.h"
#include "Files.h"
#include "Workloads.h"

namespace bench {
namespace {

constexpr int kSerial = 5001;
constexpr const char* kFloor = "open and close each file";

using Paths = std::vector<std::string>;

std::unique_ptr<char[]> missingFiles() {
  return std::unique_ptr<char[]>(
      ardo::IRCalibrationManager::getInstance()->checkCalibration(kSerial));
}

// Makes the files that the library finds missing, empty.
Paths makeFiles(const std::filesystem::path& folder) {
  const std::unique_ptr<char[]> list = missingFiles();
  require(list != nullptr, "checkCalibration finds nothing missing in an empty folder");
  Paths paths;
  std::istringstream names(list.get());
  for (std::string name; std::getline(names, name, ';');) {
    paths.push_back((folder / name).string());
    writeFile(paths.back(), "");
  }
  require(missingFiles() == nullptr, "checkCalibration finds files missing that are there");
  return paths;
}

std::size_t openAll(const Paths& paths) {
  std::size_t found = 0;
  for (const std::string& path : paths) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file >= 0 && close(file) == 0) ++found;
  }
  return found;
}

}  // namespace

void benchCheck(Bench& bench) {
  ardo::IRCalibrationManager::getInstance()->setCalibrationDir(bench.folder.c_str());
  writeCalibration(bench.folder, kSerial, calibrationText(Kind::Full, 2));
  const Paths paths = makeFiles(bench.folder);
  const Timings timings = compete({{kLibrary, [] { keep(missingFiles() == nullptr ? 1 : 0); }},
                                   {kFloor, [&paths] { keep(openAll(paths)); }}},
                                  bench.shortWork());
  bench.report.measured("check", ratio(timings, kLibrary, kFloor));
  Table table{"Checking that no calibration file is missing", {}, {}};
  addTimings(table, std::to_string(paths.size()) + " files", timings);
  bench.report.add(table);
}

}  // namespace bench
