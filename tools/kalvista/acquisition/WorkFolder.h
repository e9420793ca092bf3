// The folder in which files arrive before they are known to be whole, and their way into place.
#ifndef KALVISTA_TOOL_WORK_FOLDER_H
#define KALVISTA_TOOL_WORK_FOLDER_H

#include <string>
#include <vector>

#include "acquisition/DirectoryLock.h"
#include "machine/Files.h"
#include "machine/Interruption.h"

namespace tool {

// A hidden folder inside a directory, so that a file gets into place by renaming alone. While it
// lives, no other run works in the directory, and signals wait. It goes with the object; what a
// killed run left there goes with the next one.
class WorkFolder {
 public:
  explicit WorkFolder(const std::string& directory);
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string pathOf(const std::string& name) const { return path_ + "/" + name; }

  // Moves files to the directory, or to one of those in it, in the order of their names here: all
  // are on the disk before the first one moves, and when one cannot be moved, none is.
  void place(const std::vector<std::string>& names) { place(names, directory_); }
  void place(const std::vector<std::string>& names, const std::string& target);

 private:
  SignalHold signals_;
  std::string directory_;
  DirectoryLock lock_;
  std::string path_;
};

// A new file in a work folder, which nobody else has made; without a number, and with errno set,
// when it cannot be.
Descriptor createFile(const std::string& path);

}  // namespace tool

#endif  // KALVISTA_TOOL_WORK_FOLDER_H
