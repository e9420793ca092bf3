// The manager's single instance, its two directories and the path builder.
#include <kalvista/FileSystem.h>
#include <kalvista/IRCalibrationManager.h>
#include <kalvista/TextRoutines.h>

#include <cstring>
#include <memory>

#include "sdk/PathBuffer.h"

namespace ardo {

namespace {

constexpr const char* kDefaultCalibrationDir = "/usr/share/libkalvista/cali";
constexpr const char* kDefaultFormatsDir = "/usr/share/libkalvista";

// One character more than is ever copied: a text of the full length keeps a terminator.
char* newDirectoryText(const char* text) {
  auto buffer = std::make_unique<char[]>(kPathLimit + 1);
  tstrcpy(buffer.get(), kPathLimit, text);
  return buffer.release();
}

char* append(char* end, unsigned long bound, const char* piece) {
  const unsigned long length = strnlen(piece, bound);
  std::memcpy(end, piece, length);
  end[length] = '\0';
  return end + length;
}

}  // namespace

IRCalibrationManager* IRCalibrationManager::_this = nullptr;

IRCalibrationManager* IRCalibrationManager::getInstance() {
  if (_this == nullptr) _this = new IRCalibrationManager;
  return _this;
}

IRCalibrationManager::IRCalibrationManager()
    : _calibrationDir(newDirectoryText(kDefaultCalibrationDir)),
      _formatsDir(newDirectoryText(kDefaultFormatsDir)),
      _optics(std::make_unique<std::vector<IROptics>>().release()) {}

IRCalibrationManager::~IRCalibrationManager() {
  delete _optics;
  delete[] _calibrationDir;
  delete[] _formatsDir;
  _this = nullptr;
}

void IRCalibrationManager::setCalibrationDir(const char* dir) {
  if (dir != nullptr) tstrcpy(_calibrationDir, kPathLimit, dir);
}

void IRCalibrationManager::setFormatsDir(const char* dir) {
  if (dir != nullptr) tstrcpy(_formatsDir, kPathLimit, dir);
}

char* IRCalibrationManager::getCalibrationDir() { return _calibrationDir; }

char* IRCalibrationManager::getFormatsDir() { return _formatsDir; }

bool IRCalibrationManager::createConfigFilepath(char* path, const char* dir, short size,
                                                const char* name, const char* ext) {
  if (path == nullptr || dir == nullptr || name == nullptr || ext == nullptr || size < 1) {
    return false;
  }
  const auto bound = static_cast<unsigned long>(size);
  char* end = path;
  if (*dir != '\0') {
    end = append(end, bound, dir);
  } else {
    if (getFolderPath(path, size) == nullptr) return false;
    end = append(path + std::strlen(path), bound, "/");
    end = append(end, bound, "Imager");
  }
  // Usually the directory exists; when it cannot be made, its files are found missing.
  mkDir(path);
  end = append(end, bound, "/");
  end = append(end, bound, name);
  append(end, bound, ext);
  return true;
}

}  // namespace ardo
