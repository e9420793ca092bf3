// Paths of files in the directories that the manager keeps.
#ifndef KALVISTA_SDK_CONFIG_PATH_H
#define KALVISTA_SDK_CONFIG_PATH_H

#include <array>
#include <cstddef>

namespace ardo {

// Most characters of a directory, a file name or an extension.
constexpr short kPathLimit = 260;

// The path that the manager's path builder forms, in a buffer of its own.
class ConfigPath {
 public:
  // False when the working directory is asked for and cannot be had, or a pointer is null. The path
  // is empty then.
  bool form(const char* dir, const char* name, const char* ext);

  const char* text() const { return path_.data(); }

  // Makes the directory of the path if it does not exist. Whoever could open the file knows that
  // it does.
  void makeDirectory();

 private:
  static constexpr std::size_t kPieceSize = kPathLimit;
  static constexpr std::size_t kLongestWorkingDirectory = 2 * kPieceSize;

  // Directory, separator, name, extension and terminator: the pieces are bounded one by one, so
  // that this much is the most that can come together.
  std::array<char, kLongestWorkingDirectory + sizeof("/Imager") + 2 * kPieceSize + 2> path_{};
  std::size_t directoryLength_ = 0;
};

}  // namespace ardo

#endif  // KALVISTA_SDK_CONFIG_PATH_H
