// A workload on one calibration file, and on one of half its size to see how time grows.
#ifndef KALVISTA_BENCH_FILE_CASE_H
#define KALVISTA_BENCH_FILE_CASE_H

#include "CalibrationFiles.h"
#include "Workloads.h"

namespace bench {

struct FileCase {
  const char* target;
  const char* label;
  Kind kind;
  std::size_t megabytes;  // 0 for the file of a camera with two optics

  // Half of a real file has one optics but the same device constants, so it says nothing on growth.
  bool tellsGrowth() const { return megabytes > 0; }
};

struct FilePair {
  CalibrationFile whole;
  CalibrationFile half;
  std::string label;  // with the size of the whole
};

// Writes both files, for the cameras `serial` and `serial` + 1.
FilePair writeFiles(const Bench& bench, const FileCase& fileCase, int serial);

// How often work on a file is measured.
Effort effortFor(const Bench& bench, const CalibrationFile& file);

}  // namespace bench

#endif  // KALVISTA_BENCH_FILE_CASE_H
