// Measures the library against other ways to do the same work; see docs/performance.md.
#include <gnu/libc-version.h>
#include <kalvista/IRLogger.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <thread>

#include "Files.h"
#include "Workloads.h"

namespace {

struct Group {
  const char* name;
  void (*run)(bench::Bench& bench);
};

constexpr Group kGroups[] = {
    {"load", bench::benchLoads},     {"open", bench::benchOpen},   {"lookup", bench::benchLookups},
    {"memory", bench::benchMemory},  {"check", bench::benchCheck}, {"query", bench::benchQueries},
    {"name", bench::benchFileNames}, {"log", bench::benchLog},     {"dlopen", bench::benchDlopen},
};

constexpr const char* kHelp =
    "Usage: kalvista_bench [--quick] [--only GROUP]... [--markdown FILE] [--packages TEXT]\n"
    "       kalvista_bench --list\n"
    "\n"
    "  --quick          run every workload once, on tiny files; times are not judged\n"
    "  --only GROUP     run this group of workloads\n"
    "  --list           list the groups\n"
    "  --markdown FILE  write the tables to FILE as well\n"
    "  --packages TEXT  versions of the packages that the library is measured against\n";

struct Options {
  bool quick = false;
  bool list = false;
  bool help = false;
  std::vector<std::string> only;
  std::string page;
  std::string packages;
};

bool isGroup(const std::string& name) {
  return std::any_of(std::begin(kGroups), std::end(kGroups),
                     [&name](const Group& group) { return name == group.name; });
}

// Tells what is wrong with the command line; empty when nothing is.
std::string parse(const std::vector<std::string>& arguments, Options& options) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& option = arguments[i];
    const auto takeValue = [&](std::string& value) {
      const bool given = ++i < arguments.size();
      if (given) value = arguments[i];
      return given;
    };
    bool valid = true;
    if (option == "--quick") {
      options.quick = true;
    } else if (option == "--list") {
      options.list = true;
    } else if (option == "--help") {
      options.help = true;
    } else if (option == "--only") {
      valid = takeValue(options.only.emplace_back()) && isGroup(options.only.back());
    } else if (option == "--markdown") {
      valid = takeValue(options.page);
    } else if (option == "--packages") {
      valid = takeValue(options.packages);
    } else {
      return "unknown option " + option;
    }
    if (!valid) return option + " needs a value that fits; see --help and --list";
  }
  return {};
}

std::string processorModel() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.rfind("model name", 0) == 0) return line.substr(line.find(": ") + 2);
  }
  return "unknown processor";
}

std::string describeMachine(const std::string& packages) {
  std::string text = "Measured on: " + processorModel() + ", " +
                     std::to_string(std::thread::hardware_concurrency()) +
                     " processors; " KALVISTA_BENCH_COMPILER "; glibc " + gnu_get_libc_version() +
                     ".\n";
  if (!packages.empty()) text += "Measured against: " + packages + ".\n";
  return text;
}

bool isWanted(const Options& options, const Group& group) {
  return options.only.empty() ||
         std::find(options.only.begin(), options.only.end(), group.name) != options.only.end();
}

void run(const Options& options) {
  bench::Report report(!options.quick);
  for (const Group& group : kGroups) {
    if (!isWanted(options, group)) continue;
    std::fprintf(stderr, "running %s\n", group.name);
    const bench::TemporaryFolder folder;
    bench::Bench bench{options.quick, folder.path(), report};
    group.run(bench);
  }
  const std::string machine = describeMachine(options.packages);
  std::printf("%s%s", machine.c_str(), report.text().c_str());
  if (!options.page.empty()) bench::writeFile(options.page, report.markdown(machine));
}

}  // namespace

int main(int argc, char** argv) try {
  ardo::IRLogger::setVerbosity(ardo::IRLOGGER_OFF, ardo::IRLOGGER_OFF, nullptr);
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() == 4 && arguments[0].rfind("--peak-above-", 0) == 0) {
    const bench::Peak peak =
        arguments[0] == "--peak-above-model" ? bench::Peak::AboveModel : bench::Peak::AboveStart;
    bench::loadAndPrintPeak(peak, arguments[1], arguments[2], std::stoi(arguments[3]));
    return 0;
  }
  Options options;
  const std::string mistake = parse(arguments, options);
  if (!mistake.empty()) {
    std::fprintf(stderr, "kalvista_bench: %s\n", mistake.c_str());
    return 2;
  }
  if (options.help) {
    std::fputs(kHelp, stdout);
  } else if (options.list) {
    for (const Group& group : kGroups) std::puts(group.name);
  } else {
    run(options);
  }
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "kalvista_bench: %s\n", error.what());
  return 1;
}
