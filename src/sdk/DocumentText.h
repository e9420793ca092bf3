// Reads the content of one root element as flat text.
#ifndef KALVISTA_SDK_DOCUMENT_TEXT_H
#define KALVISTA_SDK_DOCUMENT_TEXT_H

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
// tag: line feeds dropped, carriage returns turned into line feeds, comments kept.
// Nothing when the file cannot be opened, is no regular file, or has 2 GiB or more.
std::optional<DocumentText> readDocumentText(const char* file, std::string_view root);

}  // namespace ardo

#endif  // KALVISTA_SDK_DOCUMENT_TEXT_H
