#include "acquisition/Acquisition.h"
#include "acquisition/WebRepository.h"
#include "commands/Commands.h"
#include "commands/WebOptions.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  WebOptions web;
  bool update = false;
};

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial)->required();
  addWebOptions(app, own.web);
  addUpdate(app, own.update);
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  requireCalibrationDir(common);
  WebRepository repository(limitsFor(own.web, common, own.serial, own.update), own.web.mirror);
  return answerOf(
      acquire(common, own.serial, repository, own.update ? Differing::Replace : Differing::Keep),
      common, own.serial);
}

}  // namespace

Command downloadCommand() {
  return withFileLists(makeCommand("download",
                                   "Fetch what is missing of a camera's calibration online",
                                   "kalvista download 12345678 --timeout 120", declare, run));
}

}  // namespace tool
