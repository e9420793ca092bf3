// The XML reader as it is meant, written down step by step without a thought for speed. The library
// finds the same results by other ways; the differential test holds it against this one.
#ifndef KALVISTA_TESTS_ORACLE_PLAIN_XML_H
#define KALVISTA_TESTS_ORACLE_PLAIN_XML_H

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace oracle {

/// Same members as ardo::SimpleXML, so that one template can drive both.
class PlainXml {
 public:
  PlainXml() = default;
  PlainXml(const PlainXml&) = delete;
  PlainXml& operator=(const PlainXml&) = delete;

  bool open(const char* file, const char* root) {
    if (!std::filesystem::is_regular_file(file) || !std::ifstream(file)) return false;
    readLines(file, root);
    length = static_cast<std::int32_t>(text_.size());
    depth = 0;
    std::replace(text_.begin(), text_.end(), '\r', '\n');
    const bool wellFormed = cutComments();
    buffer = text_.c_str();
    return wellFormed;
  }

  bool hasRoot() const { return rootFound_; }

  bool setNode() {
    nodeBegin[0] = 0;
    nodeEnd[0] = length;
    depth = 0;
    return true;
  }

  bool setNode(const char* name) { return setNode(name, 0); }

  bool setNode(const char* name, int index) {
    if (index < 0 || depth > 253) return false;
    int start = nodeBegin[depth];
    const int limit = nodeEnd[depth];
    ++depth;
    for (int count = 0;;) {
      nodeBegin[depth] = getKey(name, start, limit, false);
      if (nodeBegin[depth] < 0) break;
      nodeEnd[depth] = getKey(name, nodeBegin[depth], limit, true);
      if (nodeEnd[depth] < 0) break;
      start = nodeEnd[depth];
      if (index < ++count) return true;
    }
    --depth;
    return false;
  }

  bool resetNode() {
    if (depth == 0) return false;
    --depth;
    return true;
  }

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

  bool getNode(char** out) const {
    if (nodeEnd[depth] - nodeBegin[depth] < 1) return false;
    *out = copyContent();
    return true;
  }

  int getKey(const char* name, int from, int limit, bool closing) const {
    const std::string tag = std::string(closing ? "</" : "<") + name + ">";
    if (from < 0 || from > static_cast<std::ptrdiff_t>(text_.size())) return -1;
    const char* found = std::strstr(text_.c_str() + from, tag.c_str());
    if (found == nullptr || found - text_.c_str() >= limit) return -1;
    return static_cast<int>(found - text_.c_str()) + (closing ? 0 : static_cast<int>(tag.size()));
  }

  bool getInt(const char* name, int* out) { return scanChild(name, "%i", out); }
  bool getLong(const char* name, long* out) { return scanChild(name, "%ld", out); }
  bool getFloat(const char* name, float* out) { return scanChild(name, "%f", out); }

  bool getString(const char* name, char** out) {
    *out = nullptr;
    if (!setNode(name)) return false;
    *out = copyContent();
    return resetNode();
  }

  std::int32_t length = 0;
  std::int32_t nodeBegin[256] = {};
  std::int32_t nodeEnd[256] = {};
  std::uint16_t depth = 0;
  const char* buffer = nullptr;

 private:
  void readLines(const char* file, const std::string& root) {
    std::ifstream ahead(file, std::ios::binary);
    std::streamoff firstTag = 0;
    for (char c = 0; ahead.get(c) && c != '<';) ++firstTag;
    std::ifstream reader(file, std::ios::binary);
    reader.seekg(firstTag);
    text_.clear();
    rootFound_ = false;
    char line[4096];
    while (reader.getline(line, sizeof line)) {
      if (!rootFound_) {
        rootFound_ = std::strstr(line, ("<" + root).c_str()) != nullptr;
      } else if (std::strstr(line, ("</" + root + ">").c_str()) != nullptr) {
        return;
      } else {
        text_ += line;
      }
    }
  }

  bool cutComments() {
    constexpr std::size_t kNone = std::string::npos;
    std::vector<std::pair<std::size_t, bool>> delimiters;  // position, opens: closings sort first
    for (std::size_t p = text_.find("<!--"); p != kNone; p = text_.find("<!--", p + 1)) {
      delimiters.emplace_back(p, true);
    }
    for (std::size_t q = text_.find("-->"); q != kNone; q = text_.find("-->", q + 4)) {
      delimiters.emplace_back(q + 3, false);
    }
    std::sort(delimiters.begin(), delimiters.end());
    std::string copy = text_;
    int nesting = 0;
    std::size_t cutStart = 0;
    std::size_t removed = 0;
    for (const auto& [position, opens] : delimiters) {
      if (opens) {
        if (nesting++ == 0) cutStart = position;
      } else if (nesting == 0) {
        return false;
      } else if (--nesting == 0) {
        copy.replace(cutStart - removed, kNone, text_, position, kNone);
        removed += position - cutStart;
      }
    }
    if (nesting == 0) text_ = copy;
    return nesting == 0;
  }

  // A document whose comments were cut ends before nodeEnd[0].
  char* copyContent() const {
    const auto count = static_cast<std::size_t>(nodeEnd[depth] - nodeBegin[depth]);
    char* copy = new char[count + 1];
    std::strncpy(copy, text_.c_str() + nodeBegin[depth], count);
    copy[count] = '\0';
    return copy;
  }

  template <typename Number>
  bool scanChild(const char* name, const char* format, Number* out) {
    if (!setNode(name)) return false;
    const std::unique_ptr<const char[]> content(copyContent());
    std::sscanf(content.get(), format, out);
    return resetNode();
  }

  std::string text_;
  bool rootFound_ = false;
};

}  // namespace oracle

#endif  // KALVISTA_TESTS_ORACLE_PLAIN_XML_H
