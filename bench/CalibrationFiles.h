// Generator of calibration files: the same content for the same request, on every machine.
#ifndef KALVISTA_BENCH_CALIBRATION_FILES_H
#define KALVISTA_BENCH_CALIBRATION_FILES_H

#include <cstddef>
#include <filesystem>
#include <string>

namespace bench {

enum class Kind {
  Full,       // every key, 3 ranges an optics, 3 frame rates a range
  Commented,  // as Full, with a comment at every element
  Distinct,   // as Full, with a text of its own for each optics
  Sparse,     // as Full, without the keys that a file may lack
  OneRange,   // one range with all the frame rates
};

// Text of a calibration file with that many optics (of OneRange: groups of 3 frame rates).
std::string calibrationText(Kind kind, int records);

// Text of a calibration file that reaches `size` with its last record.
std::string calibrationTextOfSize(Kind kind, std::size_t size);

struct CalibrationFile {
  std::string path;
  std::string folder;
  int serial;
  std::size_t size;
};

// A file that is there already.
CalibrationFile calibrationFile(const std::filesystem::path& folder, int serial);

// Writes the file of one camera under the name that the library expects.
CalibrationFile writeCalibration(const std::filesystem::path& folder, int serial,
                                 const std::string& text);

// Text of a document with the root "Items" and `count` elements "Item" side by side.
std::string siblingsText(int count);

}  // namespace bench

#endif  // KALVISTA_BENCH_CALIBRATION_FILES_H
