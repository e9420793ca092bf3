// Where random choices come from: a generator with a fixed seed, or the bytes of a fuzzer.
#ifndef KALVISTA_TESTS_ORACLE_BYTE_SOURCE_H
#define KALVISTA_TESTS_ORACLE_BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <random>

namespace oracle {

class ByteSource {
 public:
  explicit ByteSource(std::uint64_t seed) : random_(seed) {}
  ByteSource(const std::uint8_t* bytes, std::size_t size)
      : next_(bytes), left_(size), limited_(true) {}

  /// A number below `count`. Spent bytes give 0: what asks for choices must end on zeros.
  std::uint32_t below(std::uint32_t count) {
    if (!limited_) return static_cast<std::uint32_t>(random_() % count);
    std::uint32_t number = 0;
    for (std::uint32_t range = 1; range < count && left_ > 0; range <<= 8, --left_) {
      number = number << 8 | *next_++;
    }
    return number % count;
  }
  int between(int low, int high) {
    return low + static_cast<int>(below(static_cast<std::uint32_t>(high - low + 1)));
  }
  bool oneIn(std::uint32_t count) { return below(count) == count - 1; }
  template <typename Table>
  const auto& pick(const Table& table) {
    return table[below(static_cast<std::uint32_t>(std::size(table)))];
  }

 private:
  std::mt19937_64 random_;
  const std::uint8_t* next_ = nullptr;
  std::size_t left_ = 0;
  bool limited_ = false;
};

}  // namespace oracle

#endif  // KALVISTA_TESTS_ORACLE_BYTE_SOURCE_H
