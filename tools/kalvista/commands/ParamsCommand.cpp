#include "answer/Console.h"
#include "camera/Configuration.h"
#include "commands/Commands.h"
#include "diagnosis/ConfigurationCheck.h"
#include "machine/Files.h"

namespace tool {
namespace {

struct OwnOptions {
  std::string file;
};

void declare(CLI::App& app, OwnOptions& own) {
  addPathOrStream(app, "FILE", own.file, "Device configuration file, or - for standard input")
      ->required();
}

std::string valueText(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_string()) return value.get<std::string>();
  return value.is_number_float() ? numberText(value) : value.dump();
}

// What the reader makes of the file is the answer, whether or not it fits a calibration.
Answer run(const CommonOptions& common, const OwnOptions& own) {
  Answer answer;
  const auto configuration = readConfiguration(own.file);
  const Json values = valuesDocument(configuration->values);
  Table table;
  for (const auto& [name, value] : values.items()) table.add({name, valueText(value)});
  answer.document["file"] = own.file == kStandardStream ? Json() : Json(own.file);
  answer.document["params"] = values;
  const ConfigurationCheck check = checkConfiguration(common, 0, own.file, *configuration);
  answer.document["configuration"] = documentOf(check);
  for (const ConfigurationFinding& finding : check.findings) {
    warn(sentenceOf(check, finding) + "; " + finding.remedy);
  }
  answer.text = table.text();
  return answer;
}

}  // namespace

Command paramsCommand() {
  return makeCommand("params", "Show what the reader makes of a device configuration file",
                     "kalvista params camera.xml", declare, run);
}

}  // namespace tool
