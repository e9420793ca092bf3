// What commands answer, and how it gets to standard output: as text or as one JSON document.
#ifndef KALVISTA_TOOL_OUTPUT_H
#define KALVISTA_TOOL_OUTPUT_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "answer/Failure.h"

namespace tool {

// JSON that keeps the order of its members and holds numbers in single precision, as the library
// does, so that 0.8 does not become 0.800000011920929.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, float>;

// Raised when a member of a document is renamed, removed, or changes its meaning.
constexpr int kJsonSchemaVersion = 1;

struct Answer {
  Json document = Json::object();  // without the members that all documents have
  std::string text;                // the same for people, each line ended
  ExitCode exitCode = ExitCode::Done;
  std::string problem;  // when the answer is no: one sentence
};

// `command` is empty when the command line names none.
Json completeDocument(const std::string& command, const Answer& answer);
std::string jsonText(const Json& document);

Json textOrNull(const std::string& text);  // null for an empty one

// Writes to standard output; a Failure when it is closed or its disk is full.
void writeToStandardOutput(std::string_view text);

// A number as a person writes it: "-20", "0.8".
std::string numberText(float number);

// "1 file", "3 files".
std::string countText(std::size_t count, const std::string& thing);
// "12345678, 5"
std::string listText(const std::vector<unsigned long>& numbers);

// "512 bytes", "1.5 MB".
std::string bytesText(std::uintmax_t bytes);

// Aligned columns, with two blanks between them.
class Table {
 public:
  explicit Table(std::vector<std::string> header) { add(std::move(header)); }
  Table() = default;
  void add(std::vector<std::string> row);
  std::string text() const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_OUTPUT_H
