#include <chrono>
#include <thread>

#include "answer/Console.h"
#include "commands/Commands.h"
#include "machine/Usb.h"

namespace tool {
namespace {

constexpr unsigned kLongestWait = 24 * 60 * 60;

struct OwnOptions {
  unsigned long serial = 0;
  unsigned waitSeconds = 0;
};

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial);
  app.add_option("--wait", own.waitSeconds, "Wait so long for a camera to come")
      ->type_name("SECONDS")
      ->check(CLI::Range(1U, kLongestWait).description(""));
}

// The tree tells of a new device by showing it, as sysfs sends no file notifications.
UsbSearch findWithin(unsigned long wantedSerial, unsigned seconds) {
  constexpr auto kPause = std::chrono::milliseconds(100);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  UsbSearch search = findCamera(wantedSerial);
  while (search.serial == 0 && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(kPause);
    search = findCamera(wantedSerial);
  }
  return search;
}

Answer run(const CommonOptions&, const OwnOptions& own) {
  const UsbSearch search = findWithin(own.serial, own.waitSeconds);
  Answer answer;
  answer.document["serial"] = search.serial != 0 ? Json(search.serial) : Json();
  answer.document["usbDevices"] = search.devices;
  answer.document["cameras"] = search.cameras.size();
  if (search.serial != 0) {
    answer.text = std::to_string(search.serial) + "\n";
    if (own.serial == 0 && search.cameras.size() > 1) {
      warn(countText(search.cameras.size(), "camera") +
           " are attached, and this is one of them; see \"kalvista cameras\"");
    }
  } else {
    answer.exitCode = ExitCode::AnswerIsNo;
    answer.problem = search.problem;
  }
  return answer;
}

}  // namespace

Command serialCommand() {
  return makeCommand("serial", "Find the attached camera, or confirm that one is attached",
                     "kalvista serial 12345678 --wait 30", declare, run);
}

}  // namespace tool
