// The main job in one command: camera, calibration, configuration.
#include <algorithm>
#include <filesystem>

#include "acquisition/Acquisition.h"
#include "acquisition/FolderRepository.h"
#include "acquisition/WebRepository.h"
#include "answer/Console.h"
#include "camera/Configuration.h"
#include "commands/Commands.h"
#include "commands/WebOptions.h"
#include "diagnosis/ConfigurationCheck.h"
#include "machine/Files.h"
#include "machine/Paths.h"
#include "machine/Usb.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  bool all = false;
  std::string repository;
  std::string configuration;
  WebOptions web;
  bool update = false;
};

void declare(CLI::App& app, OwnOptions& own) {
  CLI::Option* serial = addSerial(app, own.serial);
  CLI::Option* all = app.add_flag("--all", own.all, "Make every attached camera ready");
  addPath(app, "--from", own.repository, "Copy from this folder instead of downloading")
      ->type_name("REPOSITORY");
  CLI::Option* configuration =
      addPath(app, "--config", own.configuration,
              "Configuration to write when there is none; the default is config-SERIAL.xml in the "
              "calibration directory, or in ~/.config/kalvista for a user who may not write there");
  all->excludes(serial)->excludes(configuration);
  addWebOptions(app, own.web);
  app.get_option("--mirror")->excludes(app.get_option("--from"));
  addUpdate(app, own.update);
}

Acquisition completeCalibration(const CommonOptions& common, const OwnOptions& own,
                                unsigned long serial) {
  const Differing differing = own.update ? Differing::Replace : Differing::Keep;
  if (!own.repository.empty()) {
    FolderRepository repository(own.repository);
    return acquire(common, serial, repository, differing);
  }
  WebRepository repository(limitsFor(own.web, common, serial, own.update), own.web.mirror);
  return acquire(common, serial, repository, differing);
}

// An existing configuration is the user's: it is read, never changed. Gives whether one is written.
bool provideConfiguration(const CommonOptions& common, unsigned long serial,
                          const std::string& path) {
  if (std::error_code error; !std::filesystem::exists(path, error)) {
    return writeDocument(path, defaultDocument(common, serial), false);
  }
  const ConfigurationCheck check =
      checkConfiguration(common, serial, path, *readConfiguration(path));
  const std::string problem = problemOf(check);
  if (!problem.empty()) {
    throw Failure(ExitCode::AnswerIsNo, "the calibration of camera " + std::to_string(serial) +
                                            " is complete, but " + problem);
  }
  return false;
}

std::string readyText(const CommonOptions& common, unsigned long serial, const std::string& path,
                      std::string changes) {
  return "Camera " + std::to_string(serial) + " is ready: calibration in " + common.calibrationDir +
         ", configuration " + path + " (" +
         (changes.empty() ? "nothing had to be changed" : changes) + ").\n";
}

// A configuration that is there is found again by every user, whoever wrote it.
std::string defaultConfiguration(const CommonOptions& common, unsigned long serial) {
  const std::string name = "/config-" + std::to_string(serial) + ".xml";
  std::string shared = common.calibrationDir + name;
  std::error_code error;
  if (std::filesystem::exists(shared, error) || mayWrite(common.calibrationDir)) return shared;
  const std::string directory = userConfigurationDir();
  if (directory.empty()) return shared;
  std::filesystem::create_directories(directory, error);
  return directory + name;
}

// Adds the optics and the configuration for them to the answer about a calibration.
void addConfiguration(const CommonOptions& common, unsigned long serial, const std::string& path,
                      std::string changes, Answer* answer) {
  answer->document["optics"] = opticsDocument(*loadCalibration(common.calibrationDir, serial));
  if (answer->document["optics"].empty()) {
    throw Failure(ExitCode::AnswerIsNo,
                  "the calibration file " + calibrationXmlPath(common.calibrationDir, serial) +
                      " names no optics; replace it by a whole one with \"kalvista copy\"");
  }
  const bool written = provideConfiguration(common, serial, path);
  if (written) {
    answer->document["changed"] = true;
    changes += changes.empty() ? "configuration written" : ", configuration written";
  }
  answer->document["configurationWritten"] = written;
  answer->document["configuration"] = path;
  answer->text = opticsTable(answer->document["optics"]) + readyText(common, serial, path, changes);
}

Answer setUp(const CommonOptions& common, const OwnOptions& own, unsigned long serial) {
  // Ahead of all work, so that a path that is mistyped is named before anything is changed.
  requireCalibrationDir(common);
  const std::string path =
      own.configuration.empty() ? defaultConfiguration(common, serial) : own.configuration;
  requireDirectory(parentOf(path), "directory");
  if (!own.repository.empty()) requireDirectory(own.repository, "repository");
  const Acquisition acquisition = completeCalibration(common, own, serial);
  Answer answer = answerOf(acquisition, common, serial);
  if (answer.exitCode != ExitCode::Done) return answer;
  try {
    addConfiguration(common, serial, path, changesText(acquisition), &answer);
  } catch (const Failure& failure) {
    // What was brought stays told.
    answer.text.clear();
    answer.exitCode = failure.exitCode();
    answer.problem = failure.what();
  }
  return answer;
}

// One that fails does not keep the others from being made ready.
Answer setUpEach(const CommonOptions& common, const OwnOptions& own,
                 const std::vector<unsigned long>& serials) {
  Answer all;
  Json documents = Json::array();
  for (const unsigned long serial : serials) {
    Answer one;
    try {
      one = setUp(common, own, serial);
    } catch (const Failure& failure) {
      one.exitCode = failure.exitCode();
      one.problem = failure.what();
    }
    one.document["serial"] = serial;
    one.document["problem"] = textOrNull(one.problem);
    documents.push_back(one.document);
    for (const char* list : {"installed", "mended", "differing"}) {
      for (const Json& name : one.document.value(list, Json::array())) {
        all.document[list].push_back(name);
      }
    }
    all.document["changed"] =
        all.document.value("changed", false) || one.document.value("changed", false);
    all.text += one.text;
    all.exitCode = std::max(all.exitCode, one.exitCode);
    if (!one.problem.empty()) all.problem += (all.problem.empty() ? "" : "; ") + one.problem;
  }
  all.document["cameras"] = documents;
  return all;
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  if (own.serial != 0) return setUp(common, own, own.serial);
  const UsbSearch search = findCamera(0);
  if (search.serial == 0) throw Failure(ExitCode::AnswerIsNo, search.problem);
  for (const Camera& camera : search.cameras) {
    if (!camera.hasUsableSerial()) warn(serialProblem(camera));
  }
  const std::vector<unsigned long> serials = usableSerials(search.cameras);
  if (own.all) return setUpEach(common, own, serials);
  if (serials.size() > 1) {
    throw Failure(ExitCode::AnswerIsNo,
                  countText(serials.size(), "camera") + " are attached: " + listText(serials) +
                      "; give the number of one, or make all ready with \"kalvista setup --all\"");
  }
  note("camera " + std::to_string(search.serial) + " is attached");
  return setUp(common, own, search.serial);
}

}  // namespace

Command setupCommand() {
  return withFileLists(
      makeCommand("setup", "Make a camera ready: calibration, configuration, all in one",
                  "kalvista setup 12345678 --from /media/usb --config camera.xml", declare, run));
}

}  // namespace tool
