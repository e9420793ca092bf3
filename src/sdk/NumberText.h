// Reads numbers from element texts, with the results of the C library's scanner.
#ifndef KALVISTA_SDK_NUMBER_TEXT_H
#define KALVISTA_SDK_NUMBER_TEXT_H

#include <string_view>

namespace ardo {

// Each reads as the scanner does for "%i", "%ld" and "%f", and leaves the value untouched when the
// text is no number. `text` must lie in memory that may be written, one character past its end
// included: the scanner needs a terminator there for a moment.
void readNumber(std::string_view text, int* value);
void readNumber(std::string_view text, long* value);
void readNumber(std::string_view text, float* value);

}  // namespace ardo

#endif  // KALVISTA_SDK_NUMBER_TEXT_H
