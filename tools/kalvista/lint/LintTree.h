// The elements of a document with their places, also of one that is not well-formed.
#ifndef KALVISTA_TOOL_LINT_TREE_H
#define KALVISTA_TOOL_LINT_TREE_H

#include <cstddef>
#include <string>
#include <vector>

#include "lint/LintText.h"

namespace tool {

constexpr std::size_t kNowhere = std::string::npos;

struct Element {
  std::string name;
  std::size_t parent = kNowhere;  // its index; kNowhere for the root
  std::size_t begin = 0;          // of the opening tag
  std::size_t contentBegin = 0;
  std::size_t contentEnd = 0;
  std::size_t end = 0;             // of the closing tag
  std::size_t ownText = kNowhere;  // where text outside of children begins
};

// Each fault of form is reported and mended, so that the elements behind it are seen as well.
std::vector<Element> parseElements(std::string view, Findings& findings);

// "CaliData/Temperature/Optics/OpticsDef[2]": elements that may be repeated are numbered.
std::string pathOf(const std::vector<Element>& elements, std::size_t index, const Format& format);

}  // namespace tool

#endif  // KALVISTA_TOOL_LINT_TREE_H
