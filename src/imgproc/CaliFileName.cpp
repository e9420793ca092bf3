// ConfigCali: base names of calibration files.
#include <kalvista/Cali.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <string_view>

#include "imgproc/WholeDegrees.h"

namespace {

// Appends to a buffer of fixed size; what does not fit is cut off.
class BoundedText {
 public:
  BoundedText(char* buffer, std::size_t capacity) : fill_(buffer), last_(buffer + capacity - 1) {}

  BoundedText& append(std::string_view text) {
    const std::size_t count = std::min(text.size(), static_cast<std::size_t>(last_ - fill_));
    std::memcpy(fill_, text.data(), count);
    fill_ += count;
    *fill_ = '\0';
    return *this;
  }

  template <typename Integer>
  BoundedText& appendNumber(Integer number) {
    std::array<char, 12> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return append({digits.data(), static_cast<std::size_t>(end - digits.data())});
  }

  BoundedText& appendTemperature(float temperature) {
    const auto degrees = std::int64_t{cali::wholeDegrees(temperature)};
    const auto magnitude = std::min<std::int64_t>(std::abs(degrees), 2147483647);
    return append(temperature < 0.0F ? "M" : "").appendNumber(magnitude);
  }

 private:
  char* fill_;
  char* last_;
};

}  // namespace

bool ConfigCali::caliFilenameString(int serialNumber, int fov, char* text, float tMin, float tMax,
                                    unsigned short fr, char* out, int size) const {
  if (out == nullptr || size < 1) return false;
  BoundedText name(out, static_cast<std::size_t>(size));
  name.appendNumber(serialNumber).append("-").appendNumber(fov);
  if (text != nullptr && *text != '\0') name.append("-").append(text);
  name.append("-").appendTemperature(tMin).append("-").appendTemperature(tMax);
  if (fr != 0) name.append("-").appendNumber(fr);
  return true;
}

bool ConfigCali::caliFilenameString(int serialNumber, int fov, char* text, Range* range,
                                    unsigned short fr, char* out, int size) const {
  if (range == nullptr) return false;
  return caliFilenameString(serialNumber, fov, text, range->TempLo, range->TempHi, fr, out, size);
}
