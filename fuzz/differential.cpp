// The library against its plain counterparts. An input that begins with "<" is a document, with a
// walk as for xml_walk; any other makes the choices for a random document and its walk.
#include <cstdlib>
#include <iostream>

#include "Oracle.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(data, data + size);
  const std::size_t split = input.find('\xFF');
  const std::string document = input.substr(0, split);
  const std::string choices = input.substr(split + 1);
  const oracle::ByteSource walk(choices);
  const std::string difference =
      document[0] != '<'
          ? oracle::compareAtRandom(oracle::ByteSource(input))
          : oracle::compareReaders(document, walk) + oracle::compareLoaders(document);
  if (difference.empty()) return 0;
  std::cerr << "The library differs.\n" << difference << "\n";
  std::abort();
}
