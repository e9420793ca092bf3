// Reads the content of one root element as flat text.
#ifndef KALVISTA_SDK_DOCUMENT_TEXT_H
#define KALVISTA_SDK_DOCUMENT_TEXT_H

#include <array>
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

// The same lines with their ends, but without comments, for a reader that looks at the line ends
// itself. This is faster; a text whose comments do not balance, or have a delimiter at a line end,
// is not read that way.
//
// Its own memory is read into, so that it need not be set before.
// NOLINTBEGIN(cppcoreguidelines-pro-type-member-init)
class TextInLines {
 public:
  TextInLines() = default;
  ~TextInLines() = default;
  TextInLines(const TextInLines&) = delete;
  TextInLines& operator=(const TextInLines&) = delete;

  // False when the text is not read that way, or there is none.
  bool read(const char* file, std::string_view root);

  // Followed by a zero byte.
  std::string_view text() const { return text_; }

 private:
  std::array<char, std::size_t{16} * 1024> small_;  // most files take none of the heap
  std::unique_ptr<char[]> large_;
  std::string_view text_;
};
// NOLINTEND(cppcoreguidelines-pro-type-member-init)

}  // namespace ardo

#endif  // KALVISTA_SDK_DOCUMENT_TEXT_H
