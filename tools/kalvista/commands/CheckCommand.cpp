#include "answer/Console.h"
#include "camera/Calibration.h"
#include "commands/Commands.h"
#include "diagnosis/ConfigurationCheck.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  bool explain = false;
  std::string configuration;
};

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial)->required();
  app.add_flag("--explain", own.explain,
               "Name every file of the calibration, where it was looked for, its size and state");
  addPath(app, "--config", own.configuration,
          "Hold this device configuration file against the calibration as well");
}

// A calibration that is not there is the greater problem.
void addConfiguration(const ConfigurationCheck& check, Answer* answer) {
  answer->document["configuration"] = documentOf(check);
  for (const ConfigurationFinding& finding : check.findings) {
    answer->text += printable(sentenceOf(check, finding) + "; " + finding.remedy) + "\n";
  }
  const std::string problem = problemOf(check);
  if (!problem.empty()) answer->exitCode = ExitCode::AnswerIsNo;
  if (answer->problem.empty()) answer->problem = problem;
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
    answer.document["files"] = documentsOf(status.files);
    answer.text = fileTable(status);
  }
  if (!own.configuration.empty()) {
    addConfiguration(checkConfiguration(common, own.serial, own.configuration,
                                        *readConfiguration(own.configuration)),
                     &answer);
  }
  if (status.complete()) note("no file is missing");
  return answer;
}

}  // namespace

Command checkCommand() {
  return makeCommand("check", "List the files that are missing from a camera's calibration",
                     "kalvista check 12345678 --explain --config camera.xml", declare, run);
}

}  // namespace tool
