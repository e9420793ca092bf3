#include "camera/Configuration.h"

#include <kalvista/IRCalibrationManager.h>
#include <kalvista/SimpleXML.h>

#include <filesystem>

#include "answer/Console.h"
#include "answer/Failure.h"
#include "camera/Calibration.h"
#include "camera/OpticsChoice.h"
#include "machine/Files.h"
#include "machine/Paths.h"
#include "machine/Usb.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRoot = "imager";

[[noreturn]] void failToRead(const std::string& source, const std::string& reason) {
  throw Failure(ExitCode::CouldNot, source + " is no device configuration: " + reason +
                                        "; mend it, or write a new one with \"kalvista config\"");
}

// `source` is what messages call it.
std::unique_ptr<Configuration> readAs(const std::string& source, const std::string& path) {
  // Looked at before the reader, which calls every document that it refuses a missing one.
  ardo::SimpleXML document;
  if (!document.open(path.c_str(), kRoot)) failToRead(source, "its comments do not balance");
  auto configuration = std::make_unique<Configuration>();
  configuration->text = readFile(path);
  if (!document.hasRoot() ||
      !ardo::IRDeviceParamsReader::readXML(path.c_str(), configuration->values)) {
    failToRead(source, std::string("it has no root element \"") + kRoot + "\"");
  }
  return configuration;
}

Json textOrNull(const char* text) { return text != nullptr ? Json(text) : Json(); }

}  // namespace

Configuration::~Configuration() {
  delete[] values.opticsText;
  delete[] values.formatsPath;
  delete[] values.caliPath;
}

std::unique_ptr<Configuration> readConfiguration(const std::string& path) {
  if (path == kStandardStream) {
    return readAs("standard input", MemoryFile(readStandardInput()).path());
  }
  requireFileReadable(path, "configuration file");
  return readAs("the file " + path, path);
}

unsigned long cameraOf(const ardo::IRDeviceParams& values) {
  return values.serial <= kGreatestSerial ? static_cast<unsigned long>(values.serial) : 0;
}

Json valuesDocument(const ardo::IRDeviceParams& values) {
  return {{"serial", values.serial},
          {"fov", values.fov},
          {"opticsText", textOrNull(values.opticsText)},
          {"formatsPath", textOrNull(values.formatsPath)},
          {"caliPath", textOrNull(values.caliPath)},
          {"tMin", values.tMin},
          {"tMax", values.tMax},
          {"framerate", values.framerate},
          {"videoFormatIndex", values.videoFormatIndex},
          {"bispectral", values.bispectral},
          {"average", values.average},
          {"autoFlag", values.autoFlag},
          {"minInterval", values.minInterval},
          {"maxInterval", values.maxInterval},
          {"pifInMode", values.pifInMode},
          {"pifOutMode", values.pifOutMode},
          {"pifOutVoltage", values.pifOutVoltage},
          {"tChipMode", values.tChipMode},
          {"tChipFixedValue", values.tChipFixedValue},
          {"focus", values.focus}};
}

std::string defaultDocument(const CommonOptions& common, unsigned long serial) {
  std::error_code error;
  const bool exists = fs::is_directory(common.calibrationDir, error);
  const auto calibration = exists ? loadCalibration(common.calibrationDir, serial) : nullptr;
  if (!exists) {
    warn("the calibration directory " + common.calibrationDir +
         " does not exist or cannot be entered; the configuration names it all the same");
  } else if (!calibration) {
    warn("the calibration file " + calibrationXmlPath(common.calibrationDir, serial) +
         " cannot be loaded, so the optics in the configuration is a placeholder");
  }
  std::string document = ardo::IRCalibrationManager::getInstance()->generateConfiguration(serial);
  return calibration ? withUsableFramerate(std::move(document), *calibration->opticsList)
                     : document;
}

bool writeDocument(const std::string& path, const std::string& document, bool force) {
  requireDirectory(parentOf(path), "directory");
  std::error_code error;
  const bool exists = fs::exists(path, error);
  if (!exists && fs::is_symlink(path, error)) {
    throw Failure(ExitCode::CouldNot, "the file " + path +
                                          " is a link that leads nowhere; remove it, or name "
                                          "another file");
  }
  // A link keeps its place, and what it leads to is replaced.
  const std::string target = exists ? fs::canonical(path).string() : path;
  if (exists) {
    requireFileReadable(target, "configuration file");
    if (readFile(target) == document) return false;
    if (!force) {
      throw Failure(ExitCode::CouldNot, "the file " + path +
                                            " exists and is left as it is; overwrite it with "
                                            "--force, or name another file");
    }
  }
  writeFileWhole(target, document, force);
  return true;
}

}  // namespace tool
