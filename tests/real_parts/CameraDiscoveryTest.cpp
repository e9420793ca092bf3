// Cameras in a USB tree of the test's own, laid as the kernel lays it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <kalvista/IRCalibrationManager.h>
#include <poll.h>
#include <sys/ioctl.h>

#include <climits>
#include <thread>

#include "real_parts/ManagerLog.h"
#include "real_parts/UsbTree.h"
#include "support/ChildProcess.h"

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
  Outcome outcome = outcomeOf(
      [&serial] { return ardo::IRCalibrationManager::getInstance()->findSerial(serial); });
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
  attach("1-1:1.0", {{"bInterfaceClass", "0e\n"}});
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
  const struct {
    std::string attribute;
    std::string content;
    Lines expected;
  } rows[] = {
      {"serial", "0123abc\n", {kFound + "0123abc", "123"}},
      {"serial", "  77\n", {kFound + "  77", "77"}},
      {"serial", "5", {kFound + "5", "5"}},
      {"serial", {"12\0003\n", 5}, {kFound + "12", "12"}},
      {"serial", "unknown\n", {kFound + "unknown", "0"}},
      {"serial", "", {kFound, "0"}},
      {"idProduct", USB_PRODUCT_ID, {kFound + "11111", "11111"}},
      {"idProduct", USB_PRODUCT_ID " \n", {"0"}},
      {"idProduct", "7D3A\n", {"0"}},
      {"idProduct", "\n" USB_PRODUCT_ID, {"0"}},
      {"idVendor", {"0403\0\xff\n", 7}, {"0"}},
      {"idVendor", "", {"0"}},
      {"idVendor", "0403" + std::string(1 << 20, ' '), {"0"}},
  };
  for (const auto& row : rows) {
    fs::remove_all(kTree);
    fs::create_directories(kDevices);
    usb::Attributes attributes = camera("11111");
    attributes[row.attribute] = row.content;
    attach("1-1", attributes);
    Outcome expected(row.expected.back() != "0", row.expected);
    expected.second.insert(expected.second.begin(), kQuery);
    EXPECT_EQ(search(0), expected) << row.attribute << ": " << row.content;
  }
  support::writeFile(kDevices + "1-1/idVendor", "0403");
  support::writeFile(kDevices + "1-1/serial", std::string(1 << 20, '9'));
  EXPECT_EQ(search(0).second.back(), std::to_string(ULONG_MAX));
}

// The log is a pipe that takes the lines of some cameras only. When it takes the next one, those
// cameras are gone that were listed but not yet looked at.
TEST_F(CameraDiscoveryTest, DevicesUnpluggedMeanwhileArePassedOver) {
  constexpr int kSomeLines = 16000;
  for (int i = 0; i < 100; ++i) attach("1-" + std::to_string(i), camera(std::string(4000, 'x')));
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  std::string log;
  std::thread unplugging([&log, in = ends[0]] {
    pollfd events{in, 0, 0};
    int waiting = 0;
    while (waiting < kSomeLines && poll(&events, 1, 1) == 0) ioctl(in, FIONREAD, &waiting);
    fs::remove_all(kDevices);
    log = support::readFile("/proc/self/fd/" + std::to_string(in));
  });
  const int standardError = dup(STDERR_FILENO);
  dup2(ends[1], STDERR_FILENO);
  close(ends[1]);
  ardo::IRLogger::setVerbosity(ardo::IRLOGGER_DEBUG, ardo::IRLOGGER_OFF, nullptr);
  unsigned long serial = 1;
  EXPECT_FALSE(ardo::IRCalibrationManager::getInstance()->findSerial(serial));
  dup2(standardError, STDERR_FILENO);
  unplugging.join();
  EXPECT_TRUE(std::regex_search(
      log, std::regex("DEBUG [^ ]+:417\\] @ [^ ]+s :errno: No such file or directory 1-[0-9]+\n")));
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
