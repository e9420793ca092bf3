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

// False without the permission.
inline bool makeTree() {
  const bool isMade = enterOwnNamespaces(CLONE_NEWNS) && mountTmpfs("/sys/bus");
  if (isMade) std::filesystem::create_directories(kDevices);
  return isMade;
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
