// Yields the tags of a text in their order.
#ifndef KALVISTA_SDK_TAG_SCANNER_H
#define KALVISTA_SDK_TAG_SCANNER_H

#include <cstring>
#include <string_view>

namespace ardo {

struct Tag {
  std::string_view name;
  bool closing = false;
  const char* begin = nullptr;  // its "<"
  const char* end = nullptr;    // past its ">"
};

// A tag is "<name>" or "</name>" with no bracket within. A search of the text for the tag of a
// given name finds exactly those that this yields under that name: one pass over them answers the
// searches for all names at once.
class TagScanner {
 public:
  // `text` must be followed by a zero byte.
  explicit TagScanner(std::string_view text) : end_(text.data() + text.size()) {
    findBracket(text.data());
  }

  // Takes the next tag if it is the closing tag of that name.
  bool takeClosing(std::string_view name, Tag& tag) {
    const std::size_t length = name.size() + 3;
    if (bracket_ == nullptr || static_cast<std::size_t>(end_ - bracket_) < length ||
        bracket_[length - 1] != '>' || bracket_[1] != '/' ||
        std::memcmp(bracket_ + 2, name.data(), name.size()) != 0) {
      return false;
    }
    tag = {name, true, bracket_, bracket_ + length};
    findBracket(tag.end);
    return true;
  }

  bool next(Tag& tag) {
    while (bracket_ != nullptr) {
      const bool closing = bracket_[1] == '/';
      const char* name = bracket_ + (closing ? 2 : 1);
      const char* nameEnd = name;
      while (*nameEnd != '>' && *nameEnd != '<' && nameEnd != end_) ++nameEnd;
      if (*nameEnd == '>') {
        tag = {{name, static_cast<std::size_t>(nameEnd - name)}, closing, bracket_, nameEnd + 1};
        findBracket(tag.end);
        return true;
      }
      bracket_ = nameEnd == end_ ? nullptr : nameEnd;
    }
    return false;
  }

 private:
  void findBracket(const char* from) {
    bracket_ =
        static_cast<const char*>(std::memchr(from, '<', static_cast<std::size_t>(end_ - from)));
  }

  const char* end_;
  const char* bracket_ = nullptr;  // the next "<"
};

}  // namespace ardo

#endif  // KALVISTA_SDK_TAG_SCANNER_H
