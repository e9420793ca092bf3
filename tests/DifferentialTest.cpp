// Holds the library's reader and calibration loader against their plain counterparts on random
// documents. Each document follows from its seed alone:
//   kalvista_differential_test --first-seed=S --documents=1
// replays one, with its walk; larger numbers of documents look further than the ordinary run.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>

#include "Comparison.h"
#include "DocumentGrammar.h"

namespace {

std::uint64_t firstSeed = 1;
std::uint64_t documents = 10000;

// Makes the document of a seed and gives the comparison that it is for.
struct Case {
  std::string document;
  std::function<std::string(const std::string&)> compare;
};

Case walkCase(std::uint64_t seed) {
  oracle::ByteSource source(seed);
  std::string document = oracle::DocumentGrammar(source).document();
  return {document, [source](const std::string& text) {
            return oracle::compareReaders(text, "root", source);
          }};
}

Case calibrationCase(std::uint64_t seed) {
  oracle::ByteSource source(seed);
  return {oracle::DocumentGrammar(source).calibration(), oracle::compareLoaders};
}

void expectEqual(std::uint64_t count, Case (*makeCase)(std::uint64_t seed)) {
  for (std::uint64_t seed = firstSeed; seed < firstSeed + count; ++seed) {
    const Case random = makeCase(seed);
    if (!random.compare(random.document).empty()) {
      FAIL() << "Replay with --first-seed=" << seed << " --documents=1\n"
             << oracle::explain(random.document, random.compare);
    }
  }
}

TEST(Differential, readersWalkAlike) { expectEqual(documents, walkCase); }

TEST(Differential, loadersFillTheSameModel) { expectEqual((documents + 2) / 3, calibrationCase); }

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    const std::size_t equals = argument.find('=') + 1;
    const std::uint64_t number = std::strtoull(argument.c_str() + equals, nullptr, 10);
    if (argument.rfind("--first-seed=", 0) == 0) {
      firstSeed = number;
    } else if (argument.rfind("--documents=", 0) == 0) {
      documents = number;
    } else {
      std::cerr << "Unknown argument " << argument << ": --first-seed=S and --documents=N are.\n";
      return EXIT_FAILURE;
    }
  }
  return RUN_ALL_TESTS();
}
