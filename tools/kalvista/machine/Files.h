// Files that appear whole or not at all, and what killed runs left behind.
#ifndef KALVISTA_TOOL_FILES_H
#define KALVISTA_TOOL_FILES_H

#include <string>
#include <string_view>

namespace tool {

// A file descriptor, closed at the end; -1 for none.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }
  bool close();  // false when the system reports a delayed write error

 private:
  int number_;
};

// The path that leads to an open file, whatever has become of its name.
std::string pathOf(const Descriptor& file);

std::string readFile(const std::string& path);  // empty when it cannot be read

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

// Forces a file that is to be renamed to the disk; false with errno set.
bool flushToDisk(const std::string& path);

// Lets all users read a file, as far as this user's mask does not keep them from it.
void letAllRead(const std::string& path);

// Writes to a file without a name, forces it to the disk, and only then gives it its name: a run
// that is killed leaves the target as it was, and nothing beside it. Where the file system knows no
// such files, it has a hidden name meanwhile that cannot be guessed. With `replace` false a file
// that exists meanwhile stays.
void writeFileWhole(const std::string& path, std::string_view content, bool replace);

// Hidden names in which a running process keeps what is not whole yet, such as
// "<directory>/.kalvista-staging-1234-<process id>".
std::string workName(const std::string& directory, const std::string& purpose);
// Removes what has such a name and whose process has ended.
void clearLeftovers(const std::string& directory);

}  // namespace tool

#endif  // KALVISTA_TOOL_FILES_H
