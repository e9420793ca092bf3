#include "commands/Commands.h"
#include "machine/Usb.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
};

void declare(CLI::App& app, OwnOptions& own) { addSerial(app, own.serial); }

Answer run(const CommonOptions&, const OwnOptions& own) {
  const UsbSearch search = findCamera(own.serial);
  Answer answer;
  answer.document["serial"] = search.serial != 0 ? Json(search.serial) : Json();
  answer.document["usbDevices"] = search.devices;
  answer.document["cameras"] = search.cameras.size();
  if (search.serial != 0) {
    answer.text = std::to_string(search.serial) + "\n";
  } else {
    answer.exitCode = ExitCode::AnswerIsNo;
    answer.problem = search.problem;
  }
  return answer;
}

}  // namespace

Command serialCommand() {
  return makeCommand("serial", "Find the attached camera, or confirm that one is attached",
                     "kalvista serial 12345678", declare, run);
}

}  // namespace tool
