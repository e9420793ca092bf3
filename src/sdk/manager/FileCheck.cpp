// IRCalibrationManager: which calibration files of a camera are missing.
#include <kalvista/Cali.h>
#include <kalvista/IRCalibrationManager.h>
#include <kalvista/TextRoutines.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string_view>

#include "imgproc/CaliModel.h"
#include "imgproc/FirstMatch.h"
#include "sdk/places/ConfigPath.h"
#include "sdk/text/NoThrow.h"
#include "sdk/text/OpenForReading.h"

namespace ardo {

namespace {

using FileName = std::array<char, kPathLimit>;

// A named pipe in the place of a file counts as present, as everything that opens.
bool canBeOpened(const char* path) {
  const int descriptor = openForReading(path);
  if (descriptor < 0) return false;
  close(descriptor);
  return true;
}

bool isPresent(const char* dir, const char* name) {
  ConfigPath path;
  if (!path.form(dir, name, "")) return false;
  if (canBeOpened(path.text())) return true;
  path.makeDirectory();
  return false;
}

// Puts the file's name together; true when there is no such file.
bool isMissing(const char* dir, const char* base, const char* pattern, FileName& name) {
  tsnprintf(name.data(), name.size(), pattern, base);
  return !isPresent(dir, name.data());
}

// The names of missing files: how many characters they take, each with one for its separator, and a
// list of them if there is one.
class MissingFiles {
 public:
  MissingFiles() = default;
  MissingFiles(char* list, int size) : end_(list), room_(size > 0 ? size - 1 : 0) {
    if (size > 0) *list = '\0';
  }

  // The list ends ahead of a name that does not fit, and takes no more: files may have vanished
  // since it was counted.
  void add(std::string_view name, std::string_view separator) {
    const auto length = static_cast<int>(name.size()) + 1;
    length_ += length;
    if (length > room_) {
      room_ = 0;
      return;
    }
    append(name);
    append(separator.substr(0, static_cast<std::size_t>(room_)));
  }

  bool none() const { return length_ == 0; }

  // Of the list, with its terminator.
  int size() const { return none() ? 0 : length_ + 1; }

 private:
  void append(std::string_view text) {
    end_ = std::copy(text.begin(), text.end(), end_);
    *end_ = '\0';
    room_ -= static_cast<int>(text.size());
  }

  char* end_ = nullptr;
  int room_ = 0;
  int length_ = 0;
};

struct FilePatterns {
  const char* xml;
  const char* data;
  const char* curve;
  const char* separator;  // of the XML's name
};

constexpr const char* kSeparator = ";";
constexpr FilePatterns kPatterns{"Cali-%i.xml", "Cali-%s.dat", "Kennlinie-%s.prn", kSeparator};

// Checks the files of one calibration, record by record.
class CalibrationWalk {
 public:
  CalibrationWalk(const ConfigCali& calibration, int serial, const char* dir,
                  const FilePatterns& patterns, MissingFiles& missing)
      : calibration_(calibration),
        serial_(serial),
        dir_(dir),
        patterns_(patterns),
        missing_(missing) {}

  void checkAll() {
    cali::FirstOptics firstOptics;
    const OpticsList& list = *calibration_.opticsList;
    for (int i = 0; i < list.count; ++i) {
      const OpticsDef& optics = *list.items[i];
      checkOptics(optics, firstOptics.sameKeyAs(optics));
    }
  }

 private:
  void checkOptics(const OpticsDef& optics, const OpticsDef& firstOfKey) {
    cali::FirstRange firstRange;
    for (int i = 0; i < firstOfKey.rangeCount; ++i) {
      const TemperatureRange& range = *firstOfKey.ranges[i];
      const TemperatureRange* firstOfEnds = firstRange.sameKeyAs(range);
      const int count = firstOfEnds != nullptr ? firstOfEnds->framerateCount : 0;
      if (count <= 0) checkFiles(optics, range, 0);
      for (int k = 0; k < count; ++k) checkFiles(optics, range, *firstOfEnds->framerates[k]);
    }
  }

