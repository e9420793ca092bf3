// The XML reader on any document, with any walk: the choices behind the first byte 255, or else the
// document's own bytes.
#include "Oracle.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(data, data + size);
  const std::size_t split = input.find('\xFF');
  const std::string choices = input.substr(split + 1);
  oracle::walkLibrary(input.substr(0, split), oracle::ByteSource(choices));
  return 0;
}
