#include "commands/Commands.h"
#include "machine/Usb.h"

namespace tool {
namespace {

struct OwnOptions {};

void declare(CLI::App&, OwnOptions&) {}

std::string textOrDash(const std::string& text) { return text.empty() ? "-" : text; }

std::string stateOf(const Camera& camera) {
  if (camera.serial == 0) return "no usable serial number";
  if (!camera.hasUsableSerial()) {
    return "serial number beyond the library's limit of " + std::to_string(kGreatestSerial);
  }
  return camera.mayBeOpened ? "ready" : "may not be opened by this user";
}

Answer run(const CommonOptions&, const OwnOptions&) {
  const UsbSearch search = findCamera(0);
  Answer answer;
  Json cameras = Json::array();
  Table table({"SERIAL", "PORT", "IDS", "PRODUCT", "MBIT/S", "DEVICE", "STATE"});
  for (const Camera& camera : search.cameras) {
    cameras.push_back(documentOf(camera));
    table.add({textOrDash(camera.serialText), camera.port, camera.vendorId + ":" + camera.productId,
               textOrDash(camera.product), textOrDash(camera.speed), textOrDash(camera.node),
               stateOf(camera)});
  }
  answer.document["usbDevices"] = search.devices;
  answer.document["cameras"] = cameras;
  if (search.cameras.empty()) {
    answer.exitCode = ExitCode::AnswerIsNo;
    answer.problem = search.problem;
  } else {
    answer.text = table.text();
  }
  return answer;
}

}  // namespace

Command camerasCommand() {
  return makeCommand("cameras", "List all attached cameras, and whether this user may open them",
                     "kalvista cameras --json", declare, run);
}

}  // namespace tool
