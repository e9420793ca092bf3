#include "sdk/Comments.h"

#include <kalvista/SimpleXML.h>

#include <cstring>
#include <vector>

namespace ardo {

bool compTokens(CommentToken a, CommentToken b) { return a.position < b.position; }

namespace {

constexpr std::int32_t kOpening = 0;
constexpr std::int32_t kClosing = 1;

// The comment delimiters of a text in their order. Both kinds have two dashes, which are rare in
// numbers and names: one search for dashes finds them all.
class Delimiters {
 public:
  // Starts at the beginning of a zero-terminated text or behind one of its closing delimiters.
  Delimiters(const char* text, std::int32_t from, std::int32_t length)
      : text_(text),
        end_(text + length),
        dash_(findDash(text + from)),
        closingFrom_(from == 0 ? text : text + from + 1) {}

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

struct Span {
  std::int32_t begin;
  std::int32_t end;
};

// The comments of a text in their order, each with those that are nested in it.
class Comments {
 public:
  Comments(const char* text, std::int32_t from, std::int32_t length)
      : delimiters_(text, from, length) {}

  // Nothing when there are no more, or a delimiter has no counterpart.
  std::optional<Span> next() {
    Span comment{};
    int open = 0;
    while (const std::optional<CommentToken> token = delimiters_.next()) {
      if (token->kind == kOpening) {
        if (open++ == 0) comment.begin = token->position;
      } else if (--open == 0) {
        comment.end = token->position;
        return comment;
      } else if (open < 0) {
        break;
      }
    }
    broken_ = open != 0;
    return std::nullopt;
  }

  bool broken() const { return broken_; }

 private:
  Delimiters delimiters_;
  bool broken_ = false;
};

// Keeps what stands between comments, moving it to the left.
class Cutter {
 public:
  explicit Cutter(char* text) : text_(text) {}

  void cut(Span comment) {
    keepUpTo(comment.begin);
    keptFrom_ = comment.end;
  }

  std::int32_t finish(std::int32_t length) {
    keepUpTo(length);
    text_[fill_] = '\0';
    return fill_;
  }

 private:
  void keepUpTo(std::int32_t end) {
    std::memmove(text_ + fill_, text_ + keptFrom_, static_cast<std::size_t>(end - keptFrom_));
    fill_ += end - keptFrom_;
  }

  char* text_;
  std::int32_t keptFrom_ = 0;
  std::int32_t fill_ = 0;
};

}  // namespace

std::optional<std::int32_t> cutComments(char* text, std::int32_t length) {
  // Nothing may be cut before all is known to balance. Comments are remembered meanwhile, as many
  // as take an eighth of the text's memory; any beyond are looked for again.
  const std::size_t mostRemembered = static_cast<std::size_t>(length) / (8 * sizeof(Span)) + 1;
  std::vector<Span> remembered;
  std::size_t count = 0;
  Comments comments(text, 0, length);
  while (const std::optional<Span> comment = comments.next()) {
    if (count == 0) remembered.reserve(mostRemembered);
    if (count++ < mostRemembered) remembered.push_back(*comment);
  }
  if (comments.broken()) return std::nullopt;
  if (count == 0) return length;

  Cutter cutter(text);
  for (const Span comment : remembered) cutter.cut(comment);
  if (remembered.size() < count) {
    Comments rest(text, remembered.back().end, length);
    while (const std::optional<Span> comment = rest.next()) cutter.cut(*comment);
  }
  return cutter.finish(length);
}

}  // namespace ardo
