// Runs a harness over files, without the fuzzer: replay_<harness> FILE...
#include <iostream>

#include "support/Files.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string input = support::readFile(argv[i]);
    if (input.empty()) {
      std::cerr << "Nothing to read at " << argv[i] << ". Give files that are not empty.\n";
      return 1;
    }
    LLVMFuzzerTestOneInput(std::vector<unsigned char>(input.begin(), input.end()).data(),
                           input.size());
  }
  std::cout << argc - 1 << " inputs replayed\n";
}
