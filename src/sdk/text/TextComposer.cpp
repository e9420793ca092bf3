#include "sdk/text/TextComposer.h"

#include <array>
#include <clocale>
#include <cstdio>

namespace ardo {

TextComposer& TextComposer::operator<<(const char* piece) {
  ended_ = ended_ || piece == nullptr;
  return ended_ ? *this : *this << std::string(piece);
}

TextComposer& TextComposer::operator<<(const std::string& piece) {
  if (!ended_) text_ += piece;
  return *this;
}

// The application's own locale may have another decimal point.
TextComposer& TextComposer::operator<<(long double number) {
  std::array<char, 32> digits{};
  const locale_t plain = newlocale(LC_NUMERIC_MASK, "C", nullptr);
  const locale_t before = uselocale(plain);
  std::snprintf(digits.data(), digits.size(), "%Lg", number);
  uselocale(before);
  freelocale(plain);
  return *this << digits.data();
}

}  // namespace ardo
