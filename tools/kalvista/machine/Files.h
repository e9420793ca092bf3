// Files that appear whole or not at all.
#ifndef KALVISTA_TOOL_FILES_H
#define KALVISTA_TOOL_FILES_H

#include <sys/types.h>

#include <string>
#include <string_view>
#include <utility>

namespace tool {

// A file descriptor, closed at the end; -1 for none.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(other.number_) { other.number_ = -1; }
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }
  bool isOpen() const { return number_ >= 0; }
  bool close();  // false when the system reports a delayed write error

 private:
  int number_;
};

// The path that leads to an open file, whatever has become of its name.
std::string pathOf(const Descriptor& file);

std::string readFile(const std::string& path);  // empty when it cannot be read

bool isDiskFull(int reason);  // by the error number

// Of the hidden names of what lies in a user's folder for a time only.
constexpr std::string_view kWorkPrefix = ".kalvista-work-";

constexpr mode_t kAllModes = 07777;
constexpr mode_t kOrdinaryFileMode = 0666;  // less the user's mask
mode_t userMask();

// What a user names for standard input, or output, in place of a file.
constexpr std::string_view kStandardStream = "-";
// A Failure when it breaks, or is longer than any document.
std::string readStandardInput();

// A text that is read by its path. It lies in memory, and goes with the object.
class MemoryFile {
 public:
  explicit MemoryFile(std::string_view content);
  std::string path() const { return pathOf(file_); }

 private:
  Descriptor file_;
};

// Writes to a file without a name, forces it to the disk, and only then gives it its name: a run
// that is killed leaves the target as it was, and nothing beside it. Where the file system knows no
// such files, it has a hidden name meanwhile that cannot be guessed. With `replace` false a file
// that exists meanwhile stays.
void writeFileWhole(const std::string& path, std::string_view content, bool replace);

}  // namespace tool

#endif  // KALVISTA_TOOL_FILES_H
