// Reads the content of one root element as flat text.
#ifndef KALVISTA_SDK_DOCUMENT_TEXT_H
#define KALVISTA_SDK_DOCUMENT_TEXT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace ardo {

struct DocumentText {
  std::unique_ptr<char[]> characters;  // zero-terminated
  std::int32_t length = 0;
  bool rootFound = false;
};

// Reads what stands strictly between the line of the root's opening tag and the line of its closing
// tag. The text has its line feeds dropped, its carriage returns turned into line feeds, and its
// comments kept. Nothing when the file cannot be opened, is no regular file, or has 2 GiB or more.
std::optional<DocumentText> readDocumentText(const char* file, std::string_view root);

// Takes lines that come in pieces.
class LineReceiver {
 public:
  // Whole lines with their ends, in memory that may be written and is gone afterwards; followed by
  // a zero byte. False when no more are wanted.
  virtual bool take(std::string_view lines) = 0;

  LineReceiver() = default;
  virtual ~LineReceiver() = default;
  LineReceiver(const LineReceiver&) = delete;
  LineReceiver& operator=(const LineReceiver&) = delete;
};

// Gives out the same lines with their ends, but without comments, and keeps none of them. A comment
// that reaches from one line to another may come between two pieces and leave a line without an
// end.
// False when the receiver wanted no more, or the text is not read that way: there is no root, or
// its comments do not balance or have a delimiter at a line end.
bool readLines(const char* file, std::string_view root, LineReceiver& receiver);

}  // namespace ardo

#endif  // KALVISTA_SDK_DOCUMENT_TEXT_H
