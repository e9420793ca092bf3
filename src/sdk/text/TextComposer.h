// Composes texts for people.
#ifndef KALVISTA_SDK_TEXT_COMPOSER_H
#define KALVISTA_SDK_TEXT_COMPOSER_H

#include <string>
#include <type_traits>

namespace ardo {

// Writes as an output stream in the C locale does, without what a stream costs when the library is
// loaded. A null text ends the composition.
class TextComposer {
 public:
  TextComposer& operator<<(const char* piece);
  TextComposer& operator<<(const std::string& piece);
  TextComposer& operator<<(long double number);

  template <typename Integer, typename = std::enable_if_t<std::is_integral_v<Integer>>>
  TextComposer& operator<<(Integer number) {
    return *this << std::to_string(number);
  }

  const std::string& text() const { return text_; }

 private:
  std::string text_;
  bool ended_ = false;
};

}  // namespace ardo

#endif  // KALVISTA_SDK_TEXT_COMPOSER_H
