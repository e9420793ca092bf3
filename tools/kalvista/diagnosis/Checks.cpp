#include "diagnosis/Checks.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>

#include "camera/Configuration.h"
#include "machine/Machine.h"
#include "machine/Usb.h"

namespace tool {
namespace {

// Sentences of failures end with "; " and what to do.
Check checkOf(const std::string& name, CheckStatus status, const std::string& sentence) {
  const std::size_t end = sentence.rfind("; ");
  return {name, status, sentence.substr(0, end),
          end == std::string::npos ? "" : sentence.substr(end + 2)};
}

class Diagnostician {
 public:
  Diagnostician(const CommonOptions& common, Diagnosis& diagnosis)
      : common_(common), diagnosis_(diagnosis) {}

  void run(const std::string& path) {
    checkCamera();
    if (!path.empty()) readConfigurationFile(path);
    const Check calibration = checkCalibration();
    checkCalibrationDir();
    checkRoute();
    diagnosis_.checks.push_back(calibration);
    if (configuration_) checkConfigurationFile(path);
    if (unreadable_) add(*unreadable_);
  }

 private:
  void add(const std::string& name, CheckStatus status, const std::string& finding,
           const std::string& remedy = "") {
    diagnosis_.checks.push_back({name, status, finding, remedy});
  }
  void add(const Check& check) { diagnosis_.checks.push_back(check); }

  // The camera that it names is the one to look at where nothing else tells.
  void readConfigurationFile(const std::string& path) {
    try {
      configuration_ = readConfiguration(path);
      if (diagnosis_.serial == 0) diagnosis_.serial = cameraOf(configuration_->values);
    } catch (const Failure& failure) {
      unreadable_ = checkOf("configuration", CheckStatus::Fail, failure.what());
    }
  }

  // Without a number to work with, a camera must be attached.
  void checkCamera() {
    const CheckStatus withoutCamera =
        diagnosis_.serial == 0 ? CheckStatus::Fail : CheckStatus::Warn;
    try {
      const UsbSearch search = findCamera(diagnosis_.serial);
      add("usb-tree", CheckStatus::Ok, countText(search.devices, "USB device") + " seen");
      if (search.serial == 0) return add(checkOf("camera", withoutCamera, search.problem));
      checkAttached(search);
    } catch (const Failure& failure) {
      add(checkOf("usb-tree", CheckStatus::Fail, failure.what()));
      add("camera", withoutCamera, "not looked for without a USB tree", "mend the line above");
    }
  }

  void checkAttached(const UsbSearch& search) {
    const std::vector<unsigned long> serials = usableSerials(search.cameras);
    const std::string attached = "camera " + std::to_string(search.serial) + " is attached";
    if (diagnosis_.serial == 0 && serials.size() > 1) {
      add("camera", CheckStatus::Warn, attached + ", one of " + listText(serials),
          "give the serial number of the one that is to be checked");
    } else {
      add("camera", CheckStatus::Ok, attached);
    }
    diagnosis_.serial = search.serial;
    for (const Camera& camera : search.cameras) {
      if (camera.serial != search.serial || camera.node.empty()) continue;
      const std::string problem = accessProblem(camera);
      return add(problem.empty() ? Check{"device-access", CheckStatus::Ok,
                                         "this user may open " + camera.node, ""}
                                 : checkOf("device-access", CheckStatus::Fail, problem));
    }
  }

  Check checkCalibration() {
    const std::string name = "calibration";
    if (diagnosis_.serial == 0) {
      return {name, CheckStatus::Warn, "not checked, since no camera is known",
              "give a serial number"};
    }
    diagnosis_.calibration = inspectCalibration(common_.calibrationDir, diagnosis_.serial);
    const CalibrationStatus& status = *diagnosis_.calibration;
    isComplete_ = status.complete();
    if (!isComplete_) {
      return checkOf(name, CheckStatus::Fail,
                     lackText(status, common_.calibrationDir, diagnosis_.serial));
    }
    return {name, CheckStatus::Ok,
            "complete for camera " + std::to_string(diagnosis_.serial) + ": " +
                countText(status.files.size(), "file"),
            ""};
  }

  // Writing and a network are needed only while something is missing.
  void checkCalibrationDir() {
    const std::string name = "calibration-dir";
    try {
      requireCalibrationDir(common_);
    } catch (const Failure& failure) {
      return add(checkOf(name, CheckStatus::Fail, failure.what()));
    }
    if (access(common_.calibrationDir.c_str(), W_OK | X_OK) == 0) {
      add(name, CheckStatus::Ok, common_.calibrationDir + " exists and is writable");
    } else if (isComplete_) {
      add(name, CheckStatus::Ok,
          common_.calibrationDir + " is not writable, and nothing has to be written");
    } else {
      add(name, CheckStatus::Fail,
          common_.calibrationDir + " cannot be written: " + std::strerror(errno),
          "run as a user who may write there, or give another one with --calibration-dir");
    }
  }

  void checkRoute() {
    const std::size_t routes = countDefaultRoutes();
    const std::string none = "no default route to a network";
    if (routes > 0) {
      add("default-route", CheckStatus::Ok, countText(routes, "default route"));
    } else if (isComplete_) {
      add("default-route", CheckStatus::Ok, none + ", and nothing has to be fetched");
    } else {
      add("default-route", CheckStatus::Warn, none,
          "connect the machine, or work offline with \"kalvista copy\"");
    }
  }

  void checkConfigurationFile(const std::string& path) {
    const std::string name = "configuration";
    diagnosis_.params = valuesDocument(configuration_->values);
    diagnosis_.configuration =
        checkConfiguration(common_, diagnosis_.serial, path, *configuration_);
    const ConfigurationCheck& check = *diagnosis_.configuration;
    for (const ConfigurationFinding& finding : check.findings) {
      add(name, finding.isFault ? CheckStatus::Fail : CheckStatus::Warn, sentenceOf(check, finding),
          finding.remedy);
    }
    if (!check.findings.empty()) return;
    if (check.serial != 0) {
      add(name, CheckStatus::Ok,
          path + " fits the calibration of camera " + std::to_string(check.serial));
    } else {
      add(name, CheckStatus::Warn,
          path + " is read as it is written, but there is no calibration to hold it against",
          "make the calibration complete");
    }
  }

  const CommonOptions& common_;
  Diagnosis& diagnosis_;
  std::unique_ptr<Configuration> configuration_;
  std::optional<Check> unreadable_;
  bool isComplete_ = false;
};

}  // namespace

std::string statusText(CheckStatus status) {
  switch (status) {
    case CheckStatus::Ok:
      return "ok";
    case CheckStatus::Warn:
      return "warn";
    case CheckStatus::Fail:
      break;
  }
  return "fail";
}

std::size_t Diagnosis::count(CheckStatus status) const {
  return static_cast<std::size_t>(
      std::count_if(checks.begin(), checks.end(),
                    [status](const Check& check) { return check.status == status; }));
}

Diagnosis diagnose(const CommonOptions& common, unsigned long serial,
                   const std::string& configuration) {
  Diagnosis diagnosis;
  diagnosis.serial = serial;
  Diagnostician(common, diagnosis).run(configuration);
  return diagnosis;
}

Json documentsOf(const std::vector<Check>& checks) {
  Json documents = Json::array();
  for (const Check& check : checks) {
    documents.push_back({{"name", check.name},
                         {"status", statusText(check.status)},
                         {"finding", check.finding},
                         {"remedy", textOrNull(check.remedy)}});
  }
  return documents;
}

}  // namespace tool
