#include "camera/Calibration.h"
#include "camera/Configuration.h"
#include "camera/OpticsPicture.h"
#include "commands/Commands.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  bool chart = false;
  std::string configuration;
};

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial)->required();
  CLI::Option* chart =
      app.add_flag("--chart", own.chart,
                   "Draw the temperature ranges as bars on one scale; what a range "
                   "is extended by is paler");
  addPath(app, "--config", own.configuration,
          "Mark in the chart what this device configuration file chooses")
      ->needs(chart);
}

// A file that is not there is an answer; one that is no calibration is a failure.
std::unique_ptr<ConfigCali> load(const CommonOptions& common, unsigned long serial) {
  requireCalibrationDir(common);
  const CalibrationStatus status = inspectCalibration(common.calibrationDir, serial);
  switch (status.files.front().state) {
    case FileState::Present:
      return loadCalibration(common.calibrationDir, serial);
    case FileState::Unreadable:
      throw Failure(ExitCode::CouldNot,
                    "the calibration file " + status.files.front().path +
                        " cannot be read as a calibration; check its permissions, or replace it");
    case FileState::Missing:
    case FileState::Empty:
    case FileState::Damaged:
      break;
  }
  throw Failure(ExitCode::AnswerIsNo, lackText(status, common.calibrationDir, serial));
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  const auto calibration = load(common, own.serial);
  Answer answer;
  answer.document["serial"] = own.serial;
  answer.document["calibrationDir"] = common.calibrationDir;
  answer.document["optics"] = opticsDocument(*calibration);
  const Json& optics = answer.document["optics"];
  if (own.chart) {
    const Json params = own.configuration.empty()
                            ? Json()
                            : valuesDocument(readConfiguration(own.configuration)->values);
    answer.text = chartText(pictureOf(optics, params));
  } else {
    answer.text = opticsTable(optics);
  }
  return answer;
}

}  // namespace

Command opticsCommand() {
  return makeCommand("optics", "List a camera's optics, temperature ranges and frame rates",
                     "kalvista optics 12345678 --chart", declare, run);
}

}  // namespace tool
