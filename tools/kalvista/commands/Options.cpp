#include "commands/Options.h"

#include <kalvista/kalvista.h>
#include <unistd.h>

#include <charconv>
#include <map>

#include "answer/Console.h"
#include "answer/Failure.h"
#include "machine/Files.h"
#include "machine/LogFile.h"
#include "machine/Paths.h"
#include "machine/Usb.h"

namespace tool {
namespace {

// The library keeps 260 characters of a directory; the name of a work folder is added to it.
constexpr std::size_t kLongestDirectory = 220;

const std::map<std::string, ardo::IRLoggerVerbosityLevel>& verbosityLevels() {
  static const std::map<std::string, ardo::IRLoggerVerbosityLevel> levels = {
      {"error", ardo::IRLOGGER_ERROR},
      {"warning", ardo::IRLOGGER_WARNING},
      {"info", ardo::IRLOGGER_INFO},
      {"debug", ardo::IRLOGGER_DEBUG}};
  return levels;
}

std::string pathFromRoot(const std::string& text) {
  if (text.empty()) throw CLI::ValidationError("the path is empty");
  return absolutePath(text);
}

void configureLog(const CommonOptions& common) {
  const ardo::IRLoggerVerbosityLevel level = verbosityLevels().at(common.verbosity);
  ardo::IRLogger::setVerbosity(level, ardo::IRLOGGER_OFF, common.logFile.c_str());
  if (!common.logFile.empty()) addLogFile(*brivex::Logger::getInstance());
}

void refuseLongDirectory(const std::string& directory, const std::string& what) {
  if (directory.size() <= kLongestDirectory) return;
  throw Failure(ExitCode::WrongUsage, "the " + what + " " + directory + " is longer than " +
                                          std::to_string(kLongestDirectory) +
                                          " characters; give a shorter path or a link");
}

}  // namespace

void addCommonOptions(CLI::App& app, CommonOptions& common) {
  const auto manager = ardo::IRCalibrationManager::getInstance();
  common.calibrationDir = manager->getCalibrationDir();
  common.formatsDir = manager->getFormatsDir();
  common.verbosity = "warning";
  addPath(app, "--calibration-dir", common.calibrationDir, "Directory of the calibration files")
      ->type_name("DIR")
      ->capture_default_str();
  addPath(app, "--formats-dir", common.formatsDir,
          "Directory of the video formats definition, as written into configurations")
      ->type_name("DIR")
      ->capture_default_str();
  app.add_flag("--json", common.json,
               "Answer with one JSON document, the only thing on standard output");
  app.add_option("-v,--verbosity", common.verbosity,
                 "Detail of the log: error, warning, info or debug; error leaves out notes, too")
      ->type_name("LEVEL")
      ->check(CLI::IsMember(verbosityNames()).description(""))
      ->capture_default_str();
  addPath(app, "--log-file", common.logFile,
          "Write the log to a file as well, whose name is FILE followed by the time");
}

std::vector<std::string> verbosityNames() {
  std::vector<std::string> names;
  for (const auto& level : verbosityLevels()) names.push_back(level.first);
  return names;
}

void applyCommonOptions(const CommonOptions& common) {
  setTalkative(common.verbosity != "error");
  setProgressShown(common.verbosity != "error" && !common.json);
  configureLog(common);
  refuseLongDirectory(common.calibrationDir, "calibration directory");
  refuseLongDirectory(common.formatsDir, "formats directory");
  const auto manager = ardo::IRCalibrationManager::getInstance();
  manager->setCalibrationDir(common.calibrationDir.c_str());
  manager->setFormatsDir(common.formatsDir.c_str());
  if (chdir("/") != 0) throw Failure(ExitCode::CouldNot, "the directory / cannot be entered");
}

unsigned long parseSerial(const std::string& text) {
  unsigned long serial = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, serial);
  if (result.ec != std::errc() || result.ptr != end || serial < 1 || serial > kGreatestSerial) {
    throw Failure(ExitCode::WrongUsage, "the serial number \"" + text +
                                            "\" is not usable; give decimal digits, from 1 to " +
                                            std::to_string(kGreatestSerial));
  }
  return serial;
}

CLI::Option* addSerial(CLI::App& app, unsigned long& serial) {
  return app
      .add_option_function<std::string>(
          "SERIAL", [&serial](const std::string& text) { serial = parseSerial(text); },
          "Serial number of the camera, 1 to " + std::to_string(kGreatestSerial))
      ->type_name("");
}

CLI::Option* addPath(CLI::App& app, const std::string& name, std::string& path,
                     const std::string& description) {
  return app.add_option(name, path, description)->type_name("FILE")->transform(pathFromRoot);
}

CLI::Option* addPathOrStream(CLI::App& app, const std::string& name, std::string& path,
                             const std::string& description) {
  const auto streamOrPath = [](const std::string& text) {
    return text == kStandardStream ? text : pathFromRoot(text);
  };
  return app.add_option(name, path, description)->type_name("FILE")->transform(streamOrPath);
}

}  // namespace tool
