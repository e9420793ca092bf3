// Everything in a document that the reader takes otherwise than its author meant it.
#ifndef KALVISTA_TOOL_LINT_H
#define KALVISTA_TOOL_LINT_H

#include <string>

#include "lint/LintText.h"

namespace tool {

// In the order of their places.
Findings lint(const std::string& document);

}  // namespace tool

#endif  // KALVISTA_TOOL_LINT_H
