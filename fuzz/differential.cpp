// The library against its plain counterparts. The first byte of the input chooses: a document as it
// stands (which begins with "<"), or choices for the grammar of documents or of calibrations.
#include <cstdlib>
#include <iostream>
#include <string>

#include "Comparison.h"
#include "DocumentGrammar.h"
#include "Harness.h"
#include "WalkInput.h"

namespace {

std::string compare(const std::uint8_t* data, std::size_t size, std::string& document) {
  oracle::ByteSource source(data, size);
  const std::uint32_t kind = source.below(3);
  if (kind == 1) {
    document = oracle::DocumentGrammar(source).document();
    return oracle::compareReaders(document, "root", source);
  }
  if (kind == 2) {
    document = oracle::DocumentGrammar(source).calibration();
    return oracle::compareLoaders(document);
  }
  const WalkInput input(data, size);
  document = input.document;
  return oracle::compareReaders(document, input.root(), input.walk) +
         oracle::compareLoaders(document);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string document;
  const std::string difference = compare(data, size, document);
  if (difference.empty()) return 0;
  std::cerr << "The library differs.\n" << difference << "document:\n" << document << "\n";
  std::abort();
}
