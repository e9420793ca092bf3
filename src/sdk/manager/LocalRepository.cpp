// IRCalibrationManager: calibration files from a folder, and the look at the routing table.
#include <kalvista/IRCalibrationManager.h>

#include <cerrno>
#include <cstdio>
#include <memory>

#include "sdk/text/NoThrow.h"

namespace ardo {

namespace {

// The exit status tells nothing: only the files count.
bool copyFiles(unsigned long serial, const std::string& repoPath, const std::string& directory) {
  const std::string number = std::to_string(serial);
  const std::string copy = "* -exec cp \"{}\" " + directory + " \\;";
  const std::string command = "find " + repoPath + " -name Cali-" + number + copy +
                              " -o -name Kennlinie-" + number + copy + " 2> /dev/null";
  std::puts(command.c_str());
  std::fflush(stdout);

  std::FILE* pipe = popen(command.c_str(), "re");
  if (pipe == nullptr) return false;
  pclose(pipe);
  return true;
}

}  // namespace

bool IRCalibrationManager::copyCalibrationFromLocalRepo(unsigned long serial,
                                                        std::string repoPath) {
  if (!withoutThrowing(false, [&] { return copyFiles(serial, repoPath, _calibrationDir); })) {
    return false;
  }
  errno = 0;
  const std::unique_ptr<char[]> missing(checkCalibration(serial));
  return missing == nullptr && errno == 0;
}

bool IRCalibrationManager::isOnlineCalibrationRepoAccessible() {
  std::FILE* pipe = popen("/sbin/route -n | grep -c '^0\\.0\\.0\\.0'", "re");
  if (pipe == nullptr) return false;
  unsigned int defaultRoutes = 0;
  const int numbersRead = std::fscanf(pipe, "%u", &defaultRoutes);
  pclose(pipe);
  return numbersRead == 1 && defaultRoutes == 1;
}

}  // namespace ardo
