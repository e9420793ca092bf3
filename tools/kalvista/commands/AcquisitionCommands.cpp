// The commands "copy" and "download".
#include "acquisition/Acquisition.h"
#include "commands/Commands.h"

namespace tool {
namespace {

struct CopyOptions {
  unsigned long serial = 0;
  std::string repository;
};

struct DownloadOptions {
  unsigned long serial = 0;
  unsigned timeoutSeconds = kDefaultTimeoutSeconds;
};

void declareCopy(CLI::App& app, CopyOptions& own) {
  addSerial(app, own.serial)->required();
  addPath(app, "REPOSITORY", own.repository, "Folder that is searched, with all folders in it")
      ->required();
}

void declareDownload(CLI::App& app, DownloadOptions& own) {
  addSerial(app, own.serial)->required();
  addTimeout(app, own.timeoutSeconds);
}

Answer runCopy(const CommonOptions& common, const CopyOptions& own) {
  return answerOf(copyFromRepository(common, own.serial, own.repository), common, own.serial);
}

Answer runDownload(const CommonOptions& common, const DownloadOptions& own) {
  return answerOf(downloadMissing(common, own.serial, own.timeoutSeconds), common, own.serial);
}

}  // namespace

Answer answerOf(const Acquisition& acquisition, const CommonOptions& common, unsigned long serial) {
  const CalibrationStatus& status = acquisition.status;
  Answer answer = answerOf(status, common.calibrationDir, serial);
  answer.document["installed"] = acquisition.installed;
  answer.document["changed"] = !acquisition.installed.empty();
  if (status.complete()) {
    answer.text = "The calibration of camera " + std::to_string(serial) +
                  " is complete: " + countText(status.files.size(), "file") + " in " +
                  common.calibrationDir + " (" +
                  (acquisition.installed.empty()
                       ? "nothing had to be changed"
                       : countText(acquisition.installed.size(), "file") + " added") +
                  ").\n";
  }
  return answer;
}

Command copyCommand() {
  return makeCommand("copy", "Copy a camera's calibration files from a folder",
                     "kalvista copy 12345678 /media/usb", declareCopy, runCopy);
}

Command downloadCommand() {
  return makeCommand("download", "Fetch what is missing of a camera's calibration online",
                     "kalvista download 12345678 --timeout 120", declareDownload, runDownload);
}

}  // namespace tool
