// Finds and cuts the comments of a text.
#ifndef KALVISTA_SDK_COMMENTS_H
#define KALVISTA_SDK_COMMENTS_H

#include <cstdint>
#include <optional>

namespace ardo {

// Cuts comments out of a text that comes in pieces, nested ones with the one that holds them.
class CommentCutter {
 public:
  // Moves what is kept of a piece to its begin and returns the end of it. No delimiter may reach
  // beyond its piece, which must be followed by a zero byte.
  char* cut(char* begin, char* end);

  // True between the delimiters of a comment.
  bool inComment() const { return open_ > 0; }

  // True when a comment was closed that was not open, or a dash stood at an end of a line or piece,
  // where it may belong to a delimiter that was not seen.
  bool failed() const { return open_ < 0 || lineEndMet_; }

 private:
  int open_ = 0;
  bool lineEndMet_ = false;
};

// Cuts the comments out of a whole text, and terminates what is left. Returns its length; nothing,
// with the text untouched, when the comments do not balance.
std::optional<std::int32_t> cutComments(char* text, std::int32_t length);

}  // namespace ardo

#endif  // KALVISTA_SDK_COMMENTS_H
