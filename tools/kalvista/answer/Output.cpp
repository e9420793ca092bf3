#include "answer/Output.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "answer/Console.h"

namespace tool {
namespace {

// Characters, not bytes: continuation bytes of UTF-8 take no room.
std::size_t width(const std::string& cell) {
  return static_cast<std::size_t>(
      std::count_if(cell.begin(), cell.end(), [](char byte) { return (byte & '\xC0') != '\x80'; }));
}

}  // namespace

Json completeDocument(const std::string& command, const Answer& answer) {
  Json document = {{"schema", kJsonSchemaVersion}};
  document["command"] = textOrNull(command);
  document["problem"] = textOrNull(answer.problem);
  document.update(answer.document);
  return document;
}

std::string jsonText(const Json& document) {
  // Texts of a calibration may be in any encoding; the document stays valid UTF-8.
  return printableJson(document.dump(2, ' ', false, Json::error_handler_t::replace)) + "\n";
}

Json textOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

void writeToStandardOutput(std::string_view text) {
  if (writeAll(STDOUT_FILENO, text)) return;
  throw Failure(ExitCode::CouldNot, std::string("standard output cannot be written: ") +
                                        std::strerror(errno) + "; check where it is sent to");
}

std::string numberText(float number) {
  if (!std::isfinite(number)) return std::to_string(number);
  std::string text = Json(number).dump();
  const bool isWhole = text.compare(text.size() - 2, std::string::npos, ".0") == 0;
  if (isWhole) text.erase(text.size() - 2);
  return text;
}

std::string countText(std::size_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string bytesText(std::uintmax_t bytes) {
  constexpr unsigned kStep = 1000;
  if (bytes < kStep) return countText(static_cast<std::size_t>(bytes), "byte");
  double amount = static_cast<double>(bytes) / kStep;
  const char* unit = "kMGT";
  for (; amount >= kStep && unit[1] != '\0'; ++unit) amount /= kStep;
  char text[32];
  std::snprintf(text, sizeof text, "%.1f %cB", amount, *unit);
  return text;
}

std::string listText(const std::vector<unsigned long>& numbers) {
  std::string text;
  for (const unsigned long number : numbers) {
    text += (text.empty() ? "" : ", ") + std::to_string(number);
  }
  return text;
}

void Table::add(std::vector<std::string> row) {
  for (std::string& cell : row) cell = printable(cell);
  rows_.push_back(std::move(row));
}

std::string Table::text() const {
  std::vector<std::size_t> widths;
  for (const auto& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()));
    std::transform(
        row.begin(), row.end(), widths.begin(), widths.begin(),
        [](const std::string& cell, std::size_t widest) { return std::max(widest, width(cell)); });
  }
  std::string text;
  for (const auto& row : rows_) {
    std::size_t gap = 0;
    auto widest = widths.begin();
    for (const std::string& cell : row) {
      text.append(gap, ' ');
      text += cell;
      gap = *widest++ - width(cell) + 2;
    }
    text += '\n';
  }
  return text;
}

}  // namespace tool
