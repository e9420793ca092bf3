#include "sdk/NumberText.h"

#include <kalvista/TextRoutines.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace ardo {

namespace {

// Most numbers are plain decimals, for which a conversion that knows no formats and no locale gives
// the same value many times faster. Whatever is not plain goes to the scanner.

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// Digits that no integer type overflows on, without the leading zero that means octal to "%i".
bool isPlainInteger(std::string_view text) {
  constexpr std::size_t kMostDigits = 9;
  if (!text.empty() && text.front() == '-') text.remove_prefix(1);
  return !text.empty() && text.size() <= kMostDigits && (text.front() != '0' || text.size() == 1) &&
         std::all_of(text.begin(), text.end(), isDigit);
}

// Digits with at most one point among them, far from the ends of the type's range.
bool isPlainFraction(std::string_view text) {
  constexpr std::size_t kMostCharacters = 20;
  if (!text.empty() && text.front() == '-') text.remove_prefix(1);
  if (text.empty() || text.size() > kMostCharacters || !isDigit(text.front())) return false;
  bool pointSeen = false;
  return std::all_of(text.begin(), text.end(), [&pointSeen](char character) {
    if (character == '.') return !std::exchange(pointSeen, true);
    return isDigit(character);
  });
}

template <typename Number>
void convert(std::string_view text, Number* value) {
  std::from_chars(text.data(), text.data() + text.size(), *value);
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

void readNumber(std::string_view text, int* value) {
  if (isPlainInteger(text)) return convert(text, value);
  scan(text, value, _tscanfi);
}

void readNumber(std::string_view text, long* value) {
  if (isPlainInteger(text)) return convert(text, value);
  scan(text, value, _tscanfld);
}

void readNumber(std::string_view text, float* value) {
  if (isPlainFraction(text)) return convert(text, value);
  scan(text, value, _tscanff);
}

}  // namespace ardo
