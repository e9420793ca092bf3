#include <cstdlib>

#include "commands/Commands.h"
#include "machine/Usb.h"

namespace tool {
namespace {

struct OwnOptions {};

void declare(CLI::App&, OwnOptions&) {}

Json textOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

std::string textOrDash(const std::string& text) { return text.empty() ? "-" : text; }

std::string stateOf(const Camera& camera) {
  if (camera.serial > kGreatestSerial) {
    return "serial number beyond the library's limit of " + std::to_string(kGreatestSerial);
  }
  if (camera.serial == 0) return "no usable serial number";
  return camera.mayBeOpened ? "ready" : "may not be opened by this user";
}

std::string sentenceOn(const Camera& camera) {
  const std::string sentence = serialProblem(camera);
  return sentence.empty() ? accessProblem(camera) : sentence;
}

Json documentOf(const Camera& camera) {
  return {
      {"serial", camera.hasUsableSerial() ? Json(camera.serial) : Json()},
      {"serialText", camera.serialText},
      {"port", camera.port},
      {"vendorId", camera.vendorId},
      {"productId", camera.productId},
      {"product", textOrNull(camera.product)},
      {"speed", camera.speed.empty() ? Json() : Json(std::strtof(camera.speed.c_str(), nullptr))},
      {"node", textOrNull(camera.node)},
      {"mayBeOpened", camera.mayBeOpened},
      {"finding", textOrNull(sentenceOn(camera))}};
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
