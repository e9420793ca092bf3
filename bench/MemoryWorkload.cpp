#include <kalvista/Cali.h>

#include <cstdio>
#include <fstream>
#include <limits>

#include "CalibrationFiles.h"
#include "ChildProcess.h"
#include "Files.h"
#include "Workloads.h"
#include "peers/Peer.h"

namespace bench {
namespace {

constexpr std::size_t kMegabytes = 64;
constexpr int kSerial = 4001;

// Peak of the memory that is resident, in KB. Unlike getrusage(), it begins anew when a program
// starts, so it knows nothing of the size of the process that started this one.
long peakKilobytes() {
  std::ifstream status("/proc/self/status");
  std::string key;
  long value = 0;
  while (status >> key && key != "VmHWM:") {
    status.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  status >> value;
  require(status.good(), "/proc/self/status does not tell the peak of the memory");
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

void loadAndPrintPeak(const std::string& reader, const std::string& folder, int serial) {
  const CalibrationFile file = calibrationFile(folder, serial);
  ConfigCali calibration;
  const long before = peakKilobytes();
  load(reader, file, calibration);
  std::printf("%ld\n", peakKilobytes() - before);
}

void benchMemory(Bench& bench) {
  const CalibrationFile file = writeCalibration(
      bench.folder, kSerial, calibrationTextOfSize(Kind::Full, bench.size(kMegabytes)));
  Table table{"Peak memory of loading " + formatSize(file.size),
              {"reader", "memory", "of the file's size"},
              {}};
  const auto measure = [&](const std::string& reader) {
    const double bytes = 1024 * numberPrintedBy({ownProgram(), "--load-once", reader, file.folder,
                                                 std::to_string(file.serial)});
    const double share = bytes / static_cast<double>(file.size);
    table.rows.push_back({reader, formatSize(static_cast<std::size_t>(bytes)), formatRatio(share)});
    return share;
  };
  bench.report.measured("memory", measure(kLibrary));
  for (const Peer* peer : kPeers) measure(peer->name);
  bench.report.add(table);
}

}  // namespace bench
