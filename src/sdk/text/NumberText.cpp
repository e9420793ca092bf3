#include "sdk/text/NumberText.h"

#include <kalvista/TextRoutines.h>
#include <langinfo.h>

#include <array>
#include <cstdio>
#include <utility>

namespace ardo {

namespace {

bool takeSign(std::string_view& text) {
  const bool negative = !text.empty() && text.front() == '-';
  if (negative) text.remove_prefix(1);
  return negative;
}

// Digits that no integer type overflows on, without the leading zero that means octal to "%i".
template <typename Integer>
bool readPlainInteger(std::string_view text, Integer* value) {
  constexpr std::size_t kMostDigits = 9;
  const bool negative = takeSign(text);
  if (text.empty() || text.size() > kMostDigits || (text.front() == '0' && text.size() > 1)) {
    return false;
  }
  Integer number = 0;
  for (const char character : text) {
    if (character < '0' || character > '9') return false;
    number = number * 10 + (character - '0');
  }
  *value = negative ? -number : number;
  return true;
}

// Digits with at most one point among them. With no more than these, the quotient of the digits and
// a power of ten lies too far from a tie between two results for its own rounding to matter.
bool readPlainFraction(std::string_view text, float* value) {
  constexpr std::size_t kMostCharacters = 9;
  constexpr unsigned int kLargestExactFloat = 1U << 24U;
  constexpr std::array kPowersOfTen{1.0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
  const bool negative = takeSign(text);
  if (text.empty() || text.size() > kMostCharacters || text.front() == '.') return false;
  unsigned int digits = 0;
  std::size_t decimals = 0;
  bool pointSeen = false;
  for (const char character : text) {
    const auto digit = static_cast<unsigned int>(character - '0');
    if (digit <= 9) {
      digits = digits * 10 + digit;
      decimals += pointSeen ? 1 : 0;
    } else if (character == '.' && !pointSeen) {
      pointSeen = true;
    } else {
      return false;
    }
  }
  if (digits >= kLargestExactFloat) return false;
  const auto magnitude = static_cast<float>(digits / kPowersOfTen[decimals]);
  *value = negative ? -magnitude : magnitude;
  return true;
}

template <typename Number>
void scan(std::string_view text, Number* value, int (*scanner)(const char*, Number*)) {
  // The text lies in a document's own buffer, which is not constant.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
  char& afterText = const_cast<char&>(*(text.data() + text.size()));
  const char kept = std::exchange(afterText, '\0');
  scanner(text.data(), value);
  afterText = kept;
}

}  // namespace

bool isPointDecimal() { return *nl_langinfo(RADIXCHAR) == '.'; }

bool readPlainNumber(std::string_view text, int* value) { return readPlainInteger(text, value); }
bool readPlainNumber(std::string_view text, long* value) { return readPlainInteger(text, value); }
bool readPlainNumber(std::string_view text, long long* value) {
  return readPlainInteger(text, value);
}
bool readPlainNumber(std::string_view text, float* value) { return readPlainFraction(text, value); }

void scanNumber(std::string_view text, int* value) { scan(text, value, _tscanfi); }
void scanNumber(std::string_view text, long* value) { scan(text, value, _tscanfld); }
void scanNumber(std::string_view text, long long* value) {
  scan<long long>(text, value,
                  [](const char* from, long long* out) { return std::sscanf(from, "%lld", out); });
}
void scanNumber(std::string_view text, float* value) { scan(text, value, _tscanff); }

}  // namespace ardo
