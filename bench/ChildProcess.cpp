#include "ChildProcess.h"

#include <cstdio>
#include <filesystem>

#include "Files.h"

namespace bench {
namespace {

std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char letter : text) {
    if (letter == '\'') {
      result += "'\\''";
    } else {
      result += letter;
    }
  }
  return result + "'";
}

}  // namespace

double numberPrintedBy(const std::vector<std::string>& command) {
  std::string line = "exec";
  for (const std::string& word : command) line += ' ' + quoted(word);
  FILE* output = popen(line.c_str(), "r");
  require(output != nullptr, "cannot start " + command.front());
  double number = 0;
  const int count = std::fscanf(output, "%lf", &number);
  require(pclose(output) == 0 && count == 1, command.front() + " fails");
  return number;
}

std::string ownProgram() { return std::filesystem::read_symlink("/proc/self/exe").string(); }

}  // namespace bench
