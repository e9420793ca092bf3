// IRCalibrationManager: the serial number of an attached camera, from the kernel's USB tree.
#include <dirent.h>
#include <fcntl.h>
#include <kalvista/IRCalibrationManager.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include "sdk/log/LogMessage.h"
#include "sdk/text/NoThrow.h"

namespace ardo {

namespace {

constexpr const char* kDiscoverySource = "IRCalibrationManager";
constexpr int kLineQuery = 380;
constexpr int kLineNotEntered = 391;
constexpr int kLineNotOpened = 400;
constexpr int kLineNoStatus = 417;
constexpr int kLineFound = 451;

constexpr const char* kDeviceDirectory = "/sys/bus/usb/devices";
constexpr const char* kVendorId = "0403";
constexpr const char* kProductId = KALVISTA_USB_PRODUCT_ID;

struct DirectoryCloser {
  void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

std::string errorText() { return std::strerror(errno); }

// The first line of a device's attribute file, nothing when the file does not open. The kernel
// keeps attributes within a page; whatever is longer is cut there.
std::optional<std::string> readAttribute(const std::string& device, const char* attribute) {
  constexpr std::size_t kPage = 4096;
  const int descriptor =
      open((device + "/" + attribute).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return std::nullopt;
  std::array<char, kPage> content{};
  const ssize_t count = read(descriptor, content.data(), content.size());
  close(descriptor);
  const std::string text(content.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
  return text.substr(0, text.find('\n'));
}

// In the device directory each device is a link to its place in the tree.
bool isDevice(const std::string& name) {
  if (name == "." || name == "..") return false;
  struct stat status {};
  if (lstat(name.c_str(), &status) != 0) {
    const std::string error = errorText();
    logMessage(kLogDebug, kDiscoverySource, kLineNoStatus, "errno: ", error, " ", name);
    return false;
  }
  return S_ISLNK(status.st_mode);
}

// The serial number of a supported camera, nothing for any other device.
std::optional<unsigned long> readCameraSerial(const std::string& device) {
  const auto vendor = readAttribute(device, "idVendor");
  const auto product = readAttribute(device, "idProduct");
  if (vendor != kVendorId || product != kProductId) return std::nullopt;
  const auto serial = readAttribute(device, "serial");
  if (!serial) return std::nullopt;
  logMessage(kLogDebug, kDiscoverySource, kLineFound, "Found device with serial ", *serial);
  return std::strtoul(serial->c_str(), nullptr, 10);
}

// Serial number of the first camera that is wanted, 0 when there is none.
unsigned long searchCamera(DIR* directory, unsigned long wanted) {
  while (const dirent* entry = readdir(directory)) {
    const std::string name = static_cast<const char*>(entry->d_name);
    if (!isDevice(name)) continue;
    const unsigned long serial = readCameraSerial(name).value_or(0);
    if (serial != 0 && (wanted == 0 || serial == wanted)) return serial;
  }
  return 0;
}

bool searchTree(unsigned long& serial) {
  logMessage(kLogDebug, kDiscoverySource, kLineQuery, "Query directory ", kDeviceDirectory);
  if (chdir(kDeviceDirectory) != 0) {
    const std::string error = errorText();
    logMessage(kLogError, kDiscoverySource, kLineNotEntered, "Query directory ", kDeviceDirectory,
               " could not be opened: ", error);
    errno = 0;
    return false;
  }
  const Directory directory(opendir(kDeviceDirectory));
  if (directory == nullptr) {
    const std::string error = errorText();
    logMessage(kLogError, kDiscoverySource, kLineNotOpened,
               "Failed to open usb device directory: ", error);
    errno = 0;
    return false;
  }
  serial = searchCamera(directory.get(), serial);
  return serial != 0;
}

}  // namespace

bool IRCalibrationManager::findSerial(unsigned long& serial) {
  return withoutThrowing(false, [&serial] { return searchTree(serial); });
}

}  // namespace ardo
