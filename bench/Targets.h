// The speed that the library is held to: ratios of medians, of which lower is faster.
#ifndef KALVISTA_BENCH_TARGETS_H
#define KALVISTA_BENCH_TARGETS_H

namespace bench {

struct Target {
  const char* key;
  const char* workload;
  const char* against;
  double atMost;
  double aim;  // 0 for none
};

constexpr Target kTargets[] = {
    {"load real", "`ConfigCali::load`, real file", "pugixml", 0.52, 0.47},
    {"load large", "`ConfigCali::load`, 1 MB", "pugixml", 0.45, 0.40},
    {"load 64 MB", "`ConfigCali::load`, 64 MB", "pugixml", 0.36, 0.30},
    {"load commented", "`ConfigCali::load`, one comment per element, 32 MB", "pugixml", 0.45, 0.38},
    {"load sparse", "`ConfigCali::load`, most optional keys absent, 16 MB", "pugixml", 0.47, 0.40},
    {"load one range", "`ConfigCali::load`, one range with many rates, 16 MB", "pugixml", 0.46,
     0.40},
    {"load again", "`ConfigCali::load` again for another serial, 64 MB", "pugixml", 0.40, 0.33},
    {"load/rapidxml", "`ConfigCali::load`, the worst of all files", "rapidxml", 1.00, 0},
    {"load/tinyxml2", "`ConfigCali::load`, the worst of all files", "tinyxml2", 1.00, 0},
    {"load/expat", "`ConfigCali::load`, the worst of all files", "expat", 1.00, 0},
    {"load/libxml2", "`ConfigCali::load`, the worst of all files", "libxml2", 1.00, 0},
    {"open real", "`SimpleXML::open`, real file", "read, look at every byte", 1.30, 1.04},
    {"open 64 MB", "`SimpleXML::open`, 64 MB", "read, look at every byte", 1.40, 1.24},
    {"open commented", "`SimpleXML::open`, one comment per element, 32 MB",
     "read, look at every byte", 1.70, 1.54},
    {"load growth", "`ConfigCali::load`, the worst of all files", "half the file", 2.20, 2.00},
    {"open growth", "`SimpleXML::open`, the worst of all files", "half the file", 2.20, 2.00},
    {"lookup growth", "`SimpleXML` lookups, the worst", "half the file", 2.20, 2.00},
    {"memory", "peak memory of a 64 MB load", "size of the file", 1.70, 1.30},
    {"memory beyond", "peak memory of a 64 MB load beyond its model, in MB", "-", 2.00, 0.20},
    {"query growth", "check, list of optics, default configuration; 8,000 optics",
     "half the optics", 2.20, 2.00},
    {"framerate", "`getFramerate`, in ns", "-", 18, 10},
    {"check", "`checkCalibration`, nothing missing", "one open and close per file", 1.70, 1.20},
    {"name", "`caliFilenameString`", "one `snprintf`", 0.50, 0.10},
    {"log line", "log line to a file, flushed", "spdlog, same line", 0.90, 0.86},
    {"log below", "log line below the threshold", "spdlog, its own line", 2.00, 1.00},
    {"dlopen", "`dlopen` of the library", "`dlopen` of libstdc++", 1.20, 0},
};

}  // namespace bench

#endif  // KALVISTA_BENCH_TARGETS_H
