#include <algorithm>

#include "answer/Console.h"
#include "commands/Commands.h"
#include "lint/Lint.h"
#include "machine/Files.h"
#include "machine/Paths.h"

namespace tool {
namespace {

struct OwnOptions {
  std::string file;
};

void declare(CLI::App& app, OwnOptions& own) {
  addPathOrStream(app, "FILE", own.file,
                  "Device configuration or calibration file, or - for standard input")
      ->required();
}

struct Place {
  std::size_t line;
  std::size_t column;  // in characters of UTF-8
};

Place placeOf(const std::string& document, std::size_t offset) {
  const std::string_view before = std::string_view(document).substr(0, offset);
  const auto lines = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  const std::size_t lineBegin = before.rfind('\n') + 1;  // 0 when there is none
  const auto characters =
      std::count_if(before.begin() + static_cast<std::ptrdiff_t>(lineBegin), before.end(),
                    [](char byte) { return (byte & '\xC0') != '\x80'; });
  return {lines + 1, static_cast<std::size_t>(characters) + 1};
}

Answer run(const CommonOptions&, const OwnOptions& own) {
  const bool fromStream = own.file == kStandardStream;
  if (!fromStream) requireFileReadable(own.file, "file");
  const std::string document = fromStream ? readStandardInput() : readFile(own.file);
  const std::string shownName = fromStream ? "standard input" : own.file;
  Answer answer;
  Json findings = Json::array();
  for (const Finding& finding : lint(document)) {
    const Place place = placeOf(document, finding.offset);
    findings.push_back({{"line", place.line},
                        {"column", place.column},
                        {"path", finding.path},
                        {"message", finding.message}});
    answer.text +=
        printable(own.file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) +
                  ": " + finding.path + ": " + finding.message) +
        "\n";
  }
  const std::size_t count = findings.size();
  answer.document["file"] = fromStream ? Json() : Json(own.file);
  answer.document["findings"] = findings;
  if (count == 0) {
    note("the reader takes " + shownName + " as it is written");
  } else {
    answer.exitCode = ExitCode::AnswerIsNo;
    answer.problem = std::to_string(count) + (count == 1 ? " finding" : " findings") + " in " +
                     shownName + "; mend what each line names";
  }
  return answer;
}

}  // namespace

Command lintCommand() {
  return makeCommand("lint",
                     "Name everything in a configuration or calibration file that its reader takes "
                     "otherwise than written",
                     "kalvista lint camera.xml", declare, run);
}

}  // namespace tool
