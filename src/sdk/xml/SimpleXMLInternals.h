// What the library's own code does with a document beyond its public operations.
#ifndef KALVISTA_SDK_SIMPLE_XML_INTERNALS_H
#define KALVISTA_SDK_SIMPLE_XML_INTERNALS_H

#include <kalvista/SimpleXML.h>

#include <string_view>

namespace ardo {

struct SimpleXMLInternals {
  // The text without its comments; followed by a zero byte. Empty before a document is opened.
  static std::string_view textOf(const SimpleXML& document) {
    return {document.buffer, static_cast<std::size_t>(document.textLength_)};
  }

  // The content of the current node.
  static std::string_view contentOf(const SimpleXML& document) {
    const int begin = document.nodeBegin[document.depth];
    const int end = document.nodeEnd[document.depth];
    return {document.buffer + begin, static_cast<std::size_t>(end - begin)};
  }

  // Goes one level down, to the first element of that name from an offset on.
  static bool enter(SimpleXML& document, const char* name, int from, int limit);

  // Enters a child by index.
  static bool enterSibling(SimpleXML& document, const char* name, int index);

  // True when the element that was last entered at a level, by index, has that name.
  static bool wasEnteredAs(const SimpleXML& document, int level, const char* name);

  // Forgets which sibling was entered at a level.
  static void forgetSibling(SimpleXML& document, int level) {
    document.siblings_[level].number = 0;
  }
};

}  // namespace ardo

#endif  // KALVISTA_SDK_SIMPLE_XML_INTERNALS_H
