// One line for each thing that a camera needs from this machine.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "camera/Calibration.h"
#include "camera/Configuration.h"
#include "commands/Commands.h"
#include "machine/Machine.h"
#include "machine/Paths.h"
#include "machine/Usb.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  std::string configuration;
};

struct Check {
  std::string name;
  std::string status;  // "ok", "warn" or "fail"
  std::string finding;
  std::string remedy;  // empty when all is well
};

constexpr const char* kOk = "ok";
constexpr const char* kWarn = "warn";
constexpr const char* kFail = "fail";

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial);
  addPath(app, "--config", own.configuration, "Check this device configuration file as well");
}

// Sentences of failures end with "; " and what to do.
Check failedCheck(const std::string& name, const char* status, const std::string& sentence) {
  const std::size_t end = sentence.rfind("; ");
  return {name, status, sentence.substr(0, end),
          end == std::string::npos ? "" : sentence.substr(end + 2)};
}

// Without a number to work with, a camera must be attached. Gives its number to `serial`.
void checkCamera(unsigned long* serial, std::vector<Check>* checks) {
  try {
    const UsbSearch search = findCamera(*serial);
    checks->push_back({"usb-tree", kOk, countText(search.devices, "USB device") + " seen", ""});
    checks->push_back(
        search.serial != 0
            ? Check{"camera", kOk, "camera " + std::to_string(search.serial) + " is attached", ""}
            : failedCheck("camera", *serial == 0 ? kFail : kWarn, search.problem));
    if (search.serial != 0) *serial = search.serial;
  } catch (const Failure& failure) {
    checks->push_back(failedCheck("usb-tree", kFail, failure.what()));
    checks->push_back({"camera", *serial == 0 ? kFail : kWarn, "not looked for without a USB tree",
                       "mend the line above"});
  }
}

// A complete calibration needs no writing.
Check checkCalibrationDir(const CommonOptions& common, bool complete) {
  const std::string name = "calibration-dir";
  try {
    requireWorkableCalibrationDir(common);
  } catch (const Failure& failure) {
    return failedCheck(name, kFail, failure.what());
  }
  if (access(common.calibrationDir.c_str(), W_OK | X_OK) == 0) {
    return {name, kOk, common.calibrationDir + " exists and is writable", ""};
  }
  return {name, complete ? kWarn : kFail,
          common.calibrationDir + " cannot be written: " + std::strerror(errno),
          "run as a user who may write there, or give another one with --calibration-dir"};
}

Check checkProgram(const std::string& program, const char* statusWhenMissing) {
  const std::string file = findProgram(program);
  if (!file.empty()) return {"program " + program, kOk, file, ""};
  return {"program " + program, statusWhenMissing, "not installed", installText(program)};
}

Check checkRoute() {
  const std::size_t routes = countDefaultRoutes();
  if (routes > 0) return {"default-route", kOk, countText(routes, "default route"), ""};
  return {"default-route", kWarn, "no default route to a network",
          "connect the machine, or work offline with \"kalvista copy\""};
}

Check checkCompleteness(const CommonOptions& common, unsigned long serial) {
  const std::string name = "calibration";
  if (serial == 0) {
    return {name, kWarn, "not checked, since no camera is known", "give a serial number"};
  }
  const CalibrationStatus status = inspectCalibration(common.calibrationDir, serial);
  if (!status.complete()) {
    return failedCheck(name, kFail, lackText(status, common.calibrationDir, serial));
  }
  return {name, kOk,
          "complete for camera " + std::to_string(serial) + ": " +
              countText(status.files.size(), "file"),
          ""};
}

Check checkConfiguration(const std::string& path) {
  try {
    readConfiguration(path);
    return {"configuration", kOk, path + " is readable", ""};
  } catch (const Failure& failure) {
    return failedCheck("configuration", kFail, failure.what());
  }
}

std::vector<Check> allChecks(const CommonOptions& common, const OwnOptions& own) {
  std::vector<Check> checks;
  unsigned long serial = own.serial;
  checkCamera(&serial, &checks);
  const Check completeness = checkCompleteness(common, serial);
  checks.push_back(checkCalibrationDir(common, completeness.status == kOk));
  for (const char* program : {"find", "cp", "wget"}) {
    checks.push_back(checkProgram(program, kFail));
  }
  checks.push_back(checkProgram("/sbin/route", kWarn));
  checks.push_back(checkRoute());
  checks.push_back(completeness);
  if (!own.configuration.empty()) checks.push_back(checkConfiguration(own.configuration));
  return checks;
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  const std::vector<Check> checks = allChecks(common, own);
  Answer answer;
  Json documents = Json::array();
  Table table;
  for (const Check& check : checks) {
    documents.push_back({{"name", check.name},
                         {"status", check.status},
                         {"finding", check.finding},
                         {"remedy", check.remedy.empty() ? Json() : Json(check.remedy)}});
    table.add({check.status, check.name,
               check.finding + (check.remedy.empty() ? "" : "; " + check.remedy)});
  }
  const auto failed = std::count_if(checks.begin(), checks.end(),
                                    [](const Check& check) { return check.status == kFail; });
  answer.document["healthy"] = failed == 0;
  answer.document["checks"] = documents;
  answer.text = table.text();
  if (failed > 0) {
    answer.exitCode = ExitCode::AnswerIsNo;
    answer.problem = countText(static_cast<std::size_t>(failed), "check") + " failed; do what " +
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
