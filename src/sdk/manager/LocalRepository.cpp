// IRCalibrationManager: calibration files from a folder, and the look at the routing table.
#include <kalvista/IRCalibrationManager.h>

#include <cstdio>
#include <memory>

namespace ardo {

bool IRCalibrationManager::copyCalibrationFromLocalRepo(unsigned long serial,
                                                        std::string repoPath) {
  const std::string number = std::to_string(serial);
  const std::string copy = "* -exec cp \"{}\" " + std::string(_calibrationDir) + " \\;";
  const std::string command = "find " + repoPath + " -name Cali-" + number + copy +
                              " -o -name Kennlinie-" + number + copy + " 2> /dev/null";
  std::puts(command.c_str());
  std::fflush(stdout);

  std::FILE* pipe = popen(command.c_str(), "re");
  if (pipe == nullptr) return false;
  pclose(pipe);
  // The exit status tells nothing: only the files count.
  const std::unique_ptr<char[]> missing(checkCalibration(serial));
  return missing == nullptr || missing[0] == '\0';
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
