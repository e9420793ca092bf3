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
  std::size_t begin = 0;  // of the opening tag
  std::size_t contentBegin = 0;
  std::size_t contentEnd = 0;
  std::size_t end = 0;             // of the closing tag
  std::size_t ownText = kNowhere;  // where text outside of children begins
};
using Elements = std::vector<Element>;

class ElementVisitor {
 public:
  ElementVisitor() = default;
  virtual ~ElementVisitor() = default;
  ElementVisitor(const ElementVisitor&) = delete;
  ElementVisitor& operator=(const ElementVisitor&) = delete;
  // The element, of which nothing but its opening tag is known yet, is the last of those open.
  virtual void onOpened(const Elements& open) = 0;
  // The element, all known, is still the last of those open. False when no more is to be shown.
  virtual bool onClosed(const Elements& open) = 0;
};

// Each fault of form is reported and mended, so that the elements behind it are seen as well. No
// more is kept than the elements that are open, and these are never more than a hundred.
void visitElements(std::string view, const Format& format, Findings& findings,
                   ElementVisitor& visitor);

}  // namespace tool

#endif  // KALVISTA_TOOL_LINT_TREE_H
