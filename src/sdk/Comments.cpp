#include "sdk/Comments.h"

#include <kalvista/SimpleXML.h>

#include <cstring>
#include <limits>
#include <string_view>

namespace ardo {

bool compTokens(CommentToken a, CommentToken b) { return a.position < b.position; }

namespace {

constexpr std::int32_t kOpening = 0;
constexpr std::int32_t kClosing = 1;
constexpr std::int32_t kNone = std::numeric_limits<std::int32_t>::max();

// The comment delimiters of a text in their order; at one position the closing comes first.
class Delimiters {
 public:
  Delimiters(const char* text, std::int32_t length) : text_(text), length_(length) {
    findOpening(0);
    findClosing(0);
  }

  std::optional<CommentToken> next() {
    if (opening_.position == kNone && closing_.position == kNone) return std::nullopt;
    if (compTokens(opening_, closing_)) {
      const CommentToken token = opening_;
      findOpening(token.position + 1);
      return token;
    }
    const CommentToken token = closing_;
    // Starts one past the delimiter, so that in "-->-->" the second one is text.
    findClosing(token.position + 1);
    return token;
  }

 private:
  static constexpr std::string_view kOpeningText = "<!--";
  static constexpr std::string_view kClosingText = "-->";

  void findOpening(std::int32_t from) { opening_.position = find(kOpeningText, from); }

  void findClosing(std::int32_t from) {
    const std::int32_t position = find(kClosingText, from);
    closing_.position =
        position == kNone ? kNone : position + static_cast<std::int32_t>(kClosingText.size());
  }

  std::int32_t find(std::string_view delimiter, std::int32_t from) const {
    if (from >= length_) return kNone;
    const void* found = memmem(text_ + from, static_cast<std::size_t>(length_ - from),
                               delimiter.data(), delimiter.size());
    if (found == nullptr) return kNone;
    return static_cast<std::int32_t>(static_cast<const char*>(found) - text_);
  }

  const char* text_;
  std::int32_t length_;
  CommentToken opening_{kOpening, kNone};
  CommentToken closing_{kClosing, kNone};
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
