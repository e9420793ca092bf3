#include "report/Report.h"

#include <kalvista/version.h>

#include <ctime>
#include <filesystem>
#include <iomanip>
#include <sstream>

#include "camera/Calibration.h"
#include "camera/Seal.h"
#include "diagnosis/Checks.h"
#include "machine/System.h"
#include "machine/Usb.h"
#include "report/ConfigurationText.h"
#include "report/Privacy.h"

namespace tool {
namespace {

std::string timeText() {
  const std::time_t now = std::time(nullptr);
  std::tm utc{};
  std::ostringstream text;
  text << std::put_time(gmtime_r(&now, &utc), "%FT%TZ");
  return text.str();
}

std::string versionNumber() {
  return std::to_string(KALVISTA_VERSION_MAJOR) + "." + std::to_string(KALVISTA_VERSION_MINOR) +
         "." + std::to_string(KALVISTA_VERSION_PATCH);
}

Json machineDocument(const CommonOptions& common, const User& user, bool full) {
  const System system = thisSystem();
  return {{"distribution", textOrNull(system.distribution)},
          {"kernel", system.kernel},
          {"processor", system.processor},
          {"processors", system.processors},
          {"root", user.isRoot},
          {"user", full && !user.names.empty() ? Json(user.names.front()) : Json()},
          {"calibrationDir", common.calibrationDir},
          {"formatsDir", common.formatsDir}};
}

// What cannot be looked at is told by the checks.
void addCameras(Json* report) {
  (*report)["usbDevices"] = Json();
  (*report)["cameras"] = Json::array();
  try {
    const UsbDevices devices = readUsbDevices();
    (*report)["usbDevices"] = devices.count;
    for (const Camera& camera : devices.cameras) (*report)["cameras"].push_back(documentOf(camera));
  } catch (const Failure&) {
  }
}

Json calibrationDocument(const CommonOptions& common, const Diagnosis& diagnosis) {
  std::error_code error;
  const bool exists = std::filesystem::is_directory(common.calibrationDir, error);
  if (!diagnosis.calibration || !exists) return {};
  const CalibrationStatus& status = *diagnosis.calibration;
  const bool isReadable = status.files.front().state == FileState::Present;
  const auto calibration =
      isReadable ? loadCalibration(common.calibrationDir, diagnosis.serial) : nullptr;
  return {{"complete", status.complete()},
          {"sealed", Seal::read(common.calibrationDir, diagnosis.serial).exists()},
          {"files", documentsOf(status.files)},
          {"optics", calibration ? opticsDocument(*calibration) : Json::array()}};
}

Json configurationDocument(const Diagnosis& diagnosis) {
  if (!diagnosis.configuration) return {};
  Json document = documentOf(*diagnosis.configuration);
  document["params"] = diagnosis.params;
  document["lines"] = linesOf(*diagnosis.configuration);
  return document;
}

}  // namespace

Json reportOn(const CommonOptions& common, unsigned long serial, const std::string& configuration,
              bool full) {
  const User user = thisUser();
  const Diagnosis diagnosis = diagnose(common, serial, configuration);
  Json report = {{"written", timeText()},
                 {"version", versionNumber()},
                 {"full", full},
                 {"serial", diagnosis.serial != 0 ? Json(diagnosis.serial) : Json()},
                 {"healthy", diagnosis.count(CheckStatus::Fail) == 0}};
  report["machine"] = machineDocument(common, user, full);
  addCameras(&report);
  report["checks"] = documentsOf(diagnosis.checks);
  report["calibration"] = calibrationDocument(common, diagnosis);
  report["configuration"] = configurationDocument(diagnosis);
  // Texts of cameras and calibrations may be in any encoding; from here on all are in UTF-8.
  report = Json::parse(jsonText(report));
  if (full) return report;
  leaveOutUser(user, &report);
  if (!report["configuration"].is_null()) {
    leaveOutUserInProse(user, &report["configuration"]["lines"]);
  }
  return report;
}

}  // namespace tool
