// The kernel's USB device tree.
#ifndef KALVISTA_TOOL_USB_H
#define KALVISTA_TOOL_USB_H

#include <cstddef>
#include <string>

namespace tool {

struct UsbSearch {
  unsigned long serial = 0;  // 0 when no camera was found
  std::size_t devices = 0;   // all USB devices
  std::size_t cameras = 0;   // those with the ids of supported cameras
  std::string problem;       // when no camera was found: one sentence
};

// Looks for the camera with that serial number, or for any with 0. A Failure when the tree cannot
// be read.
UsbSearch findCamera(unsigned long wantedSerial);

}  // namespace tool

#endif  // KALVISTA_TOOL_USB_H
