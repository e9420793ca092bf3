#include "acquisition/Mending.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>

#include "camera/Calibration.h"
#include "machine/Files.h"

namespace tool {
namespace {

constexpr mode_t kReadableByAll = 0444;

// A link, and a file that has another name elsewhere, may be someone's trap. True when it changed.
bool letAllReadOwn(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  fstat(file.number(), &status);
  if (!S_ISREG(status.st_mode) || status.st_uid != geteuid() || status.st_nlink != 1) return false;
  const mode_t wanted = (status.st_mode | (kReadableByAll & ~userMask())) & kAllModes;
  return wanted != (status.st_mode & kAllModes) && chmod(pathOf(file).c_str(), wanted) == 0;
}

}  // namespace

std::vector<std::string> letAllReadCalibration(const std::string& directory, unsigned long serial) {
  std::vector<std::string> mended;
  std::set<std::string> seen;
  // Once the XML file can be read, it names the others.
  for (int pass = 0; pass < 2; ++pass) {
    for (const CalibrationFile& file : lookAtCalibration(directory, serial).files) {
      if (seen.insert(file.name).second && letAllReadOwn(file.path)) mended.push_back(file.name);
    }
  }
  return mended;
}

}  // namespace tool
