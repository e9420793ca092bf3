// Holds the library's reader and calibration loader against plain counterparts, on documents that
// are wrong in the ways in which documents go wrong.
#ifndef KALVISTA_TESTS_ORACLE_H
#define KALVISTA_TESTS_ORACLE_H

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace oracle {

/// Where choices come from: a generator with a fixed seed, or the bytes of a fuzzer.
class ByteSource {
 public:
  explicit ByteSource(std::uint64_t seed) : random_(seed), seeded_(true) {}
  explicit ByteSource(std::string_view bytes) : bytes_(bytes) {}

  /// A number below `count`. Spent bytes give 0: what asks for choices must end on zeros.
  std::size_t below(std::size_t count) {
    if (seeded_) return static_cast<std::size_t>(random_() % count);
    std::size_t number = 0;
    for (std::size_t range = 1; range < count && !bytes_.empty(); range <<= 8) {
      number = number << 8 | static_cast<unsigned char>(bytes_.front());
      bytes_.remove_prefix(1);
    }
    return number % count;
  }
  bool oneIn(std::size_t count) { return below(count) == count - 1; }
  template <typename Table>
  const auto& pick(const Table& table) {
    return table[below(std::size(table))];
  }

 private:
  std::mt19937_64 random_;
  std::string_view bytes_;
  bool seeded_ = false;
};

/// Makes a document or, once in four times, a calibration. Half of the calibrations are well
/// formed.
std::string randomDocument(ByteSource& source, bool& isCalibration);

/// Takes a walk with the library's reader and gives one line for each step.
std::string walkLibrary(const std::string& document, const ByteSource& walk);

/// Each comparison gives the lines where the two sides part: nothing when they do not. The readers
/// take a walk, the loaders load a calibration.
std::string compareReaders(const std::string& document, const ByteSource& walk);
std::string compareLoaders(const std::string& document);
std::string firstDifference(const std::string& expected, const std::string& actual);
/// The one or the other, on a random document, which it shows with the difference.
std::string compareAtRandom(ByteSource source);

/// A folder of this process, which goes with it.
const std::string& scratchFolder();
/// Writes a file there, over the former one of that name, and gives its path.
std::string writeScratchFile(const std::string& name, std::string_view bytes);

}  // namespace oracle

#endif  // KALVISTA_TESTS_ORACLE_H
