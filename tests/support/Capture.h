// What a piece of code writes to standard output, to standard error, and to the library's log.
#ifndef KALVISTA_TESTS_SUPPORT_CAPTURE_H
#define KALVISTA_TESTS_SUPPORT_CAPTURE_H

#include <fcntl.h>
#include <kalvista/IRLogger.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include "support/Files.h"

namespace support {

// Child processes are captured as well. Nothing is flushed at the end: what is kept back then would
// come out of order at a caller.
template <typename Body>
std::string captured(int descriptor, Body body) {
  const int memory = memfd_create("capture", MFD_CLOEXEC);
  const int former = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
  std::fflush(nullptr);
  dup2(memory, descriptor);
  body();
  dup2(former, descriptor);
  std::string text = readFile("/proc/self/fd/" + std::to_string(memory));
  close(former);
  close(memory);
  return text;
}

// What a shell command prints.
inline std::string outputOf(const std::string& command) {
  return captured(STDOUT_FILENO, [&command] { return std::system(command.c_str()); });
}

// The log lines of all levels, without their changing times: "DEBUG [SimpleXML:12] :text".
template <typename Body>
std::vector<std::string> logOf(Body body) {
  const std::string text = captured(STDERR_FILENO, [&body] {
    ardo::IRLogger::setVerbosity(ardo::IRLOGGER_DEBUG, ardo::IRLOGGER_OFF, nullptr);
    body();
  });
  return linesOf(std::regex_replace(text, std::regex("\\] @ -?[0-9.e+-]+s :"), "] :"));
}

}  // namespace support

#endif  // KALVISTA_TESTS_SUPPORT_CAPTURE_H
