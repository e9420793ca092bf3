// The files that the benchmark works on.
#ifndef KALVISTA_BENCH_FILES_H
#define KALVISTA_BENCH_FILES_H

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace bench {

// A folder of its own below the system's one for temporary files; goes with all its content.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

struct FileContent {
  std::unique_ptr<char[]> bytes;  // as many as `size` and a terminating zero
  std::size_t size = 0;
};

// Reads a whole file with the fewest system calls and copies.
FileContent readFile(const char* path);

void writeFile(const std::filesystem::path& path, const std::string& text);

// Throws when a condition of a fair comparison does not hold.
void require(bool condition, const std::string& what);

}  // namespace bench

#endif  // KALVISTA_BENCH_FILES_H
