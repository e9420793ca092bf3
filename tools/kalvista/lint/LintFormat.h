// What stands in the files that `lint` knows: one table for each kind drives names, places, kinds
// of values and ranges.
#ifndef KALVISTA_TOOL_LINT_FORMAT_H
#define KALVISTA_TOOL_LINT_FORMAT_H

#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace tool {

enum class ValueKind {
  Elements,
  Integer,
  Integer16,
  DecimalInteger,
  Number,
  Text,
  NamePart,
  Truth
};

struct Range {
  double min = -std::numeric_limits<double>::infinity();
  double max = std::numeric_limits<double>::infinity();
};

constexpr double kAboveZero = std::numeric_limits<float>::denorm_min();
constexpr Range kAnyInteger{std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
constexpr Range kFromZero{0, std::numeric_limits<int>::max()};
constexpr Range kUnsigned16{0, 65535};

struct ElementRule {
  std::string_view name;
  std::string_view parent;
  ValueKind kind = ValueKind::Elements;
  Range range = {};
  bool repeated = false;
  std::string_view newName = {};  // for a former name
};

// Two values of the same parent.
struct OrderRule {
  std::string_view lower;
  std::string_view upper;
  bool mayBeEqual;
  std::optional<double> unset;  // a value that means: there is none
};

struct Format {
  std::string_view root;
  std::vector<ElementRule> elements;
  std::vector<OrderRule> orders;
  std::vector<std::string_view> levels;  // that the reader does without

  const ElementRule* find(std::string_view name) const;
};

const Format& deviceConfigurationFormat();
const Format& calibrationFormat();

}  // namespace tool

#endif  // KALVISTA_TOOL_LINT_FORMAT_H
