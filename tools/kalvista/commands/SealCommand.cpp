#include "camera/Calibration.h"
#include "camera/Seal.h"
#include "commands/Commands.h"
#include "machine/Files.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
};

void declare(CLI::App& app, OwnOptions& own) { addSerial(app, own.serial)->required(); }

// What is damaged must not be sealed as if it were right, so the former seal is held to first.
Answer run(const CommonOptions& common, const OwnOptions& own) {
  requireCalibrationDir(common);
  const CalibrationStatus status = inspectCalibration(common.calibrationDir, own.serial);
  Answer answer = answerOf(status, common.calibrationDir, own.serial);
  if (!status.complete()) return answer;
  const Seal seal = Seal::of(common.calibrationDir, namesOf(status.files));
  const std::string path = common.calibrationDir + "/" + sealName(own.serial);
  const bool changed = readFile(path) != seal.text();
  if (changed) writeFileWhole(path, seal.text(), true);
  answer.document["seal"] = path;
  answer.document["changed"] = changed;
  answer.text = "The calibration of camera " + std::to_string(own.serial) +
                " is sealed: " + countText(status.files.size(), "file") +
                (changed ? " in " : ", as before, in ") + path + ".\n";
  return answer;
}

}  // namespace

Command sealCommand() {
  return makeCommand("seal", "Write the checksums of a complete calibration beside it",
                     "kalvista seal 12345678", declare, run);
}

}  // namespace tool
