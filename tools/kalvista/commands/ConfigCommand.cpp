#include <cmath>
#include <cstdlib>

#include "camera/Calibration.h"
#include "camera/Configuration.h"
#include "camera/OpticsChoice.h"
#include "commands/Commands.h"
#include "machine/Files.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  std::string file;
  bool force = false;
  WantedOptics optics;

  bool chooses() const { return optics.fov || optics.text || optics.range || optics.framerate; }
};

TemperatureInterval parseRange(const std::string& text) {
  TemperatureInterval range;
  char* end = nullptr;
  range.min = std::strtof(text.c_str(), &end);
  const bool hasMin = end != text.c_str() && *end == ':';
  const char* const max = hasMin ? end + 1 : end;
  range.max = std::strtof(max, &end);
  if (hasMin && end != max && *end == '\0' && std::isfinite(range.min) &&
      std::isfinite(range.max)) {
    return range;
  }
  throw Failure(ExitCode::WrongUsage, "the range \"" + text +
                                          "\" is not usable; give its ends in °C as MIN:MAX, such "
                                          "as --range=-20:100");
}

void declareChoice(CLI::App& app, WantedOptics& optics) {
  app.add_option("--fov", optics.fov, "Choose the optics of this field of view")
      ->type_name("DEGREES");
  app.add_option("--text", optics.text, "Choose the optics of this text")->type_name("TEXT");
  app.add_option_function<std::string>(
         "--range", [&optics](const std::string& text) { optics.range = parseRange(text); },
         "Choose the temperature range, in °C, given as MIN:MAX")
      ->type_name("RANGE");
  app.add_option("--framerate", optics.framerate, "Choose the frame rate")->type_name("RATE");
}

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial)->required();
  addPathOrStream(app, "-o,--output", own.file,
                  "Write to FILE instead of standard output, which is - as well");
  app.add_flag("--force", own.force, "Overwrite FILE when it exists with another content");
  declareChoice(app, own.optics);
}

// Only what is calibrated is written: an application could not work with anything else.
std::string chosenDocument(const CommonOptions& common, const OwnOptions& own) {
  requireCalibrationDir(common);
  const std::string number = std::to_string(own.serial);
  const auto calibration = loadCalibration(common.calibrationDir, own.serial);
  const auto selection = calibration ? selectOptics(*calibration->opticsList, own.optics)
                                     : std::optional<OpticsSelection>();
  if (!selection) {
    throw Failure(ExitCode::AnswerIsNo,
                  "there is no calibration of camera " + number + " in " + common.calibrationDir +
                      " to choose from; make it complete with \"kalvista setup " + number + "\"");
  }
  if (!selection->mismatches.empty()) {
    throw Failure(ExitCode::AnswerIsNo, selection->mismatches.front().message +
                                            "; the nearest is \"kalvista config " + number + " " +
                                            optionsText(selection->nearest) + "\"");
  }
  return withChoice(defaultDocument(common, own.serial), selection->nearest);
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  const bool toFile = !own.file.empty() && own.file != kStandardStream;
  const std::string document =
      own.chooses() ? chosenDocument(common, own) : defaultDocument(common, own.serial);
  Answer answer;
  answer.document["serial"] = own.serial;
  answer.document["configuration"] = document;
  answer.document["file"] = toFile ? Json(own.file) : Json();
  answer.document["changed"] = false;
  answer.text = document;
  if (toFile) {
    const bool written = writeDocument(own.file, document, own.force);
    answer.document["changed"] = written;
    answer.text = "The configuration of camera " + std::to_string(own.serial) +
                  (written ? " is written to " : " stands already in ") + own.file + ".\n";
  }
  return answer;
}

}  // namespace

Command configCommand() {
  return makeCommand("config", "Write a device configuration, default or of a choice",
                     "kalvista config 12345678 --fov 33 --range=-20:100 -o camera.xml", declare,
                     run);
}

}  // namespace tool
