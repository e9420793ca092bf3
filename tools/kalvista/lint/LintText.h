// What the reader does with the text of a file before it looks at elements.
#ifndef KALVISTA_TOOL_LINT_TEXT_H
#define KALVISTA_TOOL_LINT_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "lint/LintFormat.h"

namespace tool {

struct Finding {
  std::size_t offset = 0;
  std::string path;  // of elements: imager/temperature/min
  std::string message;
  std::size_t line = 0;
  std::size_t column = 0;  // in characters of UTF-8
};
using Findings = std::vector<Finding>;

// A file with more is mended in steps.
constexpr std::size_t kMostFindings = 1000;

// imager/temperature/min; what lies between is left out of a long one.
std::string pathOf(const std::vector<std::string>& steps);

// Takes the place of what the reader cuts out, so that all else keeps its place. White space to an
// XML parser.
constexpr char kBlank = '\r';

constexpr bool isWhite(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}
// From `from` on; `to` when there is only white space.
std::size_t findInk(std::string_view text, std::size_t from, std::size_t to);
// Line feeds stay.
void blankOut(std::string& text, std::size_t from, std::size_t to);

// Goes through a document once, to places that come in their order.
class LineCounter {
 public:
  explicit LineCounter(std::string_view document) : document_(document) {}

  void goTo(std::size_t offset);
  std::size_t line() const { return line_; }
  std::size_t column() const { return column_; }  // in characters of UTF-8

 private:
  std::string_view document_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
  std::size_t column_ = 1;
};

struct LintText {
  const Format* format = nullptr;  // null when there is no root that is known or nearly so
  std::string view;                // the document, without comments, at the same offsets
};

LintText readAsText(const std::string& document, Findings& findings);

}  // namespace tool

#endif  // KALVISTA_TOOL_LINT_TEXT_H
