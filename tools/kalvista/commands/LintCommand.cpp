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

Answer run(const CommonOptions&, const OwnOptions& own) {
  const bool fromStream = own.file == kStandardStream;
  if (!fromStream) requireFileReadable(own.file, "file");
  const std::string document = fromStream ? readStandardInput() : readFile(own.file);
  const std::string shownName = fromStream ? "standard input" : own.file;
  Answer answer;
  Json findings = Json::array();
  for (const Finding& finding : lint(document)) {
    findings.push_back({{"line", finding.line},
                        {"column", finding.column},
                        {"path", finding.path},
                        {"message", finding.message}});
    answer.text +=
        printable(own.file + ":" + std::to_string(finding.line) + ":" +
                  std::to_string(finding.column) + ": " + finding.path + ": " + finding.message) +
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
