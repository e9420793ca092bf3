// Holds the library's reader and calibration loader against their plain counterparts on random
// documents. Each document follows from its seed alone:
//   kalvista_differential_test --first-seed=S --documents=1
// replays one, with its walk; larger numbers of documents look further than the ordinary run.
#include <gtest/gtest.h>

#include <cstdio>

#include "Oracle.h"

namespace {

unsigned long firstSeed = 1;
unsigned long documents = 13500;  // three in four walk a document, one loads a calibration

TEST(Differential, libraryAndPlainCounterpartsAgree) {
  for (unsigned long seed = firstSeed; seed < firstSeed + documents; ++seed) {
    ASSERT_EQ("", oracle::compareAtRandom(oracle::ByteSource(seed)))
        << "Replay with --documents=1 --first-seed=" << seed;
  }
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i < argc; ++i) {
    if (std::sscanf(argv[i], "--first-seed=%lu", &firstSeed) != 1 &&
        std::sscanf(argv[i], "--documents=%lu", &documents) != 1) {
      std::fprintf(stderr, "%s is unknown: --first-seed=S and --documents=N are not.\n", argv[i]);
      return 1;
    }
  }
  return RUN_ALL_TESTS();
}
