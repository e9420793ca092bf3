// Reads the content of one root element as flat text.
#ifndef KALVISTA_SDK_DOCUMENT_TEXT_H
#define KALVISTA_SDK_DOCUMENT_TEXT_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace ardo {

// What becomes of the line ends of a text.
enum class LineEnds { Dropped, Kept };

struct DocumentText {
  std::unique_ptr<char[]> characters;  // zero-terminated
  std::int32_t length = 0;
  bool rootFound = false;
};

// Reads what stands strictly between the line of the root's opening tag and the line of its closing
// tag. The text has its line feeds dropped, its carriage returns turned into line feeds, and its
// comments kept. Nothing when the file cannot be opened, is no regular file, or has 2 GiB or more.
//
// With line ends kept, the same lines stand as they are. This is faster, and of use to a reader
// that looks at the line ends itself; a text in which comments may be found is not read that way.
std::optional<DocumentText> readDocumentText(const char* file, std::string_view root,
                                             LineEnds lineEnds = LineEnds::Dropped);

}  // namespace ardo

#endif  // KALVISTA_SDK_DOCUMENT_TEXT_H
