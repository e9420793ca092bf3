#include "lint/LintValues.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "answer/Output.h"
#include "lint/LintText.h"

namespace tool {
namespace {

// What a file name or a command of the library cannot hold.
constexpr std::string_view kNotInNames = "/\\\"'`$&|;<>()*?[]{}~!#";

std::string numberOf(double number) {
  if (std::floor(number) == number && std::abs(number) < 1e15) {
    return std::to_string(static_cast<std::int64_t>(number));
  }
  return numberText(static_cast<float>(number));
}

std::string expectedText(const ElementRule& rule) {
  std::string text = rule.kind == ValueKind::Number ? "a number" : "an integer";
  const bool hasMin = std::isfinite(rule.range.min);
  if (hasMin && std::isfinite(rule.range.max)) {
    if (rule.range.min == kAboveZero) return text + " above 0, up to " + numberOf(rule.range.max);
    return text + " from " + numberOf(rule.range.min) + " to " + numberOf(rule.range.max);
  }
  return hasMin ? text + " from " + numberOf(rule.range.min) : text;
}

double narrowed(const ElementRule& rule, double number) {
  if (std::abs(number) > kAnyInteger.max) return number;
  const auto whole = static_cast<std::int64_t>(number);
  return rule.range.min < 0 ? static_cast<double>(static_cast<std::int16_t>(whole))
                            : static_cast<double>(static_cast<std::uint16_t>(whole));
}

struct Reading {
  double number;
  std::size_t length;  // of what was read; 0 when it is no number
};

Reading readNumber(ValueKind kind, const std::string& value) {
  char* end = nullptr;
  constexpr int decimal = 10;
  constexpr int byPrefix = 0;
  const double number =
      kind == ValueKind::Number
          ? static_cast<double>(std::strtof(value.c_str(), &end))
          : static_cast<double>(std::strtoll(
                value.c_str(), &end, kind == ValueKind::DecimalInteger ? decimal : byPrefix));
  return {number, static_cast<std::size_t>(end - value.c_str())};
}

// Of a value that begins with a number.
bool isOctal(const ElementRule& rule, const std::string& value) {
  if (rule.kind != ValueKind::Integer && rule.kind != ValueKind::Integer16) return false;
  std::size_t at = findInk(value, 0, value.size());
  if (value[at] == '-' || value[at] == '+') ++at;
  return value[at] == '0' && std::isdigit(static_cast<unsigned char>(value[at + 1])) != 0;
}

ValueCheck checkNumber(const ElementRule& rule, const std::string& value) {
  const Reading reading = readNumber(rule.kind, value);
  const std::string expected = ", expected " + expectedText(rule);
  if (reading.length == 0) {
    const std::string what =
        findInk(value, 0, value.size()) == value.size() ? "empty" : quoted(value);
    return {what + " is no number and counts as absent" + expected, std::nullopt};
  }
  const std::string isRead = quoted(value) + " is read as " + numberOf(reading.number);
  if (isOctal(rule, value)) {
    return {isRead + ", octal after a leading zero, expected it without the zero", reading.number};
  }
  if (findInk(value, reading.length, value.size()) < value.size()) {
    return {isRead + ", what follows is ignored" + expected, reading.number};
  }
  if (!std::isfinite(reading.number)) {
    return {quoted(value) + " is no finite number" + expected, std::nullopt};
  }
  const bool isInRange = reading.number >= rule.range.min && reading.number <= rule.range.max;
  if (isInRange) return {"", reading.number};
  const double kept =
      rule.kind == ValueKind::Integer16 ? narrowed(rule, reading.number) : reading.number;
  if (kept != reading.number) {
    return {
        quoted(value) + " does not fit into 16 bits and is read as " + numberOf(kept) + expected,
        kept};
  }
  return {quoted(value) + " is out of range" + expected, reading.number};
}

std::string checkText(const ElementRule& rule, const std::string& value) {
  if (!value.empty() && (isWhite(value.front()) || isWhite(value.back()))) {
    return quoted(value) + " keeps its blanks, expected a text without blanks around it";
  }
  const std::size_t bad =
      rule.kind == ValueKind::NamePart ? value.find_first_of(kNotInNames) : std::string::npos;
  if (bad == std::string::npos) return "";
  return quoted(value) + " becomes part of file names, expected a text without " +
         quoted(value.substr(bad, 1));
}

std::string checkTruth(const std::string& value) {
  std::string lowered = value;
  std::transform(lowered.begin(), lowered.end(), lowered.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  if (lowered == "true" || lowered == "false") return "";
  return quoted(value) + " is read as false, expected true or false";
}

}  // namespace

std::string quoted(const std::string& value) {
  constexpr std::size_t kMostShown = 40;
  return "\"" + (value.size() <= kMostShown ? value : value.substr(0, kMostShown) + "...") + "\"";
}

ValueCheck checkValue(const ElementRule& rule, const std::string& value) {
  switch (rule.kind) {
    case ValueKind::Elements:
      return {};
    case ValueKind::Text:
    case ValueKind::NamePart:
      return {checkText(rule, value), std::nullopt};
    case ValueKind::Truth:
      return {checkTruth(value), std::nullopt};
    default:
      return checkNumber(rule, value);
  }
}

}  // namespace tool
