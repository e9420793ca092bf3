#include "sdk/xml/Comments.h"

#include <kalvista/SimpleXML.h>

#include <cstring>

namespace ardo {

bool compTokens(CommentToken a, CommentToken b) { return a.position < b.position; }

namespace {

constexpr std::int32_t kOpening = 0;
constexpr std::int32_t kClosing = 1;

// The comment delimiters of a zero-terminated text in their order. Both kinds have two dashes,
// which are rare in numbers and names: one search for dashes finds them all.
class Delimiters {
 public:
  Delimiters(const char* begin, const char* end) : text_(begin), end_(end), closingFrom_(begin) {
    goTo(findDash(begin));
  }

  std::optional<CommentToken> next() {
    for (; dash_ != nullptr; goTo(dash_[1] == '-' ? dash_ + 1 : findDash(dash_ + 1))) {
      if (dash_[1] != '-') continue;
      if (!openingTaken_ && isOpening()) {
        openingTaken_ = true;
        return tokenAt(kOpening, dash_ - 2);
      }
      if (dash_[2] == '>' && dash_ >= closingFrom_) {
        const char* end = dash_ + 3;
        // A "-->" that follows another without a character between is text.
        closingFrom_ = end + 1;
        return tokenAt(kClosing, end);
      }
    }
    return std::nullopt;
  }

  // True when a dash that was seen, or its "!", stood at the end or the start of a line.
  bool lineEndMet() const { return lineEndMet_; }

 private:
  bool isOpening() const { return dash_ - text_ >= 2 && dash_[-1] == '!' && dash_[-2] == '<'; }

  void goTo(const char* dash) {
    dash_ = dash;
    openingTaken_ = false;
    lineEndMet_ = lineEndMet_ || (dash != nullptr && isAtLineEnd(dash));
  }

  bool isAtLineEnd(const char* dash) const {
    const auto startsLine = [this](const char* at) { return at == text_ || at[-1] == '\n'; };
    return startsLine(dash) || (dash[-1] == '!' && startsLine(dash - 1)) || dash + 1 == end_ ||
           dash[1] == '\n';
  }

  const char* findDash(const char* from) const {
    return static_cast<const char*>(std::memchr(from, '-', static_cast<std::size_t>(end_ - from)));
  }

  CommentToken tokenAt(std::int32_t kind, const char* position) const {
    return {kind, static_cast<std::int32_t>(position - text_)};
  }

  const char* text_;
  const char* end_;
  const char* dash_ = nullptr;
  const char* closingFrom_;
  bool openingTaken_ = false;  // the opening at this dash was given
  bool lineEndMet_ = false;
};

// Nothing may be cut before all is known to balance.
bool balances(const char* begin, const char* end) {
  int open = 0;
  Delimiters delimiters(begin, end);
  while (const std::optional<CommentToken> token = delimiters.next()) {
    open += token->kind == kOpening ? 1 : -1;
    if (open < 0) break;
  }
  return open == 0;
}

}  // namespace

char* CommentCutter::cut(char* begin, char* end) {
  const char* keptFrom = begin;
  char* fill = begin;
  const auto keepUpTo = [&](const char* keptEnd) {
    const auto size = static_cast<std::size_t>(keptEnd - keptFrom);
    if (fill != keptFrom) std::memmove(fill, keptFrom, size);
    fill += size;
  };
  Delimiters delimiters(begin, end);
  while (const std::optional<CommentToken> token = delimiters.next()) {
    if (token->kind == kOpening) {
      if (open_++ == 0) keepUpTo(begin + token->position);
    } else if (--open_ <= 0) {
      if (open_ < 0) break;
      keptFrom = begin + token->position;
    }
  }
  if (open_ == 0) keepUpTo(end);
  lineEndMet_ |= delimiters.lineEndMet();
  return fill;
}

std::optional<std::int32_t> cutComments(char* text, std::int32_t length) {
  if (!balances(text, text + length)) return std::nullopt;
  char* end = CommentCutter().cut(text, text + length);
  *end = '\0';
  return static_cast<std::int32_t>(end - text);
}

}  // namespace ardo
