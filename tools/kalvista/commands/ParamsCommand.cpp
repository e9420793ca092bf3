#include "camera/Configuration.h"
#include "commands/Commands.h"
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

Json textOrNull(const char* text) { return text != nullptr ? Json(text) : Json(); }

// In the order of the record, under the names of its fields.
Json valuesDocument(const ardo::IRDeviceParams& values) {
  return {{"serial", values.serial},
          {"fov", values.fov},
          {"opticsText", textOrNull(values.opticsText)},
          {"formatsPath", textOrNull(values.formatsPath)},
          {"caliPath", textOrNull(values.caliPath)},
          {"tMin", values.tMin},
          {"tMax", values.tMax},
          {"framerate", values.framerate},
          {"videoFormatIndex", values.videoFormatIndex},
          {"bispectral", values.bispectral},
          {"average", values.average},
          {"autoFlag", values.autoFlag},
          {"minInterval", values.minInterval},
          {"maxInterval", values.maxInterval},
          {"pifInMode", values.pifInMode},
          {"pifOutMode", values.pifOutMode},
          {"pifOutVoltage", values.pifOutVoltage},
          {"tChipMode", values.tChipMode},
          {"tChipFixedValue", values.tChipFixedValue},
          {"focus", values.focus}};
}

std::string valueText(const Json& value) {
  if (value.is_null()) return "-";
  if (value.is_string()) return value.get<std::string>();
  return value.is_number_float() ? numberText(value) : value.dump();
}

Answer run(const CommonOptions&, const OwnOptions& own) {
  Answer answer;
  const Json values = valuesDocument(readConfiguration(own.file)->values);
  Table table;
  for (const auto& [name, value] : values.items()) table.add({name, valueText(value)});
  answer.document["file"] = own.file == kStandardStream ? Json() : Json(own.file);
  answer.document["params"] = values;
  answer.text = table.text();
  return answer;
}

}  // namespace

Command paramsCommand() {
  return makeCommand("params", "Show what the reader makes of a device configuration file",
                     "kalvista params camera.xml", declare, run);
}

}  // namespace tool
