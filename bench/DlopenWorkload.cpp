#include <dlfcn.h>
#include <kalvista/SimpleXML.h>

#include <filesystem>

#include "ChildProcess.h"
#include "Files.h"
#include "Workloads.h"

namespace bench {
namespace {

constexpr const char* kRuntime = "libstdc++";
constexpr int kRounds = 100;

// Path of the library that this program runs with.
std::string libraryPath() {
  Dl_info info{};
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as dladdr() wants it
  const auto function = reinterpret_cast<const void*>(&ardo::compTokens);
  require(dladdr(function, &info) != 0, "cannot tell where the library is");
  return std::filesystem::canonical(info.dli_fname).string();
}

}  // namespace

void benchDlopen(Bench& bench) {
  const std::string probe =
      (std::filesystem::path(ownProgram()).parent_path() / "kalvista_dlopen_probe").string();
  const std::string library = libraryPath();
  std::vector<double> librarySamples;
  std::vector<double> runtimeSamples;
  for (int round = 0; round < bench.count(kRounds); ++round) {
    librarySamples.push_back(numberPrintedBy({probe, library}) * 1e-9);
    runtimeSamples.push_back(numberPrintedBy({probe, "libstdc++.so.6"}) * 1e-9);
  }
  const Timings timings{summarize(kLibrary, librarySamples), summarize(kRuntime, runtimeSamples)};
  bench.report.measured("dlopen", ratio(timings, kLibrary, kRuntime));
  Table table{"Loading the library into a process", {}, {}};
  addTimings(table, "dlopen", timings);
  bench.report.add(table);
}

}  // namespace bench
