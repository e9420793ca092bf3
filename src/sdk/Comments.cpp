#include "sdk/Comments.h"

#include <kalvista/SimpleXML.h>

#include <cstring>

namespace ardo {

bool compTokens(CommentToken a, CommentToken b) { return a.position < b.position; }

namespace {

constexpr std::int32_t kOpening = 0;
constexpr std::int32_t kClosing = 1;

// The comment delimiters of a text in their order. Both kinds have two dashes, which are rare in
// numbers and names: one search for dashes finds them all.
class Delimiters {
 public:
  // `text` is zero-terminated.
  Delimiters(const char* text, std::int32_t length)
      : text_(text), end_(text + length), dash_(findDash(text)), closingFrom_(text) {}

  std::optional<CommentToken> next() {
    for (; dash_ != nullptr; goToNextDash()) {
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

 private:
  bool isOpening() const { return dash_ - text_ >= 2 && dash_[-1] == '!' && dash_[-2] == '<'; }

  void goToNextDash() {
    dash_ = dash_[1] == '-' ? dash_ + 1 : findDash(dash_ + 1);
    openingTaken_ = false;
  }

  const char* findDash(const char* from) const {
    return static_cast<const char*>(std::memchr(from, '-', static_cast<std::size_t>(end_ - from)));
  }

  CommentToken tokenAt(std::int32_t kind, const char* position) const {
    return {kind, static_cast<std::int32_t>(position - text_)};
  }

  const char* text_;
  const char* end_;
  const char* dash_;
  const char* closingFrom_;
  bool openingTaken_ = false;  // the opening at this dash was given
};

enum class Balance { kNoComments, kBalanced, kBroken };

Balance checkBalance(const char* text, std::int32_t length) {
  Delimiters delimiters(text, length);
  std::optional<CommentToken> token = delimiters.next();
  if (!token) return Balance::kNoComments;
  int open = 0;
  for (; token; token = delimiters.next()) {
    open += token->kind == kOpening ? 1 : -1;
    if (open < 0) return Balance::kBroken;
  }
  return open == 0 ? Balance::kBalanced : Balance::kBroken;
}

}  // namespace

std::optional<std::int32_t> cutComments(char* text, std::int32_t length) {
  const Balance balance = checkBalance(text, length);
  if (balance == Balance::kNoComments) return length;
  if (balance == Balance::kBroken) return std::nullopt;

  // What is kept moves to the left of every delimiter that is still to be found.
  Delimiters delimiters(text, length);
  int open = 0;
  std::int32_t keptFrom = 0;
  std::int32_t fill = 0;
  const auto keepUpTo = [&](std::int32_t end) {
    std::memmove(text + fill, text + keptFrom, static_cast<std::size_t>(end - keptFrom));
    fill += end - keptFrom;
  };
  while (const std::optional<CommentToken> token = delimiters.next()) {
    if (token->kind == kOpening) {
      if (open++ == 0) keepUpTo(token->position);
    } else if (--open == 0) {
      keptFrom = token->position;
    }
  }
  keepUpTo(length);
  text[fill] = '\0';
  return fill;
}

}  // namespace ardo
