#ifndef KALVISTA_TESTS_SUPPORT_MEMORY_H
#define KALVISTA_TESTS_SUPPORT_MEMORY_H

#include <dlfcn.h>
#include <sys/resource.h>
#include <unistd.h>

#include "support/Files.h"

namespace support {

// The sanitizers take memory of their own.
inline bool canLimitMemory() { return dlsym(RTLD_DEFAULT, "__asan_init") == nullptr; }

// Beyond what the process has already.
inline void limitMemory(rlim_t more) {
  rlimit limit{};
  getrlimit(RLIMIT_AS, &limit);
  const auto pageSize = static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
  limit.rlim_cur = std::stoul(readFile("/proc/self/statm")) * pageSize + more;
  if (canLimitMemory()) setrlimit(RLIMIT_AS, &limit);
}

}  // namespace support

#endif  // KALVISTA_TESTS_SUPPORT_MEMORY_H
