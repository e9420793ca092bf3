// Values, read as the library's reader reads them.
#ifndef KALVISTA_TOOL_LINT_VALUES_H
#define KALVISTA_TOOL_LINT_VALUES_H

#include <optional>
#include <string>

#include "lint/LintFormat.h"

namespace tool {

struct ValueCheck {
  std::string message;           // empty when there is nothing to say
  std::optional<double> number;  // what the reader makes of it, when it is a number
};

std::string quoted(const std::string& value);  // a long one is cut

ValueCheck checkValue(const ElementRule& rule, const std::string& value);

}  // namespace tool

#endif  // KALVISTA_TOOL_LINT_VALUES_H
