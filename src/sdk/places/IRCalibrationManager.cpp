// The manager's single instance, its two directories and the path builder.
#include <kalvista/FileSystem.h>
#include <kalvista/IRCalibrationManager.h>
#include <kalvista/TextRoutines.h>

#include <cstring>
#include <memory>
#include <new>

#include "sdk/places/ConfigPath.h"

namespace ardo {

namespace {

constexpr const char* kDefaultCalibrationDir = "/usr/share/libkalvista/cali";
constexpr const char* kDefaultFormatsDir = "/usr/share/libkalvista";

void keep(char* buffer, const char* text) {
  if (buffer != nullptr && text != nullptr) tstrcpy(buffer, kPathLimit, text);
}

// One character more than is ever copied: a text of the full length keeps a terminator. Null
// without memory for it.
char* newDirectoryText(const char* text) {
  std::unique_ptr<char[]> buffer(new (std::nothrow) char[kPathLimit + 1]());
  keep(buffer.get(), text);
  return buffer.release();
}

char* append(char* end, unsigned long bound, const char* piece) {
  const unsigned long length = strnlen(piece, bound);
  std::memcpy(end, piece, length);
  end[length] = '\0';
  return end + length;
}

// Puts the directory into the path and returns its end, null when the working directory is asked
// for and cannot be had.
char* startWithDirectory(char* path, const char* dir, short size) {
  const auto bound = static_cast<unsigned long>(size);
  if (*dir != '\0') return append(path, bound, dir);
  if (getFolderPath(path, size) == nullptr) return nullptr;
  return append(append(path + std::strlen(path), bound, "/"), bound, "Imager");
}

void appendFile(char* end, short size, const char* name, const char* ext) {
  const auto bound = static_cast<unsigned long>(size);
  append(append(append(end, bound, "/"), bound, name), bound, ext);
}

}  // namespace

IRCalibrationManager* IRCalibrationManager::_this = nullptr;

IRCalibrationManager* IRCalibrationManager::getInstance() {
  if (_this == nullptr) {
    std::unique_ptr<IRCalibrationManager> made(new (std::nothrow) IRCalibrationManager);
    const bool isWhole = made != nullptr && made->_calibrationDir != nullptr &&
                         made->_formatsDir != nullptr && made->_optics != nullptr;
    if (isWhole) _this = made.release();
  }
  return _this;
}

IRCalibrationManager::IRCalibrationManager()
    : _calibrationDir(newDirectoryText(kDefaultCalibrationDir)),
      _formatsDir(newDirectoryText(kDefaultFormatsDir)),
      _optics(new (std::nothrow) std::vector<IROptics>) {}

IRCalibrationManager::~IRCalibrationManager() {
  delete _optics;
  delete[] _calibrationDir;
  delete[] _formatsDir;
  _this = nullptr;
}

void IRCalibrationManager::setCalibrationDir(const char* dir) { keep(_calibrationDir, dir); }

void IRCalibrationManager::setFormatsDir(const char* dir) { keep(_formatsDir, dir); }

char* IRCalibrationManager::getCalibrationDir() const { return _calibrationDir; }

char* IRCalibrationManager::getFormatsDir() const { return _formatsDir; }

bool IRCalibrationManager::createConfigFilepath(char* path, const char* dir, short size,
                                                const char* name, const char* ext) {
  if (path == nullptr || dir == nullptr || name == nullptr || ext == nullptr || size < 1) {
    return false;
  }
  char* end = startWithDirectory(path, dir, size);
  if (end == nullptr) return false;
  // Usually the directory exists; when it cannot be made, its files are found missing.
  mkDir(path);
  appendFile(end, size, name, ext);
  return true;
}

bool ConfigPath::form(const char* dir, const char* name, const char* ext) {
  const bool given = dir != nullptr && name != nullptr;
  const char* end = given ? startWithDirectory(path_.data(), dir, kPathLimit) : nullptr;
  if (end == nullptr) return false;
  directoryLength_ = static_cast<std::size_t>(end - path_.data());
  appendFile(path_.data() + directoryLength_, kPathLimit, name, ext);
  // A name that leads out of the directory is only found when the directory is there.
  if (std::strchr(name, '/') != nullptr) makeDirectory();
  return true;
}

void ConfigPath::makeDirectory() {
  char& separator = path_[directoryLength_];
  separator = '\0';
  mkDir(path_.data());
  separator = '/';
}

}  // namespace ardo
