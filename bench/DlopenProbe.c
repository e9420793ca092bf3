/* Prints the nanoseconds of processor time that loading a shared library takes in a process that
 * has loaded no other but libc: written in C so that the C++ run-time is not there already. */
#include <dlfcn.h>
#include <stdio.h>
#include <time.h>

static long long now(void) {
  struct timespec time;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return time.tv_sec * 1000000000LL + time.tv_nsec;
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const long long start = now();
  const void* library = dlopen(argv[1], RTLD_NOW);
  const long long end = now();
  if (library == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  printf("%lld\n", end - start);
  return 0;
}
