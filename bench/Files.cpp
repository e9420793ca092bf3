#include "Files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace bench {
namespace {

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

std::size_t readAll(int file, char* bytes, std::size_t size) {
  std::size_t count = 0;
  while (count < size) {
    const ssize_t got = read(file, bytes + count, size - count);
    if (got <= 0) break;
    count += static_cast<std::size_t>(got);
  }
  return count;
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "kalvista-bench-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) fail("cannot make the folder " + name);
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

FileContent readFile(const char* path) {
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  if (file < 0) fail(std::string("cannot open ") + path);
  struct stat status {};
  fstat(file, &status);
  FileContent content;
  content.size = static_cast<std::size_t>(status.st_size);
  content.bytes.reset(new char[content.size + 1]);  // not zeroed, as make_unique would
  content.size = readAll(file, content.bytes.get(), content.size);
  content.bytes[content.size] = '\0';
  close(file);
  return content;
}

void writeFile(const std::filesystem::path& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  require(file.good(), "cannot write " + path.string());
}

void require(bool condition, const std::string& what) {
  if (!condition) throw std::runtime_error(what);
}

}  // namespace bench
