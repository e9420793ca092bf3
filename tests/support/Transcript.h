// Transcripts: text files of calls and what they give, a line each:
//   command argument | argument => result
// "run" is a shell command, which gives what it prints.
// The result goes on in lines that begin with ">"; the log lines of the call are its last lines,
// but for a command behind "~". "null" is a null pointer; "\n", "\r", "\0", "\\" and "\B" stand for
// these bytes and for the byte-order mark, "\L" for 4095 letters, "\U" for the documentation's
// address, "\e" for nothing.
#ifndef KALVISTA_TESTS_SUPPORT_TRANSCRIPT_H
#define KALVISTA_TESTS_SUPPORT_TRANSCRIPT_H

#include <gmock/gmock.h>
#include <kalvista/kalvista.h>

#include <cstring>
#include <functional>
#include <map>
#include <type_traits>

#include "support/Capture.h"
#include "support/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace support;

constexpr const char* kSample = SAMPLE_REPOSITORY "/12/1234/Califiles SN12345678";

// Each case works in an empty folder.
class InFolder : public testing::Test {
 protected:
  InFolder() { fs::current_path(folder_.path()); }

  TemporaryFolder folder_;
};

// Converts to what a call takes; keys are written "33 macro" and "-20 100".
struct Argument {
  std::string text;
  OPTICS optics{};
  Range range{};

  operator char*() { return text == "null" ? nullptr : text.data(); }
  operator OPTICS*() {
    char* const blank = std::strchr(text.data(), ' ');
    optics = {std::atoi(text.c_str()), blank != nullptr ? blank + 1 : nullptr};
    return text == "null" ? nullptr : &optics;
  }
  operator Range*() {
    std::sscanf(text.c_str(), "%f %f", &range.TempLo, &range.TempHi);
    return text == "null" ? nullptr : &range;
  }
  template <typename Number,
            typename = std::enable_if_t<std::is_arithmetic_v<Number> || std::is_enum_v<Number>>>
  operator Number() {
    return static_cast<Number>(std::stod(text));
  }
};

using Commands = std::map<std::string, std::function<std::string(std::vector<Argument>&)>>;

void runTranscript(const std::string& name, const Commands& commands);

// Values with blanks between. Records that a query hands out are released.
template <typename... Values>
std::string shown(const Values&... values) {
  std::ostringstream out;
  const char* separator = "";
  ((out << std::boolalpha << std::exchange(separator, " ") << values), ...);
  return out.str();
}
inline std::string shown(char* text) { return text != nullptr ? text : "null"; }
inline std::string shown(Range* result) {
  const std::unique_ptr<Range> range(result);
  return range ? shown(range->TempLo, range->TempHi) : "null";
}

#endif  // KALVISTA_TESTS_SUPPORT_TRANSCRIPT_H
