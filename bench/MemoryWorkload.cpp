#include <kalvista/Cali.h>
#include <malloc.h>

#include <cstdio>
#include <fstream>
#include <limits>
#include <utility>

#include "CalibrationFiles.h"
#include "ChildProcess.h"
#include "Files.h"
#include "Workloads.h"
#include "peers/Peer.h"

namespace bench {
namespace {

constexpr std::size_t kMegabytes = 64;
constexpr int kSerial = 4001;

constexpr const char* kResident = "VmRSS:";
// The peak of it. Unlike that of getrusage(), it begins anew when a program starts, so it knows
// nothing of the size of the process that started this one.
constexpr const char* kPeak = "VmHWM:";

long kilobytes(const std::string& wanted) {
  std::ifstream status("/proc/self/status");
  std::string key;
  long value = 0;
  while (status >> key && key != wanted) {
    status.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  status >> value;
  require(status.good(), "/proc/self/status does not tell " + wanted);
  return value;
}

void load(const std::string& reader, const CalibrationFile& file, ConfigCali& calibration) {
  if (reader == kLibrary) {
    require(calibration.load(file.folder.c_str(), file.serial) == 0, "ConfigCali::load fails");
  }
  for (const Peer* peer : kPeers) {
    if (reader == peer->name) peer->load(file.path.c_str(), calibration);
  }
  require(calibration.opticsList->count > 1, reader + " loads nothing");
}

}  // namespace

void loadAndPrintPeak(Peak peak, const std::string& reader, const std::string& folder, int serial) {
  const CalibrationFile file = calibrationFile(folder, serial);
  ConfigCali calibration;
  const long before = kilobytes(kPeak);
  load(reader, file, calibration);
  const long highest = kilobytes(kPeak);
  malloc_trim(0);
  std::printf("%ld\n", highest - (peak == Peak::AboveModel ? kilobytes(kResident) : before));
}

void benchMemory(Bench& bench) {
  const CalibrationFile file = writeCalibration(
      bench.folder, kSerial, calibrationTextOfSize(Kind::Full, bench.size(kMegabytes)));
  Table table{"Peak memory of loading " + formatSize(file.size),
              {"reader", "memory", "of the file's size", "beyond the model"},
              {}};
  const auto bytes = [&](const char* peak, const std::string& reader) {
    return 1024 *
           numberPrintedBy({ownProgram(), peak, reader, file.folder, std::to_string(kSerial)});
  };
  const auto measure = [&](const std::string& reader) {
    const double total = bytes("--peak-above-start", reader);
    const double beyond = bytes("--peak-above-model", reader);
    const double share = total / static_cast<double>(file.size);
    table.rows.push_back({reader, formatSize(static_cast<std::size_t>(total)), formatRatio(share),
                          formatSize(static_cast<std::size_t>(beyond))});
    return std::pair(share, beyond / (1 << 20));
  };
  const auto [share, beyond] = measure(kLibrary);
  bench.report.measured("memory", share);
  bench.report.measured("memory beyond", beyond);
  for (const Peer* peer : kPeers) measure(peer->name);
  bench.report.add(table);
}

}  // namespace bench
