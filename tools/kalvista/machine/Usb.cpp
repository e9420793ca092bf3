#include "machine/Usb.h"

#include <kalvista/IRCalibrationManager.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "answer/Failure.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDeviceTree = "/sys/bus/usb/devices";
constexpr const char* kDeviceNodes = "/dev/bus/usb";
constexpr const char* kVendorId = "0403";
constexpr const char* kProductId = KALVISTA_USB_PRODUCT_ID;

// The first line.
std::string readAttribute(const fs::path& device, const char* attribute) {
  std::ifstream stream(device / attribute);
  std::string value;
  std::getline(stream, value);
  return value;
}

// The kernel pads the numbers of buses and devices: "/dev/bus/usb/001/004".
std::string nodeOf(const fs::path& device) {
  constexpr std::size_t kDigits = 3;
  std::string node = kDeviceNodes;
  for (const char* attribute : {"busnum", "devnum"}) {
    const std::string number = readAttribute(device, attribute);
    const bool isNumber =
        !number.empty() && number.find_first_not_of("0123456789") == std::string::npos;
    if (!isNumber) return "";
    node += "/" + std::string(kDigits - std::min(kDigits, number.size()), '0') + number;
  }
  return node;
}

Camera cameraAt(const fs::path& device) {
  Camera camera;
  camera.serialText = readAttribute(device, "serial");
  camera.serial = std::strtoul(camera.serialText.c_str(), nullptr, 10);
  camera.port = device.filename();
  camera.vendorId = kVendorId;
  camera.productId = kProductId;
  camera.product = readAttribute(device, "product");
  camera.speed = readAttribute(device, "speed");
  camera.node = nodeOf(device);
  camera.mayBeOpened = !camera.node.empty() && access(camera.node.c_str(), R_OK | W_OK) == 0;
  return camera;
}

unsigned long confirmedByLibrary(unsigned long wantedSerial) {
  unsigned long serial = wantedSerial;
  const bool found = ardo::IRCalibrationManager::getInstance()->findSerial(serial);
  if (chdir("/") != 0) throw Failure(ExitCode::CouldNot, "the directory / cannot be entered");
  return found ? serial : 0;
}

std::string problemText(const UsbSearch& search, unsigned long wantedSerial) {
  const std::string ids = std::string(kVendorId) + ":" + kProductId;
  const std::string seen = countText(search.devices, "USB device");
  if (search.cameras.empty()) {
    return "no camera found: " + seen + " seen, none with the supported ids " + ids +
           "; plug a camera in and look at its cable and power";
  }
  if (wantedSerial == 0) return serialProblem(search.cameras.front());
  const auto others = usableSerials(search.cameras);
  return "camera " + std::to_string(wantedSerial) + " is not attached: " + seen + " seen, " +
         std::to_string(search.cameras.size()) + " with the supported ids " + ids +
         (others.empty() ? "" : ", such as camera " + std::to_string(others.front())) +
         "; check the number or plug the camera in";
}

}  // namespace

UsbDevices readUsbDevices() {
  UsbDevices devices;
  std::error_code error;
  fs::directory_iterator entries(kDeviceTree, error);
  if (error) {
    throw Failure(ExitCode::CouldNot, std::string("the USB device tree ") + kDeviceTree +
                                          " cannot be read: " + error.message() +
                                          "; check that this system has USB and shows it here");
  }
  for (const fs::directory_entry& entry : entries) {
    const std::string vendor = readAttribute(entry.path(), "idVendor");
    if (vendor.empty()) continue;
    ++devices.count;
    const bool isCamera = entry.is_symlink(error) && vendor == kVendorId &&
                          readAttribute(entry.path(), "idProduct") == kProductId;
    if (isCamera) devices.cameras.push_back(cameraAt(entry.path()));
  }
  std::sort(devices.cameras.begin(), devices.cameras.end(),
            [](const Camera& one, const Camera& other) { return one.port < other.port; });
  return devices;
}

UsbSearch findCamera(unsigned long wantedSerial) {
  UsbSearch search;
  UsbDevices devices = readUsbDevices();
  search.devices = devices.count;
  search.cameras = std::move(devices.cameras);
  const auto usable = usableSerials(search.cameras);
  const unsigned long candidate =
      wantedSerial == 0 && !usable.empty() ? usable.front() : wantedSerial;
  if (candidate != 0) search.serial = confirmedByLibrary(candidate);
  if (search.serial == 0) search.problem = problemText(search, candidate);
  return search;
}

std::vector<unsigned long> usableSerials(const std::vector<Camera>& cameras) {
  std::vector<unsigned long> serials;
  for (const Camera& camera : cameras) {
    if (camera.hasUsableSerial()) serials.push_back(camera.serial);
  }
  return serials;
}

std::string serialProblem(const Camera& camera) {
  if (camera.hasUsableSerial()) return "";
  const std::string where = "the camera at USB port " + camera.port + " ";
  if (camera.serial != 0) {
    return where + "has the serial number " + camera.serialText +
           ", beyond the library's limit of " + std::to_string(kGreatestSerial) +
           "; use a camera with a smaller number, or ask its maker for one";
  }
  const std::string shown = camera.serialText.empty() ? "no serial number"
                                                      : "the serial number \"" + camera.serialText +
                                                            "\", which is no usable number";
  return where + "has " + shown + "; unplug it and plug it in again";
}

std::string accessProblem(const Camera& camera) {
  if (camera.mayBeOpened || camera.node.empty()) return "";
  const std::string what = "the device " + camera.node + " cannot be opened by this user: ";
  if (access(camera.node.c_str(), F_OK) != 0) {
    return what + std::strerror(errno) + "; a container must be given the devices below " +
           kDeviceNodes;
  }
  return what +
         "no permission; sit at this machine or join the group plugdev, after \"systemctl "
         "enable --now kalvista-cameras.service\" by root";
}

Json documentOf(const Camera& camera) {
  const std::string number = serialProblem(camera);
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
      {"finding", textOrNull(number.empty() ? accessProblem(camera) : number)}};
}

}  // namespace tool
