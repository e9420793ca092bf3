// Cameras in a USB tree of the test's own, laid as the kernel lays it.
#include <gtest/gtest.h>
#include <kalvista/IRCalibrationManager.h>

#include <climits>
#include <tuple>

#include "support/ChildProcess.h"
#include "support/ManagerLog.h"
#include "support/UsbTree.h"

namespace {

namespace fs = std::filesystem;
using usb::attach;
using usb::camera;
using usb::kDevices;
using usb::kTree;

const std::string kQuery = "DEBUG 380:Query directory /sys/bus/usb/devices";
const std::string kFound = "DEBUG 451:Found device with serial ";

// The log is followed by the serial number that the call leaves.
Outcome search(unsigned long serial) {
  Outcome outcome = outcomeOf([&serial] {
    const bool found = ardo::IRCalibrationManager::getInstance()->findSerial(serial);
    EXPECT_TRUE(found || serial == 0 || errno == 0);
    return found;
  });
  outcome.second.push_back(std::to_string(serial));
  return outcome;
}

class CameraDiscoveryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!usb::makeTree()) GTEST_SKIP() << "a USB tree of its own needs root, who may mount it";
    fs::current_path("/");
  }
};

TEST_F(CameraDiscoveryTest, FirstListedCameraOrTheOneAskedFor) {
  attach("1-1", camera("11111"));
  attach("1-2", camera("22222"));
  usb::Attributes foreign = camera("33333");
  foreign["idVendor"] = "1d6b\n";
  attach("2-1", foreign);
  attach("1-1:1.0", {{"idVendor", "0403\n"}, {"idProduct", USB_PRODUCT_ID}});
  usb::writeDevice(kDevices + "3-1", camera("44444"));
  std::string first = "22222";  // the order of the directory is nobody's to choose
  std::string second = "11111";
  for (const auto& entry : fs::directory_iterator(kDevices)) {
    if (entry.path().filename() == "1-2") break;
    if (entry.path().filename() == "1-1") std::swap(first, second);
  }

  EXPECT_EQ(search(0), Outcome(true, {kQuery, kFound + first, first}));
  const Lines all = {kQuery, kFound + first, kFound + second};
  EXPECT_EQ(search(std::stoul(second)), Outcome(true, {all[0], all[1], all[2], second}));
  EXPECT_EQ(search(33333), Outcome(false, {all[0], all[1], all[2], "0"}));
  EXPECT_EQ(search(44444), Outcome(false, {all[0], all[1], all[2], "0"}));
  EXPECT_EQ(fs::current_path() / "", kDevices);
}

TEST_F(CameraDiscoveryTest, AttributesAreTakenToTheLetter) {
  const std::string held = support::outputOf("ls /proc/$PPID/fd");
  const std::vector<std::tuple<std::string, std::string, Lines>> rows = {
      {"serial", "0123abc\n", {kFound + "0123abc", "123"}},
      {"serial", "  77\n", {kFound + "  77", "77"}},
      {"serial", "5", {kFound + "5", "5"}},
      {"serial", {"12\0003\n", 5}, {kFound + "12", "12"}},
      {"serial", "unknown\n", {kFound + "unknown", "0"}},
      {"serial", "", {kFound, "0"}},
      {"serial",
       std::string(1 << 20, '9'),
       {kFound + std::string(4096, '9'), std::to_string(ULONG_MAX)}},
      {"idProduct", USB_PRODUCT_ID, {kFound + "11111", "11111"}},
      {"idProduct", USB_PRODUCT_ID " \n", {"0"}},
      {"idProduct", "7D3A\n", {"0"}},
      {"idProduct", "\n" USB_PRODUCT_ID, {"0"}},
      {"idVendor", {"0403\0\xff\n", 7}, {"0"}},
      {"idVendor", "", {"0"}},
      {"idVendor", "0403" + std::string(1 << 20, ' '), {"0"}},
  };
  attach("1-1", {});
  for (const auto& [attribute, content, expected] : rows) {
    usb::Attributes attributes = camera("11111");
    attributes[attribute] = content;
    usb::writeDevice(kDevices + "1-1", attributes);
    Outcome outcome(expected.back() != "0", expected);
    outcome.second.insert(outcome.second.begin(), kQuery);
    EXPECT_EQ(search(0), outcome) << attribute << ": " << content;
  }
  EXPECT_EQ(support::outputOf("ls /proc/$PPID/fd"), held);
}

// As when a device is unplugged meanwhile: a device is listed that is not there any more. Here the
// path leads to another directory after the working directory has changed.
TEST_F(CameraDiscoveryTest, DevicesThatVanishedArePassedOver) {
  fs::remove_all(kTree);
  fs::create_directories(kTree + "/bus/devices/devices/1-1");
  fs::create_directory_symlink("/proc/self/cwd/devices", kTree + "/devices");
  fs::current_path(kTree + "/bus");
  EXPECT_EQ(search(0),
            Outcome(false, {kQuery, "DEBUG 417:errno: No such file or directory 1-1", "0"}));
}

TEST_F(CameraDiscoveryTest, WithoutATreeNothingIsTouched) {
  fs::remove_all(kTree);
  const std::string message =
      "ERROR 391:Query directory /sys/bus/usb/devices could not be opened: "
      "No such file or directory";
  EXPECT_EQ(search(77), Outcome(false, {kQuery, message, "77"}));
  EXPECT_EQ(fs::current_path(), "/");
}

TEST_F(CameraDiscoveryTest, TreeThatMayBeEnteredButNotListed) {
  fs::permissions(kDevices, fs::perms(0111));
  const std::string message = "ERROR 400:Failed to open usb device directory: Permission denied";
  const int failed = support::asUnprivilegedUser([&message] {
    EXPECT_EQ(search(77), Outcome(false, {kQuery, message, "77"}));
    EXPECT_EQ(fs::current_path() / "", kDevices);
    return HasFailure();
  });
  EXPECT_EQ(failed, 0);
}

}  // namespace
