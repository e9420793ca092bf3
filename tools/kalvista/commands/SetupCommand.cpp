// The main job in one command: camera, calibration, configuration.
#include <filesystem>

#include "acquisition/Acquisition.h"
#include "answer/Console.h"
#include "camera/Configuration.h"
#include "commands/Commands.h"
#include "machine/Files.h"
#include "machine/Paths.h"
#include "machine/Usb.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  std::string repository;
  std::string configuration;
  unsigned timeoutSeconds = kDefaultTimeoutSeconds;
};

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial);
  addPath(app, "--from", own.repository, "Copy from this folder instead of downloading")
      ->type_name("REPOSITORY");
  addPath(app, "--config", own.configuration,
          "Configuration to write when there is none; the default is config-SERIAL.xml in the "
          "calibration directory");
  addTimeout(app, own.timeoutSeconds);
}

Acquisition completeCalibration(const CommonOptions& common, const OwnOptions& own,
                                unsigned long serial) {
  clearLeftovers(common.calibrationDir);
  Acquisition present{{}, inspectCalibration(common.calibrationDir, serial)};
  if (present.status.complete()) return present;
  return own.repository.empty() ? downloadMissing(common, serial, own.timeoutSeconds)
                                : copyFromRepository(common, serial, own.repository);
}

// An existing configuration is the user's: it is read, never changed. Gives whether one is written.
bool provideConfiguration(const CommonOptions& common, unsigned long serial,
                          const std::string& path) {
  if (std::error_code error; !std::filesystem::exists(path, error)) {
    return writeDocument(path, defaultDocument(common, serial), false);
  }
  const auto configured = readConfiguration(path)->values.serial;
  if (configured != 0 && configured != serial) {
    throw Failure(ExitCode::AnswerIsNo,
                  "the calibration of camera " + std::to_string(serial) +
                      " is complete, but the configuration " + path + " is for camera " +
                      std::to_string(configured) +
                      "; name another file with --config, or change its serial number");
  }
  return false;
}

std::string readyText(const Answer& answer, const CommonOptions& common) {
  const std::size_t added = answer.document["installed"].size();
  const bool written = answer.document["configurationWritten"];
  std::string changes = added > 0 ? countText(added, "file") + " added" : "";
  if (written) changes += changes.empty() ? "configuration written" : ", configuration written";
  if (changes.empty()) changes = "nothing had to be changed";
  return "Camera " + answer.document["serial"].dump() + " is ready: calibration in " +
         common.calibrationDir + ", configuration " +
         answer.document["configuration"].get<std::string>() + " (" + changes + ").\n";
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  unsigned long serial = own.serial;
  if (serial == 0) {
    const UsbSearch search = findCamera(0);
    if (search.serial == 0) throw Failure(ExitCode::AnswerIsNo, search.problem);
    serial = search.serial;
    note("camera " + std::to_string(serial) + " is attached");
  }
  const std::string path = !own.configuration.empty() ? own.configuration
                                                      : common.calibrationDir + "/config-" +
                                                            std::to_string(serial) + ".xml";
  // Ahead of all work, so that a path that is mistyped is named before anything is changed.
  requireCalibrationDir(common);
  requireDirectory(parentOf(path), "directory");
  if (!own.repository.empty()) requireDirectory(own.repository, "repository");
  Answer answer = answerOf(completeCalibration(common, own, serial), common, serial);
  if (answer.exitCode != ExitCode::Done) return answer;
  answer.document["optics"] = opticsDocument(*loadCalibration(common.calibrationDir, serial));
  if (answer.document["optics"].empty()) {
    answer.exitCode = ExitCode::AnswerIsNo;
    answer.problem = "the calibration file " + calibrationXmlPath(common.calibrationDir, serial) +
                     " names no optics; replace it by a whole one with \"kalvista copy\"";
    return answer;
  }
  const bool written = provideConfiguration(common, serial, path);
  answer.document["configurationWritten"] = written;
  if (written) answer.document["changed"] = true;
  answer.document["configuration"] = path;
  answer.text = opticsTable(answer.document["optics"]) + readyText(answer, common);
  return answer;
}

}  // namespace

Command setupCommand() {
  return makeCommand("setup", "Make a camera ready: calibration, configuration, all in one",
                     "kalvista setup 12345678 --from /media/usb --config camera.xml", declare, run);
}

}  // namespace tool
