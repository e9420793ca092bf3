// IRCalibrationManager: which calibration files of a camera are missing.
#include <fcntl.h>
#include <kalvista/Cali.h>
#include <kalvista/IRCalibrationManager.h>
#include <kalvista/TextRoutines.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <memory>

#include "sdk/places/ConfigPath.h"

namespace ardo {

namespace {

using FileName = std::array<char, kPathLimit>;

// Not blocking: a named pipe in the place of a file counts as present, as everything that opens.
bool canBeOpened(const char* path) {
  const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
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

// The list ends ahead of a name that does not fit with its separator, and takes no more: files may
// have vanished since it was counted.
void appendToList(char* list, int* size, const char* name, const char* separator) {
  if (*size < 1) return;
  const std::size_t used = std::strlen(list);
  if (used + std::strlen(name) + std::strlen(separator) >= static_cast<std::size_t>(*size)) {
    *size = static_cast<int>(used) + 1;
    return;
  }
  tstrcat(list, static_cast<unsigned long>(*size), name);
  tstrcat(list, static_cast<unsigned long>(*size), separator);
}

struct FilePatterns {
  const char* data;
  const char* curve;
};

// Checks the files of one calibration, record by record.
class CalibrationWalk {
 public:
  CalibrationWalk(ConfigCali& calibration, int serial, const char* dir, FilePatterns patterns,
                  char* list, int* size)
      : calibration_(calibration),
        serial_(serial),
        dir_(dir),
        patterns_(patterns),
        list_(list),
        size_(size) {}

  void checkAll() {
    for (int i = 0; i < calibration_.getOpticsCount(); ++i) {
      const std::unique_ptr<OPTICS> optics(calibration_.getOptics(i));
      needsCurve_ = !calibration_.opticsList->items[i]->SamplePointCali;
      for (int j = 0; j < calibration_.getTempRangeCount(optics.get()); ++j) {
        const std::unique_ptr<Range> range(calibration_.getTempRange(optics.get(), j));
        checkRange(*optics, *range);
      }
    }
  }

 private:
  void checkRange(OPTICS& optics, Range& range) {
    const int count = calibration_.getFramerateCount(&optics, &range);
    if (count <= 0) checkFiles(optics, range, 0);
    for (int k = 0; k < count; ++k) {
      checkFiles(optics, range, calibration_.getFramerate(&optics, &range, k));
    }
  }

  void checkFiles(OPTICS& optics, Range& range, unsigned short framerate) {
    FileName base{};
    calibration_.caliFilenameString(serial_, optics.FOV, optics.Text, &range, framerate,
                                    base.data(), kPathLimit);
    _checkCaliFilesHelper(dir_, base.data(), patterns_.data, list_, size_);
    if (needsCurve_) _checkCaliFilesHelper(dir_, base.data(), patterns_.curve, list_, size_);
  }

  ConfigCali& calibration_;
  int serial_;
  const char* dir_;
  FilePatterns patterns_;
  char* list_;
  int* size_;
  bool needsCurve_ = true;
};

}  // namespace

void _checkCaliFilesHelper(const char* dir, char* base, const char* pattern, char* list,
                           int* size) {
  FileName name{};
  tsnprintf(name.data(), name.size(), pattern, base);
  if (isPresent(dir, name.data())) return;
  if (list != nullptr) {
    appendToList(list, size, name.data(), ";");
  } else {
    *size += static_cast<int>(tstrlen(name.data())) + 1;
  }
}

bool IRCalibrationManager::checkCaliFiles(const char* dir, int serial, char* list, int* size,
                                          const char* xmlPattern, const char* dataPattern,
                                          const char* curvePattern, const char* separator) {
  const bool counting = list == nullptr;
  int capacity = counting ? 0 : *size;
  if (counting) {
    *size = 0;
  } else if (*size > 0) {
    *list = '\0';
  }

  ConfigCali& calibration = *ConfigCali::getInstance();
  if (!calibration.isLoaded(serial) && calibration.load(dir, serial) != 0) {
    std::array<char, 20> name{};
    tsnprintf(name.data(), name.size(), xmlPattern, serial);
    if (counting) {
      *size = static_cast<int>(tstrlen(name.data())) + 2;
    } else {
      appendToList(list, &capacity, name.data(), separator);
    }
    return false;
  }

  CalibrationWalk(calibration, serial, dir, {dataPattern, curvePattern}, list,
                  counting ? size : &capacity)
      .checkAll();
  if (!counting) return *size < 1 || *list == '\0';
  if (*size == 0) return true;
  ++*size;
  return false;
}

char* IRCalibrationManager::checkCalibration(unsigned long serial) {
  const auto check = [this, number = static_cast<int>(serial)](char* list, int* size) {
    checkCaliFiles(_calibrationDir, number, list, size, "Cali-%i.xml", "Cali-%s.dat",
                   "Kennlinie-%s.prn", ";");
  };
  int size = 0;
  check(nullptr, &size);
  if (size == 0) return nullptr;
  auto list = std::make_unique<char[]>(static_cast<std::size_t>(size));
  check(list.get(), &size);
  return list.release();
}

}  // namespace ardo
