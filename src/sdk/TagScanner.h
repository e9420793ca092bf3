// Yields the tags of a text in their order.
#ifndef KALVISTA_SDK_TAG_SCANNER_H
#define KALVISTA_SDK_TAG_SCANNER_H

#include <cstring>
#include <string_view>

namespace ardo {

struct Tag {
  std::string_view name;
  bool closing;
  const char* begin;  // its "<"
  const char* end;    // past its ">"
};

// A tag is "<name>" or "</name>" with no bracket within. A search of the text for the tag of a
// given name finds exactly those that this yields under that name: one pass over them answers the
// searches for all names at once.
class TagScanner {
 public:
  // `text` must be followed by a zero byte.
  explicit TagScanner(std::string_view text) : at_(text.data()), end_(at_ + text.size()) {}

  bool next(Tag& tag) {
    const char* open = nextOpening();
    while (open != nullptr) {
      const char* name = open + 1;
      const bool closing = *name == '/';
      if (closing) ++name;
      at_ = name;
      while (at_ != end_ && *at_ != '>' && *at_ != '<') ++at_;
      if (at_ == end_) return false;
      if (*at_ == '>') {
        tag = {{name, static_cast<std::size_t>(at_ - name)}, closing, open, at_ + 1};
        ++at_;
        return true;
      }
      open = at_;
    }
    return false;
  }

 private:
  const char* nextOpening() const {
    return static_cast<const char*>(std::memchr(at_, '<', static_cast<std::size_t>(end_ - at_)));
  }

  const char* at_;
  const char* end_;
};

}  // namespace ardo

#endif  // KALVISTA_SDK_TAG_SCANNER_H
