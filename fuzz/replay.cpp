// Runs a harness over files, without the fuzzer: replay_<harness> FILE|FOLDER...
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "Harness.h"
#include "support/Files.h"

namespace {

void replay(const std::filesystem::path& file) {
  const std::string input = support::readFile(file.string());
  const std::vector<std::uint8_t> bytes(input.begin(), input.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

int replayAll(const std::filesystem::path& path) {
  if (!std::filesystem::is_directory(path)) {
    replay(path);
    return 1;
  }
  int count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
    if (!entry.is_regular_file()) continue;
    replay(entry.path());
    ++count;
  }
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const int count = std::filesystem::exists(argv[i]) ? replayAll(argv[i]) : 0;
    if (count == 0) {
      std::cerr << "No input at " << argv[i] << ". Give files, or folders that hold some.\n";
      return EXIT_FAILURE;
    }
    std::cout << argv[i] << ": " << count << " inputs replayed\n";
  }
}
