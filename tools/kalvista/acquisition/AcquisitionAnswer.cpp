#include "acquisition/Acquisition.h"
#include "answer/Console.h"

namespace tool {

std::string changesText(const Acquisition& acquisition) {
  std::string text;
  const auto add = [&text](std::size_t count, const char* what) {
    if (count > 0) text += (text.empty() ? "" : ", ") + countText(count, "file") + what;
  };
  add(acquisition.installed.size() - acquisition.replaced, " added");
  add(acquisition.replaced, " replaced");
  add(acquisition.mended.size(), " made readable");
  return text;
}

Answer answerOf(const Acquisition& acquisition, const CommonOptions& common, unsigned long serial) {
  const CalibrationStatus& status = acquisition.status;
  if (acquisition.isSealGone) {
    const std::string number = std::to_string(serial);
    warn("the seal of camera " + number +
         " was of its former files and is gone; the new ones came without one, which \"kalvista "
         "seal " +
         number + "\" makes");
  }
  Answer answer = answerOf(status, common.calibrationDir, serial);
  answer.document["installed"] = acquisition.installed;
  answer.document["mended"] = acquisition.mended;
  answer.document["differing"] = acquisition.differing;
  answer.document["changed"] = !acquisition.installed.empty() || !acquisition.mended.empty();
  if (acquisition.exitCode != ExitCode::Done) {
    answer.exitCode = acquisition.exitCode;
    answer.problem = acquisition.problem;
  } else if (status.complete()) {
    const std::string changes = changesText(acquisition);
    answer.text = "The calibration of camera " + std::to_string(serial) +
                  " is complete: " + countText(status.files.size(), "file") + " in " +
                  common.calibrationDir + " (" +
                  (changes.empty() ? "nothing had to be changed" : changes) + ").\n";
  }
  return answer;
}

}  // namespace tool
