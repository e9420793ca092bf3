// One run at a time for each directory.
#ifndef KALVISTA_TOOL_DIRECTORY_LOCK_H
#define KALVISTA_TOOL_DIRECTORY_LOCK_H

#include <string>

#include "machine/Files.h"

namespace tool {

// A lock of the kernel on the directory itself: it goes with the process, however that ends, and
// counts in every container that sees the directory.
class DirectoryLock {
 public:
  // Waits for other runs, and says so; an Interruption on a signal.
  explicit DirectoryLock(const std::string& directory);

  int descriptor() const { return directory_.number(); }  // of the directory
  // False on network file systems, whose locks may hang or mean nothing.
  bool isHeld() const { return isHeld_; }

 private:
  void wait(const std::string& directory) const;

  Descriptor directory_;
  bool isHeld_;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_DIRECTORY_LOCK_H
