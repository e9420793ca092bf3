// The XML reader as it is meant, written down step by step without a thought for speed. The library
// finds the same results by other ways; the differential test holds it against this one.
#ifndef KALVISTA_TESTS_ORACLE_PLAIN_XML_H
#define KALVISTA_TESTS_ORACLE_PLAIN_XML_H

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace oracle {

/// Same members as ardo::SimpleXML, so that one template can drive both.
class PlainXml {
 public:
  bool open(const char* file, const char* root) {
    if (!std::filesystem::is_regular_file(file)) return false;
    readLines(file, root);
    length = static_cast<int>(text_.size());
    depth = 0;
    std::replace(text_.begin(), text_.end(), '\r', '\n');
    const bool wellFormed = cutComments();
    buffer = text_.c_str();
    return wellFormed;
  }

  bool hasRoot() const { return rootFound_; }

  bool setNode() {
    nodeEnd[0] = length;
    depth = 0;
    return true;
  }

  bool setNode(const char* name, int index = 0) {
    if (index < 0 || depth > 253) return false;
    int start = nodeBegin[depth];
    const int limit = nodeEnd[depth++];
    for (int count = 0; count <= index; ++count) {
      nodeBegin[depth] = start = getKey(name, start, limit, false);
      if (start >= 0) nodeEnd[depth] = start = getKey(name, start, limit, true);
      if (start < 0) return !resetNode();
    }
    return true;
  }

  bool resetNode() { return depth > 0 && depth-- > 0; }

  int getNodeCount(const char* name) const {
    if (depth > 253) return 0;
    int start = nodeBegin[depth];
    for (int count = 0;; ++count) {
      const int begin = getKey(name, start, length, false);
      if (begin < 0 || begin > nodeEnd[depth]) return count;
      start = getKey(name, begin, length, true);
      if (start < 0 || start > nodeEnd[depth]) return count;
    }
  }

  int getKey(const char* name, int from, int limit, bool closing) const {
    const std::string tag = std::string(closing ? "</" : "<") + name + ">";
    if (from < 0) return -1;
    const std::size_t found = text_.find(tag, static_cast<std::size_t>(from));
    if (found == std::string::npos || static_cast<int>(found) >= limit) return -1;
    return static_cast<int>(found + (closing ? 0 : tag.size()));
  }

  bool getNode(char** out) const {
    if (nodeEnd[depth] - nodeBegin[depth] < 1) return false;
    *out = std::strcpy(new char[content().size() + 1], content().c_str());
    return true;
  }

  bool getString(const char* name, char** out) {
    *out = nullptr;
    if (!setNode(name)) return false;
    *out = std::strcpy(new char[content().size() + 1], content().c_str());
    return resetNode();
  }

  bool getInt(const char* name, int* out) { return scanChild(name, "%i", out); }
  bool getLong(const char* name, long* out) { return scanChild(name, "%ld", out); }
  bool getFloat(const char* name, float* out) { return scanChild(name, "%f", out); }

  int length = 0;
  int nodeBegin[256] = {};
  int nodeEnd[256] = {};
  int depth = 0;
  const char* buffer = nullptr;

 private:
  void readLines(const char* file, const std::string& root) {
    std::ifstream reader(file, std::ios::binary);
    while (reader.peek() != '<' && reader.get() != EOF) continue;
    text_.clear();
    rootFound_ = false;
    for (char line[4096]; reader.getline(line, sizeof line);) {
      if (rootFound_ && std::strstr(line, ("</" + root + ">").c_str()) != nullptr) return;
      if (rootFound_) text_ += line;
      rootFound_ = rootFound_ || std::strstr(line, ("<" + root).c_str()) != nullptr;
    }
  }

  // A "-->" that follows another without a character between is text.
  bool cutComments() {
    std::string kept;
    int nesting = 0;
    std::size_t closingFrom = 3;
    for (std::size_t at = 0; at <= text_.size(); ++at) {
      if (at >= closingFrom && text_.compare(at - 3, 3, "-->") == 0) {
        if (--nesting < 0) return false;
        closingFrom = at + 4;
      }
      if (text_.compare(at, 4, "<!--") == 0) ++nesting;
      if (nesting == 0) kept += text_[at];
    }
    if (nesting == 0) text_ = kept.c_str();
    return nesting == 0;
  }

  // A document whose comments were cut ends before nodeEnd[0].
  std::string content() const {
    return text_.substr(static_cast<std::size_t>(nodeBegin[depth]),
                        static_cast<std::size_t>(nodeEnd[depth] - nodeBegin[depth]));
  }

  template <typename Number>
  bool scanChild(const char* name, const char* format, Number* out) {
    if (!setNode(name)) return false;
    std::sscanf(content().c_str(), format, out);
    return resetNode();
  }

  std::string text_;
  bool rootFound_ = false;
};

}  // namespace oracle

#endif  // KALVISTA_TESTS_ORACLE_PLAIN_XML_H
