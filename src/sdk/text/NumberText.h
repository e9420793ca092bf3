// Reads numbers from element texts, with the results of the C library's scanner.
#ifndef KALVISTA_SDK_NUMBER_TEXT_H
#define KALVISTA_SDK_NUMBER_TEXT_H

#include <string_view>

namespace ardo {

// Reads a plain decimal, as most numbers are; false when the text is anything else.
bool readPlainNumber(std::string_view text, int* value);
bool readPlainNumber(std::string_view text, long* value);
bool readPlainNumber(std::string_view text, long long* value);
bool readPlainNumber(std::string_view text, float* value);

// Each reads as the scanner does for "%i", "%ld", "%lld" and "%f", and leaves the value untouched
// when the text is no number. `text` must lie in memory that may be written, one character past its
// end included: the scanner needs a terminator there for a moment.
void scanNumber(std::string_view text, int* value);
void scanNumber(std::string_view text, long* value);
void scanNumber(std::string_view text, long long* value);
void scanNumber(std::string_view text, float* value);

// The scanner follows the locale, which an application may have set since the reader was made.
bool isPointDecimal();

// The scanner's result for any text, by the shorter way where the text is plain.
template <typename Number>
void readNumber(std::string_view text, Number* value) {
  if (!isPointDecimal() || !readPlainNumber(text, value)) scanNumber(text, value);
}

}  // namespace ardo

#endif  // KALVISTA_SDK_NUMBER_TEXT_H
