#include "commands/Commands.h"
#include "diagnosis/Checks.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  std::string configuration;
};

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial);
  addPath(app, "--config", own.configuration,
          "Check this device configuration file as well, against the calibration");
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  const Diagnosis diagnosis = diagnose(common, own.serial, own.configuration);
  const std::size_t failed = diagnosis.count(CheckStatus::Fail);
  Answer answer;
  answer.document["healthy"] = failed == 0;
  answer.document["checks"] = documentsOf(diagnosis.checks);
  Table table;
  for (const Check& check : diagnosis.checks) {
    table.add({statusText(check.status), check.name,
               check.finding + (check.remedy.empty() ? "" : "; " + check.remedy)});
  }
  answer.text = table.text();
  if (failed > 0) {
    answer.exitCode = ExitCode::AnswerIsNo;
    answer.problem = countText(failed, "check") + " failed; do what " +
                     (failed == 1 ? "its line says" : "their lines say") +
                     " and run \"kalvista doctor\" again";
  }
  return answer;
}

}  // namespace

Command doctorCommand() {
  return makeCommand("doctor", "Check this machine, each line with what to do about it",
                     "kalvista doctor 12345678 --config camera.xml", declare, run);
}

}  // namespace tool
