// From a device configuration file to a checked frame rate: what a camera application does before
// it opens the video stream.
#include <kalvista/kalvista.h>

#include <cstdio>
#include <memory>

// The reader fills the three texts of the record and leaves their release to us.
struct DeviceConfiguration : ardo::IRDeviceParams {
  DeviceConfiguration() : ardo::IRDeviceParams() {}
  DeviceConfiguration(const DeviceConfiguration&) = delete;
  DeviceConfiguration& operator=(const DeviceConfiguration&) = delete;
  ~DeviceConfiguration() {
    delete[] opticsText;
    delete[] formatsPath;
    delete[] caliPath;
  }
};

int stop(int status, const char* what, const char* detail) {
  std::fprintf(stderr, "%s: %s\n", what, detail);
  return status;
}

int main(int argc, char** argv) {
  if (argc != 2) return stop(2, "Usage", "kalvista_quickstart CONFIGURATION.xml");
  ardo::IRLogger::setVerbosity(ardo::IRLOGGER_WARNING, ardo::IRLOGGER_OFF, nullptr);
  DeviceConfiguration wanted;
  if (!ardo::IRDeviceParamsReader::readXML(argv[1], wanted)) return 3;  // the log tells why
  const auto serial = static_cast<unsigned long>(wanted.serial);

  std::unique_ptr<ardo::IRCalibrationManager> manager(ardo::IRCalibrationManager::getInstance());
  manager->setCalibrationDir(wanted.caliPath);  // keeps the default when the file names none
  std::unique_ptr<char[]> missing(manager->checkCalibration(serial));
  if (missing) return stop(1, "Calibration files are missing", missing.get());

  for (const ardo::IROptics& optics : *manager->getAvailableOptics(serial)) {
    std::printf("%d degrees %s\n", optics.fov, optics.text.c_str());
    for (const ardo::IRTempRange& range : optics.tempRanges) {
      std::printf("  %d to %d degrees Celsius\n", range.tMin, range.tMax);
    }
  }

  // A file that names no optics, or no range, leaves the choice to us: we take the first one.
  ConfigCali* calibration = ConfigCali::getInstance();
  std::unique_ptr<OPTICS> optics(wanted.fov != 0 ? new OPTICS{wanted.fov, wanted.opticsText}
                                                 : calibration->getOptics(0));
  std::unique_ptr<Range> range(wanted.tMin < wanted.tMax
                                   ? new Range{float(wanted.tMin), float(wanted.tMax)}
                                   : calibration->getTempRange(optics.get(), 0));
  if (calibration->getTempRangeIndex(optics.get(), range.get()) < 0) {
    return stop(1, argv[1], "the camera has no such optics or temperature range");
  }
  auto framerate = static_cast<unsigned short>(wanted.framerate);
  const bool calibrated = calibration->checkFramerate(optics.get(), range.get(), framerate);
  std::printf("%g frames per second: %scalibrated\n", wanted.framerate, calibrated ? "" : "not ");
  brivex::Logger::releaseInstance();
  return calibrated ? 0 : 1;
}
