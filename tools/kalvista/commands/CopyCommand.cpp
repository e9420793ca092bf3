#include "acquisition/Acquisition.h"
#include "acquisition/FolderRepository.h"
#include "commands/Commands.h"
#include "machine/Paths.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  std::string repository;
};

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial)->required();
  addPath(app, "REPOSITORY", own.repository, "Folder that is searched, with all folders in it")
      ->required();
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  requireDirectory(own.repository, "repository");
  requireCalibrationDir(common);
  FolderRepository repository(own.repository);
  return answerOf(acquire(common, own.serial, repository, Differing::Replace), common, own.serial);
}

}  // namespace

Command copyCommand() {
  return withFileLists(makeCommand("copy", "Copy a camera's calibration files from a folder",
                                   "kalvista copy 12345678 /media/usb", declare, run));
}

}  // namespace tool
