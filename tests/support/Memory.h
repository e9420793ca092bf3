#ifndef KALVISTA_TESTS_SUPPORT_MEMORY_H
#define KALVISTA_TESTS_SUPPORT_MEMORY_H

#include <dlfcn.h>
#include <sys/resource.h>

#include "support/Files.h"

namespace support {

// Beyond what the process has already. The sanitizers take memory of their own.
inline void limitMemory(rlim_t more) {
  rlimit limit{};
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = std::stoul(readFile("/proc/self/statm")) * 4096 + more;
  if (dlsym(RTLD_DEFAULT, "__asan_init") == nullptr) setrlimit(RLIMIT_AS, &limit);
}

}  // namespace support

#endif  // KALVISTA_TESTS_SUPPORT_MEMORY_H
