#include <kalvista/FileSystem.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace ardo {

int mkDir(const char* path) {
  if (path != nullptr) return mkdir(path, 0777);
  errno = EFAULT;  // as the system says of a path that it cannot read
  return -1;
}

char* getFolderPath(char* buf, short size) {
  if (buf == nullptr || size < 1) {
    errno = EINVAL;
    return nullptr;
  }
  return getcwd(buf, 2 * static_cast<std::size_t>(size) + 1);
}

}  // namespace ardo
