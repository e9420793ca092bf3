// Cameras in the kernel's USB device tree.
#ifndef KALVISTA_TOOL_USB_H
#define KALVISTA_TOOL_USB_H

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "answer/Output.h"

namespace tool {

// The library forms names of calibration files from an int.
constexpr unsigned long kGreatestSerial = std::numeric_limits<int>::max();

// Texts are the kernel's attributes, which come from the device itself; empty when it gives none.
struct Camera {
  std::string serialText;
  unsigned long serial = 0;  // as the library reads the text; 0 when it is no number
  std::string port;          // its place in the tree: "1-2.4"
  std::string vendorId;
  std::string productId;
  std::string product;
  std::string speed;         // of the bus, in Mbit/s: "480"
  std::string node;          // "/dev/bus/usb/001/004"; empty when the kernel gives no number
  bool mayBeOpened = false;  // by this user, for reading and writing
  bool hasUsableSerial() const { return serial != 0 && serial <= kGreatestSerial; }
};

struct UsbDevices {
  std::size_t count = 0;        // of all devices
  std::vector<Camera> cameras;  // those with the ids of supported cameras, by their ports
};

// A Failure when the tree cannot be read.
UsbDevices readUsbDevices();

struct UsbSearch {
  unsigned long serial = 0;     // 0 when no camera was found
  std::size_t devices = 0;      // all USB devices
  std::vector<Camera> cameras;  // all that are attached, found or not
  std::string problem;          // when no camera was found: one sentence
};

// Looks for the camera with that serial number, or for any with 0. A Failure when the tree cannot
// be read.
UsbSearch findCamera(unsigned long wantedSerial);

// Those that a command could be given.
std::vector<unsigned long> usableSerials(const std::vector<Camera>& cameras);

// Why this camera cannot be worked with, and what to do; empty when its number is usable.
std::string serialProblem(const Camera& camera);
// The same of its device node; empty when this user may open it, or when the kernel names none.
std::string accessProblem(const Camera& camera);
// What the two say as "finding", null when they say nothing, beside what the kernel gives.
Json documentOf(const Camera& camera);

}  // namespace tool

#endif  // KALVISTA_TOOL_USB_H
