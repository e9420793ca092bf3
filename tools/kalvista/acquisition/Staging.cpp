#include "acquisition/Staging.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "acquisition/Wholeness.h"
#include "answer/Console.h"
#include "answer/Failure.h"
#include "machine/Files.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kOwnerOnly = 0700;

[[noreturn]] void failToWrite(const std::string& what) {
  throw Failure(ExitCode::CouldNot, "the " + what + " cannot be written: " + std::strerror(errno) +
                                        "; check free space, run as a user who may write there, or "
                                        "give another one with --calibration-dir");
}

}  // namespace

Staging::Staging(const std::string& calibrationDir, unsigned long serial)
    : calibrationDir_(calibrationDir),
      serial_(serial),
      path_(workName(calibrationDir, "staging-" + std::to_string(serial))) {
  clearLeftovers(calibrationDir);
  std::error_code error;
  fs::remove_all(path_, error);  // of an earlier process with our number
  if (mkdir(path_.c_str(), kOwnerOnly) != 0) {
    failToWrite("calibration directory " + calibrationDir);
  }
}

Staging::~Staging() {
  std::error_code error;
  fs::remove_all(path_, error);
}

std::uintmax_t Staging::bytes() const {
  std::uintmax_t sum = 0;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(path_, error)) {
    const std::uintmax_t size = entry.file_size(error);
    if (!error) sum += size;
  }
  return sum;
}

std::vector<std::string> Staging::install(const std::vector<std::string>& names) {
  std::vector<std::string> installed;
  for (const std::string& name : names) {
    if (access(pathOf(name).c_str(), F_OK) == 0 && installOne(name)) installed.push_back(name);
  }
  return installed;
}

bool Staging::installOne(const std::string& name) {
  const std::string arrived = pathOf(name);
  const std::string target = calibrationDir_ + "/" + name;
  const std::string fault = whatIsWrongWith(arrived, serial_);
  if (!fault.empty()) {
    warn("the file " + name + " that arrived " + fault + "; it is thrown away");
    std::remove(arrived.c_str());
    return false;
  }
  if (readFile(arrived) == readFile(target)) return false;
  letAllRead(arrived);  // applications run as other users than the one who sets a camera up
  if (!flushToDisk(arrived) || std::rename(arrived.c_str(), target.c_str()) != 0) {
    failToWrite("file " + target);
  }
  return true;
}

}  // namespace tool
