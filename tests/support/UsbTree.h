// A USB tree of a test's own, laid as the kernel lays it.
#ifndef KALVISTA_TESTS_SUPPORT_USB_TREE_H
#define KALVISTA_TESTS_SUPPORT_USB_TREE_H

#include <filesystem>
#include <map>
#include <string>

#include "support/Files.h"
#include "support/OwnNamespaces.h"

namespace usb {

using Attributes = std::map<std::string, std::string>;

const std::string kTree = "/sys/bus/usb";
const std::string kDevices = kTree + "/devices/";

inline Attributes camera(const std::string& serial) {
  return {{"idVendor", "0403\n"}, {"idProduct", USB_PRODUCT_ID "\n"}, {"serial", serial + "\n"}};
}

// As the kernel numbers it, with its device node; each user may open it, or root alone.
inline Attributes camera(const std::string& serial, const std::string& device, bool access) {
  Attributes attributes = camera(serial);
  attributes.insert(
      {{"busnum", "1\n"}, {"devnum", device + "\n"}, {"product", "Imager\n"}, {"speed", "480\n"}});
  const std::string node = support::writeFile("/dev/bus/usb/001/00" + device, "");
  std::filesystem::permissions(node, std::filesystem::perms(access ? 0666 : 0600));
  return attributes;
}

// False without the permission.
inline bool makeTree() {
  const bool isMade = enterOwnNamespaces(CLONE_NEWNS) && mountTmpfs("/sys/bus");
  if (isMade) std::filesystem::create_directories(kDevices);
  return isMade;
}

// Device nodes of the test's own; the others stay. Within a tree of its own.
inline bool makeNodes() {
  const std::string upper = "/sys/bus/nodes/upper", work = "/sys/bus/nodes/work";
  std::filesystem::create_directories(upper + "/bus/usb/001");
  std::filesystem::create_directories(work);
  const std::string folders = "lowerdir=/dev,upperdir=" + upper + ",workdir=" + work;
  return mount("overlay", "/dev", "overlay", 0, folders.c_str()) == 0;
}

inline void writeDevice(const std::string& folder, const Attributes& attributes) {
  std::filesystem::create_directories(folder);
  for (const auto& [name, content] : attributes) support::writeFile(folder + "/" + name, content);
}
inline void attach(const std::string& name, const Attributes& attributes) {
  writeDevice(kTree + "/tree/" + name, attributes);
  std::filesystem::create_directory_symlink("../tree/" + name, kDevices + name);
}

}  // namespace usb

#endif  // KALVISTA_TESTS_SUPPORT_USB_TREE_H
