// The groups of workloads. Each measures, adds its tables to the report, and throws when something
// cannot run or readers disagree.
#ifndef KALVISTA_BENCH_WORKLOADS_H
#define KALVISTA_BENCH_WORKLOADS_H

#include <filesystem>
#include <string>

#include "Contest.h"
#include "Report.h"

namespace bench {

struct Bench {
  bool quick;                    // every path once, on tiny files
  std::filesystem::path folder;  // for the files of one group
  Report& report;

  // `megabytes`, or a 256th of it.
  std::size_t size(std::size_t megabytes) const { return megabytes << (quick ? 12U : 20U); }
  int count(int full) const { return quick ? full / 100 : full; }

  // For work of up to some milliseconds, repeated until a sample is long enough to be measured.
  Effort shortWork() const { return quick ? Effort{1, 0} : Effort{51, 0.02}; }
  // For work that is measured run by run.
  Effort longWork() const { return quick ? Effort{1, 0} : Effort{15, 0}; }
};

void benchLoads(Bench& bench);      // ConfigCali::load against the peers
void benchOpen(Bench& bench);       // SimpleXML::open against the floors
void benchLookups(Bench& bench);    // SimpleXML lookups, in total and as they grow
void benchMemory(Bench& bench);     // peak memory of a load, in processes of their own
void benchCheck(Bench& bench);      // checkCalibration
void benchQueries(Bench& bench);    // calls that go through all optics, and getFramerate
void benchFileNames(Bench& bench);  // caliFilenameString
void benchLog(Bench& bench);        // Logger against spdlog
void benchDlopen(Bench& bench);     // dlopen, in processes of their own

// What a process that was started by benchMemory does: loads one file with the library or a peer
// and prints by how many KB its peak memory rose, or by how many it was above what is left.
enum class Peak { AboveStart, AboveModel };
void loadAndPrintPeak(Peak peak, const std::string& reader, const std::string& folder, int serial);

// Name of the library among the contestants.
constexpr const char* kLibrary = "kalvista";
constexpr const char* kHalf = "kalvista, half the file";

}  // namespace bench

#endif  // KALVISTA_BENCH_WORKLOADS_H
