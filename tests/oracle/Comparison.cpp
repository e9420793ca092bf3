#include "Comparison.h"

#include <kalvista/Cali.h>
#include <kalvista/SimpleXML.h>

#include <algorithm>
#include <cstdio>

#include "DocumentGrammar.h"
#include "PlainCali.h"
#include "PlainXml.h"
#include "Walk.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace oracle {
namespace {

// The first line that is not the same, with the one ahead of it.
std::string firstDifference(const std::string& expected, const std::string& actual) {
  if (expected == actual) return "";
  const auto parting =
      std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  const auto at = static_cast<std::size_t>(parting.first - expected.begin());
  const std::size_t line = at == 0 ? 0 : expected.rfind('\n', at - 1) + 1;
  const std::size_t before = line < 2 ? 0 : expected.rfind('\n', line - 2) + 1;
  return "after:    " + expected.substr(before, line - before) +  //
         "expected: " + expected.substr(line, expected.find('\n', at) - line) + "\n" +
         "actual:   " + actual.substr(line, actual.find('\n', at) - line) + "\n";
}

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    char octal[8];
    std::snprintf(octal, sizeof octal, "\\%03o", static_cast<unsigned char>(c));
    result += c == '\n' ? "\\n" : c == '\r' ? "\\r" : c < ' ' ? octal : std::string(1, c);
  }
  return result;
}

}  // namespace

const std::string& scratchFolder() {
  static const support::TemporaryFolder folder;
  return folder.path();
}

std::string writeScratchFile(const std::string& name, const std::string& bytes) {
  return support::writeFile(scratchFolder() + "/" + name, bytes);
}

std::string compareReaders(const std::string& document, const std::string& root,
                           const ByteSource& walk) {
  const std::string file = writeScratchFile("document.xml", document);
  const std::vector<std::string> names = namesIn(document);
  return firstDifference(Walk<PlainXml>(file, names, walk).run(root),
                         Walk<ardo::SimpleXML>(file, names, walk).run(root));
}

std::string compareLoaders(const std::string& document) {
  // Two serials in turn, so that each load first has to clear the model of the one before.
  static ConfigCali cali;
  static int serial = 0;
  serial = 3 - std::max(serial, 1);
  const std::string file = writeScratchFile("Cali-" + std::to_string(serial) + ".xml", document);
  const unsigned int status = cali.load(scratchFolder().c_str(), serial);
  const LoadedCali expected = loadPlainly(file);
  return firstDifference("status " + std::to_string(expected.status) + "\n" + expected.model,
                         "status " + std::to_string(status) + "\n" + describe(cali));
}

std::string explain(std::string document,
                    const std::function<std::string(const std::string&)>& compare) {
  for (std::size_t size = document.size(); size > 0; size /= 2) {
    for (std::size_t at = 0; at + size <= document.size();) {
      std::string shorter = document;
      shorter.erase(at, size);
      if (compare(shorter).empty()) {
        at += size;
      } else {
        document = shorter;
      }
    }
  }
  return compare(document) + "document: " + escaped(document) + "\n";
}

}  // namespace oracle