  void checkFiles(const OpticsDef& optics, const TemperatureRange& range, FR framerate) {
    FileName base{};
    calibration_.caliFilenameString(serial_, optics.FOV, optics.Text, range.TempLo, range.TempHi,
                                    framerate, base.data(), kPathLimit);
    checkFile(base.data(), patterns_.data);
    if (!optics.SamplePointCali) checkFile(base.data(), patterns_.curve);
  }

  void checkFile(const char* base, const char* pattern) {
    FileName name{};
    if (isMissing(dir_, base, pattern, name)) missing_.add(name.data(), kSeparator);
  }

  const ConfigCali& calibration_;
  int serial_;
  const char* dir_;
  const FilePatterns& patterns_;
  MissingFiles& missing_;
};

// One pass of the check.
MissingFiles findMissing(const char* dir, int serial, const FilePatterns& patterns,
                         MissingFiles missing) {
  ConfigCali& calibration = cali::instance();
  if (!calibration.isLoaded(serial) && calibration.load(dir, serial) != 0) {
    std::array<char, 20> name{};
    tsnprintf(name.data(), name.size(), patterns.xml, serial);
    missing.add(name.data(), patterns.separator);
  } else {
    CalibrationWalk(calibration, serial, dir, patterns, missing).checkAll();
  }
  return missing;
}

// Null when nothing is missing.
std::unique_ptr<char[]> listMissing(const char* dir, int serial) {
  for (;;) {
    const int size = findMissing(dir, serial, kPatterns, {}).size();
    if (size == 0) return nullptr;
    auto list = std::make_unique<char[]>(static_cast<std::size_t>(size));
    const MissingFiles listed = findMissing(dir, serial, kPatterns, MissingFiles(list.get(), size));
    if (listed.none()) return nullptr;
    // Otherwise files have vanished, or the XML has come and names others.
    if (listed.size() <= size) return list;
  }
}

}  // namespace

void _checkCaliFilesHelper(const char* dir, char* base, const char* pattern, char* list,
                           int* size) {
  FileName name{};
  if (base == nullptr || pattern == nullptr || size == nullptr ||
      !isMissing(dir, base, pattern, name)) {
    return;
  }
  const auto length = static_cast<int>(tstrlen(name.data())) + 1;
  if (list == nullptr) {
    *size += length;
  } else if (const auto used = *size > 0 ? static_cast<int>(tstrlen(list)) : 0;
             used + length < *size) {
    tstrcat(list, name.size(), name.data());
    tstrcat(list, 1, kSeparator);
  } else if (*size > 0) {
    *size = used + 1;
  }
}

bool IRCalibrationManager::checkCaliFiles(const char* dir, int serial, char* list, int* size,
                                          const char* xmlPattern, const char* dataPattern,
                                          const char* curvePattern, const char* separator) {
  if (size == nullptr || xmlPattern == nullptr || dataPattern == nullptr ||
      curvePattern == nullptr || separator == nullptr) {
    return false;
  }
  MissingFiles missing = list != nullptr ? MissingFiles(list, *size) : MissingFiles();
  if (list == nullptr) *size = 0;
  return withoutThrowing(false, [&] {
    missing = findMissing(dir, serial, {xmlPattern, dataPattern, curvePattern, separator}, missing);
    if (list == nullptr) *size = missing.size();
    return missing.none();
  });
}

char* IRCalibrationManager::checkCalibration(unsigned long serial) {
  const int errorBefore = errno;
  std::unique_ptr<char[]> list;
  const bool checked = withoutThrowing(false, [&] {
    list = listMissing(_calibrationDir, static_cast<int>(serial));
    return true;
  });
  // Null alone would say that nothing is missing.
  errno = checked ? errorBefore : ENOMEM;
  return list.release();
}

}  // namespace ardo
