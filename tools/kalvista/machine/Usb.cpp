#include "machine/Usb.h"

#include <kalvista/IRCalibrationManager.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "answer/Failure.h"
#include "answer/Output.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDeviceTree = "/sys/bus/usb/devices";
constexpr const char* kVendorId = "0403";
constexpr const char* kProductId = KALVISTA_USB_PRODUCT_ID;

std::string readAttribute(const fs::path& device, const char* attribute) {
  std::string value;
  std::ifstream stream(device / attribute);
  std::getline(stream, value);
  return value;
}

void countDevices(UsbSearch* search) {
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
    ++search->devices;
    if (vendor == kVendorId && readAttribute(entry.path(), "idProduct") == kProductId) {
      ++search->cameras;
    }
  }
}

unsigned long searchInLibrary(unsigned long wantedSerial) {
  unsigned long serial = wantedSerial;
  const bool found = ardo::IRCalibrationManager::getInstance()->findSerial(serial);
  if (chdir("/") != 0) throw Failure(ExitCode::CouldNot, "the directory / cannot be entered");
  return found ? serial : 0;
}

std::string problemText(const UsbSearch& search, unsigned long wantedSerial) {
  const std::string ids = std::string(kVendorId) + ":" + kProductId;
  const std::string seen = countText(search.devices, "USB device");
  if (search.cameras == 0) {
    return "no camera found: " + seen + " seen, none with the supported ids " + ids +
           "; plug a camera in and look at its cable and power";
  }
  if (wantedSerial == 0) {
    return "no camera found: " + countText(search.cameras, "device") + " with the supported ids " +
           ids + " seen, but none has a usable serial number; unplug it and plug it in again";
  }
  const unsigned long other = searchInLibrary(0);
  return "camera " + std::to_string(wantedSerial) + " is not attached: " + seen + " seen, " +
         std::to_string(search.cameras) + " with the supported ids " + ids +
         (other == 0 ? "" : ", such as camera " + std::to_string(other)) +
         "; check the number or plug the camera in";
}

}  // namespace

UsbSearch findCamera(unsigned long wantedSerial) {
  UsbSearch search;
  countDevices(&search);
  search.serial = searchInLibrary(wantedSerial);
  if (search.serial == 0) search.problem = problemText(search, wantedSerial);
  return search;
}

}  // namespace tool
