// Compiled with options of its own; see CMakeLists.txt.
#include "Floors.h"

#include <cstring>

namespace bench {

std::size_t countLines(const FileContent& file) {
  const char* const end = file.bytes.get() + file.size;
  const auto next = [end](const char* from) {
    return static_cast<const char*>(std::memchr(from, '\n', static_cast<std::size_t>(end - from)));
  };
  std::size_t count = 0;
  for (const char* at = next(file.bytes.get()); at != nullptr; at = next(at + 1)) ++count;
  return count;
}

std::size_t sumBytes(const FileContent& file) {
  std::size_t sum = 0;
  for (std::size_t i = 0; i < file.size; ++i) sum += static_cast<unsigned char>(file.bytes[i]);
  return sum;
}

}  // namespace bench
