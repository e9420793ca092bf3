#include "answer/Console.h"
#include "camera/Calibration.h"
#include "commands/Commands.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  bool explain = false;
};

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial)->required();
  app.add_flag("--explain", own.explain,
               "Name every file of the calibration, where it was looked for, its size and state");
}

Json fileDocuments(const CalibrationStatus& status) {
  Json files = Json::array();
  for (const CalibrationFile& file : status.files) {
    files.push_back({{"name", file.name},
                     {"path", file.path},
                     {"size", file.size},
                     {"state", stateText(file.state)}});
  }
  return files;
}

std::string fileTable(const CalibrationStatus& status) {
  Table table({"STATE", "BYTES", "PATH"});
  for (const CalibrationFile& file : status.files) {
    table.add({stateText(file.state),
               file.state == FileState::Missing ? "-" : std::to_string(file.size), file.path});
  }
  return table.text();
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  requireCalibrationDir(common);
  const CalibrationStatus status = inspectCalibration(common.calibrationDir, own.serial);
  Answer answer = answerOf(status, common.calibrationDir, own.serial);
  if (own.explain) {
    answer.document["files"] = fileDocuments(status);
    answer.text = fileTable(status);
  }
  if (status.complete()) note("no file is missing");
  return answer;
}

}  // namespace

Command checkCommand() {
  return makeCommand("check", "List the files that are missing from a camera's calibration",
                     "kalvista check 12345678 --explain", declare, run);
}

}  // namespace tool
