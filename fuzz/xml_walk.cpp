// The XML reader on any document, with any walk.
#include <kalvista/SimpleXML.h>

#include <string>
#include <vector>

#include "Comparison.h"
#include "DocumentGrammar.h"
#include "Harness.h"
#include "Walk.h"
#include "WalkInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const WalkInput input(data, size);
  const std::string file = oracle::writeScratchFile("document.xml", input.document);
  const std::vector<std::string> names = oracle::namesIn(input.document);
  oracle::Walk<ardo::SimpleXML>(file, names, input.walk).run(input.root());
  return 0;
}
