#include "FileCase.h"

namespace bench {
namespace {

constexpr int kRealOptics = 2;
constexpr std::size_t kShortWork = 4U << 20U;

std::string textOf(const Bench& bench, const FileCase& fileCase, int divisor) {
  if (fileCase.megabytes == 0) return calibrationText(fileCase.kind, kRealOptics / divisor);
  return calibrationTextOfSize(fileCase.kind,
                               bench.size(fileCase.megabytes) / static_cast<std::size_t>(divisor));
}

}  // namespace

FilePair writeFiles(const Bench& bench, const FileCase& fileCase, int serial) {
  FilePair files;
  files.whole = writeCalibration(bench.folder, serial, textOf(bench, fileCase, 1));
  files.half = writeCalibration(bench.folder, serial + 1, textOf(bench, fileCase, 2));
  files.label = std::string(fileCase.label) + ", " + formatSize(files.whole.size);
  return files;
}

Effort effortFor(const Bench& bench, const CalibrationFile& file) {
  return file.size < kShortWork ? bench.shortWork() : bench.longWork();
}

}  // namespace bench
