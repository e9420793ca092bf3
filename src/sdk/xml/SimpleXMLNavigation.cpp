// SimpleXML: finding, entering and reading elements of the text.
#include <kalvista/SimpleXML.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

#include "sdk/text/NumberText.h"
#include "sdk/xml/SimpleXMLInternals.h"

namespace ardo {

namespace {

constexpr int kNotFound = -1;
constexpr int kDeepestParent = 253;

int openingLength(std::string_view name) { return static_cast<int>(name.size()) + 2; }

bool startsWithTag(std::string_view text, std::string_view name, bool closing) {
  text.remove_prefix(1);
  if (closing) {
    if (text.empty() || text.front() != '/') return false;
    text.remove_prefix(1);
  }
  return text.size() > name.size() && text[name.size()] == '>' &&
         text.substr(0, name.size()) == name;
}

// Offset of the first tag that starts in [from, limit); the search never looks beyond.
int findTag(std::string_view text, std::string_view name, int from, int limit, bool closing) {
  const auto textEnd = static_cast<int>(text.size());
  limit = std::min(limit, textEnd);
  if (from < 0) return kNotFound;
  while (from < limit) {
    const void* found =
        std::memchr(text.data() + from, '<', static_cast<std::size_t>(limit - from));
    if (found == nullptr) break;
    const auto at = static_cast<int>(static_cast<const char*>(found) - text.data());
    if (startsWithTag(text.substr(static_cast<std::size_t>(at)), name, closing)) return at;
    from = at + 1;
  }
  return kNotFound;
}

// Null without memory for it.
char* newText(std::string_view text) {
  char* copy = new (std::nothrow) char[text.size() + 1];
  if (copy != nullptr) *std::copy(text.begin(), text.end(), copy) = '\0';
  return copy;
}

}  // namespace

bool SimpleXML::setNode() {
  nodeBegin[0] = 0;
  nodeEnd[0] = length;
  depth = 0;
  return true;
}

bool SimpleXML::resetNode() {
  if (depth == 0) return false;
  --depth;
  return true;
}

int SimpleXML::getKey(const char* name, int from, int limit, bool closing) const {
  if (name == nullptr) return kNotFound;
  const int at = findTag(SimpleXMLInternals::textOf(*this), name, from, limit, closing);
  return at == kNotFound || closing ? at : at + openingLength(name);
}

bool SimpleXMLInternals::enter(SimpleXML& document, const char* name, int from, int limit) {
  const int level = ++document.depth;
  forgetSibling(document, level);
  forgetSibling(document, level + 1);
  int& begin = document.nodeBegin[level];
  int& end = document.nodeEnd[level];
  begin = document.getKey(name, from, limit, false);
  if (begin >= 0) end = document.getKey(name, begin, limit, true);
  if (begin >= 0 && end >= 0) return true;
  --document.depth;
  return false;
}

bool SimpleXMLInternals::wasEnteredAs(const SimpleXML& document, int level, const char* name) {
  const std::string_view text = textOf(document);
  const int tag = document.nodeBegin[level] - document.siblings_[level].tagLength;
  return name != nullptr && openingLength(name) == document.siblings_[level].tagLength &&
         tag >= 0 && tag < static_cast<int>(text.size()) &&
         startsWithTag(text.substr(static_cast<std::size_t>(tag)), name, false);
}

bool SimpleXMLInternals::enterSibling(SimpleXML& document, const char* name, int index) {
  const int parent = document.depth;
  const int level = parent + 1;
  int from = document.nodeBegin[parent];
  int next = 0;
  // A walk over siblings goes on behind the last one instead of counting them all again.
  const SimpleXML::Sibling last = document.siblings_[level];
  if (last.number > 0 && last.number <= index && wasEnteredAs(document, level, name)) {
    from = document.nodeEnd[level];
    next = last.number;
  }
  for (; enter(document, name, from, document.nodeEnd[parent]); ++next) {
    if (next == index) {
      document.siblings_[level] = {index + 1, openingLength(name)};
      return true;
    }
    from = document.nodeEnd[level];
    document.resetNode();
  }
  return false;
}

bool SimpleXML::setNode(const char* name) {
  if (depth > kDeepestParent) return false;
  return SimpleXMLInternals::enter(*this, name, nodeBegin[depth], nodeEnd[depth]);
}

bool SimpleXML::setNode(const char* name, int index) {
  if (index < 0 || depth > kDeepestParent) return false;
  return SimpleXMLInternals::enterSibling(*this, name, index);
}

int SimpleXML::getNodeCount(const char* name) const {
  if (depth > kDeepestParent || name == nullptr) return 0;
  const int end = std::min(nodeEnd[depth], length);
  int from = nodeBegin[depth];
  int count = 0;
  // A child that ends right at the end counts: its content may begin, and its closing tag start, at
  // the end itself.
  for (;; ++count) {
    const int begin = getKey(name, from, end - openingLength(name) + 1, false);
    if (begin < 0) return count;
    from = getKey(name, begin, end + 1, true);
    if (from < 0) return count;
  }
}

bool SimpleXML::getNode(char** out) const {
  const int begin = nodeBegin[depth];
  const int count = nodeEnd[depth] - std::max(begin, 0);
  if (out == nullptr || begin < 0 || count < 1) return false;
  const std::string_view text = SimpleXMLInternals::textOf(*this);
  const std::size_t from = std::min(static_cast<std::size_t>(begin), text.size());
  char* copy = newText(text.substr(from, static_cast<std::size_t>(count)));
  if (copy == nullptr) return false;
  *out = copy;
  return true;
}

namespace {

template <typename Read>
bool readChild(SimpleXML& document, const char* name, const Read& read) {
  if (!document.setNode(name)) return false;
  read(SimpleXMLInternals::contentOf(document));
  return document.resetNode();
}

template <typename Number>
bool readNumberChild(SimpleXML& document, const char* name, Number* out) {
  if (out == nullptr) return false;
  return readChild(document, name, [out](std::string_view text) { readNumber(text, out); });
}

}  // namespace

bool SimpleXML::getInt(const char* name, int* out) { return readNumberChild(*this, name, out); }

bool SimpleXML::getLong(const char* name, long* out) { return readNumberChild(*this, name, out); }

bool SimpleXML::getFloat(const char* name, float* out) { return readNumberChild(*this, name, out); }

bool SimpleXML::getString(const char* name, char** out) {
  if (out == nullptr) return false;
  *out = nullptr;
  return readChild(*this, name, [out](std::string_view text) { *out = newText(text); }) &&
         *out != nullptr;
}

}  // namespace ardo
