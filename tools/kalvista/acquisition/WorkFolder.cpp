#include "acquisition/WorkFolder.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "answer/Console.h"
#include "answer/Failure.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kMark = ".made-by-kalvista";
constexpr mode_t kOwnerOnly = 0600;

[[noreturn]] void failToWrite(const std::string& what, int reason) {
  throw Failure(ExitCode::CouldNot,
                what + " cannot be written: " + std::strerror(reason) + "; " +
                    (isDiskFull(reason) ? "make room there" : "run as a user who may write there") +
                    ", or give another directory");
}

// What stands in the mark of a folder: a copy of the folder has another number than the original.
std::string markOf(const struct stat& folder) {
  return "A work folder of kalvista, number " + std::to_string(folder.st_ino) + "\n";
}

bool isOurs(const std::string& path) {
  struct stat folder {};
  struct stat mark {};
  const std::string markPath = path + "/" + kMark;
  return lstat(path.c_str(), &folder) == 0 && S_ISDIR(folder.st_mode) &&
         folder.st_uid == geteuid() && lstat(markPath.c_str(), &mark) == 0 &&
         S_ISREG(mark.st_mode) && mark.st_uid == geteuid() && readFile(markPath) == markOf(folder);
}

// The mark goes last, so that what is left of an interrupted removal can still be told. A work
// folder holds no folders: one that does was not filled by us, and stays.
void removeFolder(const std::string& path) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(path, error)) {
    if (entry.path().filename() != kMark) unlink(entry.path().c_str());
  }
  unlink((path + "/" + kMark).c_str());
  rmdir(path.c_str());
}

// No other run lives while the lock is held.
void clearLeftovers(const std::string& directory) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory, error)) {
    const std::string name = entry.path().filename().string();
    if (name.compare(0, kWorkPrefix.size(), kWorkPrefix) != 0) continue;
    if (isOurs(entry.path().string())) removeFolder(entry.path().string());
  }
}

std::string makeFolder(const std::string& directory) {
  std::string path = directory + "/" + std::string(kWorkPrefix) + "XXXXXX";
  if (mkdtemp(path.data()) == nullptr) failToWrite("the directory " + directory, errno);
  struct stat status {};
  const Descriptor mark = createFile(path + "/" + kMark);
  if (stat(path.c_str(), &status) == 0 && writeAll(mark.number(), markOf(status))) return path;
  const int reason = errno;
  removeFolder(path);
  failToWrite("the directory " + directory, reason);
}

// Applications run as other users than the one who sets a camera up.
void letAllRead(const std::string& path) {
  chmod(path.c_str(), kOrdinaryFileMode & ~userMask() & kAllModes);
}

void flushToDisk(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isOpen() || fsync(file.number()) != 0) failToWrite("the file " + path, errno);
}

// Many files go in one go with whatever else the file system has to write, since a disk takes its
// time for each single one.
void flushAllToDisk(const WorkFolder& work, const std::vector<std::string>& names) {
  const Descriptor folder(open(work.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (names.size() > 1 && syncfs(folder.number()) == 0) return;
  for (const std::string& name : names) {
    throwIfInterrupted();
    flushToDisk(work.pathOf(name));
  }
}

// Leaves the former file, if there is one, under the name of the new one, for the way back. False
// with errno set.
bool swapIntoPlace(const std::string& from, const std::string& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_EXCHANGE) == 0) return true;
  return (errno == ENOENT || errno == EINVAL || errno == ENOSYS) &&
         std::rename(from.c_str(), to.c_str()) == 0;
}

}  // namespace

WorkFolder::WorkFolder(const std::string& directory) : directory_(directory), lock_(directory) {
  if (lock_.isHeld()) clearLeftovers(directory);
  path_ = makeFolder(directory);
}

WorkFolder::~WorkFolder() { removeFolder(path_); }

void WorkFolder::place(const std::vector<std::string>& names, const std::string& target) {
  for (const std::string& name : names) letAllRead(pathOf(name));
  flushAllToDisk(*this, names);
  throwIfInterrupted();
  for (auto name = names.begin(); name != names.end(); ++name) {
    const std::string place = target + "/" + *name;
    if (swapIntoPlace(pathOf(*name), place)) continue;
    const int reason = errno;
    while (name != names.begin()) {
      --name;
      const std::string placed = target + "/" + *name;
      if (!swapIntoPlace(pathOf(*name), placed)) std::rename(placed.c_str(), pathOf(*name).c_str());
    }
    failToWrite("the file " + place, reason);
  }
  const Descriptor directory(open(target.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  fsync(directory.number());
}

Descriptor createFile(const std::string& path) {
  return Descriptor(
      open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kOwnerOnly));
}

}  // namespace tool
