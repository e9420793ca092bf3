// Yields the tags of a text in their order.
#ifndef KALVISTA_SDK_TAG_SCANNER_H
#define KALVISTA_SDK_TAG_SCANNER_H

#include <cstddef>
#include <cstring>
#include <string_view>

namespace ardo {

struct Tag {
  std::string_view name;
  bool closing = false;
};

// A tag is "<name>" or "</name>" with no bracket within. A search of the text for the tag of a
// given name finds exactly those that this yields under that name: one pass over them answers the
// searches for all names at once.
class TagScanner {
 public:
  // `text` must be followed by a zero byte.
  explicit TagScanner(std::string_view text)
      : at_(text.data()), end_(at_ + text.size()), next_(findBracket(at_)) {}

  // Takes the next tag if it is the one that is expected.
  bool takeExpected(std::string_view name, bool closing) {
    const char* found = next_ + (closing ? 2 : 1);
    if (end_ - found <= static_cast<std::ptrdiff_t>(name.size()) || found[name.size()] != '>' ||
        (closing && next_[1] != '/') || std::memcmp(found, name.data(), name.size()) != 0) {
      return false;
    }
    taken_ = next_;
    at_ = found + name.size() + 1;
    next_ = findBracket(at_);
    return true;
  }

  // Takes all up to the end of a tag if the text from the next tag on is that of a former place.
  bool takeRepeated(std::string_view former) {
    if (static_cast<std::size_t>(end_ - next_) < former.size() ||
        std::memcmp(next_, former.data(), former.size()) != 0) {
      return false;
    }
    taken_ = next_;
    at_ = next_ + former.size();
    next_ = findBracket(at_);
    return true;
  }

  bool takeNext(Tag& tag) {
    while (next_ != end_) {
      const bool closing = next_[1] == '/';
      const char* name = next_ + (closing ? 2 : 1);
      const char* nameEnd = name;
      while (*nameEnd != '>' && *nameEnd != '<' && *nameEnd != '\n' && nameEnd != end_) ++nameEnd;
      if (*nameEnd == '>') {
        tag = {{name, static_cast<std::size_t>(nameEnd - name)}, closing};
        taken_ = next_;
        at_ = nameEnd + 1;
        next_ = findBracket(at_);
        return true;
      }
      tagCut_ = tagCut_ || *nameEnd == '\n' || nameEnd == end_;
      next_ = findBracket(nameEnd);
    }
    return false;
  }

  // True when what was passed over may have been a tag but for a line end, or the end of the text,
  // in it.
  bool tagCut() const { return tagCut_; }

  // Where what was taken last begins, and where it ends.
  const char* tagBegin() const { return taken_; }
  const char* tagEnd() const { return at_; }

 private:
  // The end of the text when there is none.
  const char* findBracket(const char* from) const {
    const void* found = std::memchr(from, '<', static_cast<std::size_t>(end_ - from));
    return found != nullptr ? static_cast<const char*>(found) : end_;
  }

  const char* at_;
  const char* end_;
  const char* next_;             // the next "<"
  const char* taken_ = nullptr;  // the "<" that was taken last
  bool tagCut_ = false;
};

}  // namespace ardo

#endif  // KALVISTA_SDK_TAG_SCANNER_H
