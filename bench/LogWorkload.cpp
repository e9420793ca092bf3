#include <kalvista/IRLogger.h>
#include <kalvista/Logger.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/stopwatch.h>

#include <fstream>
#include <memory>

#include "Files.h"
#include "Workloads.h"

namespace bench {
namespace {

constexpr const char* kSpdlog = "spdlog, same line";
constexpr const char* kSpdlogOwn = "spdlog, its own line";
constexpr int kLine = 120;
constexpr unsigned int kWarning = 1;
constexpr unsigned int kDebug = 3;
constexpr int kOperations = 1000;

const std::string kSource = "Cali";
const std::string kMessage = "Serial number has changed (10002), reload Calibration XML.";

void logByLibrary(unsigned int level) {
  brivex::Logger::getInstance()->print(level, kSource, kLine, kMessage);
}

// Unlocked and flushed as the library's log is.
std::shared_ptr<spdlog::logger> openSpdlog(const std::filesystem::path& path) {
  auto log = std::make_shared<spdlog::logger>(
      kSpdlog, std::make_shared<spdlog::sinks::basic_file_sink_st>(path.string()));
  log->set_level(spdlog::level::warn);
  log->flush_on(spdlog::level::trace);
  return log;
}

spdlog::source_loc sourcePlace() { return {kSource.c_str(), kLine, ""}; }

// Gives the library's line. The clock is read when a line is formatted, not when one is asked for.
class SameLine {
 public:
  explicit SameLine(const std::filesystem::path& path) : log_(openSpdlog(path)) {
    log_->set_pattern("%l [%s:%#] @ %v");
  }

  void write(spdlog::level::level_enum level) {
    log_->log(sourcePlace(), level, "{:.6g}s :{}", clock_, kMessage);
  }

 private:
  std::shared_ptr<spdlog::logger> log_;
  spdlog::stopwatch clock_;
};

// All files must have been written, or the lines cost nothing.
void verify(const std::filesystem::path& folder, int expectedCount) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    std::ifstream file(entry.path());
    std::string line;
    std::getline(file, line);
    require(
        line.find("[Cali:120] ") != std::string::npos && line.find(kMessage) != std::string::npos,
        entry.path().string() + " begins with another line: " + line);
    ++count;
  }
  require(count == expectedCount, "a log file is missing");
}

template <typename Log>
std::function<void()> manyTimes(const Log& log) {
  return [log] {
    for (int i = 0; i < kOperations; ++i) log();
  };
}

}  // namespace

void benchLog(Bench& bench) {
  brivex::Logger::getInstance()->configure((bench.folder / "kalvista").string(),
                                           brivex::LOGGER_FILE_ON, kWarning, 0);
  SameLine sameLine(bench.folder / "same.log");
  const auto ownLine = openSpdlog(bench.folder / "own.log");
  const auto logOwnLine = [&ownLine](spdlog::level::level_enum level) {
    ownLine->log(sourcePlace(), level, kMessage);
  };
  Table table{"Logging", {}, {}};

  const Timings lines = compete({{kLibrary, [] { logByLibrary(kWarning); }},
                                 {kSpdlog, [&] { sameLine.write(spdlog::level::warn); }},
                                 {kSpdlogOwn, [&] { logOwnLine(spdlog::level::warn); }}},
                                bench.shortWork());
  verify(bench.folder, 3);
  bench.report.measured("log line", ratio(lines, kLibrary, kSpdlog));
  addTimings(table, "line to a file, flushed", lines);

  const auto debug = spdlog::level::debug;
  const Timings below = compete({{kLibrary, manyTimes([] { logByLibrary(kDebug); }), kOperations},
                                 {kSpdlog, manyTimes([&] { sameLine.write(debug); }), kOperations},
                                 {kSpdlogOwn, manyTimes([&] { logOwnLine(debug); }), kOperations}},
                                bench.shortWork());
  bench.report.measured("log below", ratio(below, kLibrary, kSpdlogOwn));
  addTimings(table, "line below the threshold", below);
  bench.report.add(table);
  ardo::IRLogger::setVerbosity(ardo::IRLOGGER_OFF, ardo::IRLOGGER_OFF, nullptr);
}

}  // namespace bench
