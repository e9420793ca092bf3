#include <kalvista/SimpleXML.h>

#include <memory>

#include "CalibrationFiles.h"
#include "Files.h"
#include "Workloads.h"

namespace bench {
namespace {

constexpr int kSiblings = 100000;
constexpr std::size_t kMegabytes = 64;

// Documents are opened once; what is measured are the lookups.
using Document = std::shared_ptr<ardo::SimpleXML>;

Document openDocument(const std::string& path, const char* root) {
  auto document = std::make_shared<ardo::SimpleXML>();
  require(document->open(path.c_str(), root) && document->hasRoot(),
          "SimpleXML::open fails for " + path);
  return document;
}

std::size_t walkSiblings(ardo::SimpleXML& xml) {
  xml.setNode();
  int index = 0;
  for (; xml.setNode("Item", index); ++index) xml.resetNode();
  return static_cast<std::size_t>(index);
}

std::size_t countSiblings(ardo::SimpleXML& xml) {
  xml.setNode();
  return static_cast<std::size_t>(xml.getNodeCount("Item"));
}

// Asks each record for a key that none has; counts the keys that are absent.
std::size_t lookUpAbsentKeys(ardo::SimpleXML& xml) {
  std::size_t absent = 0;
  float value = 0;
  xml.setNode();
  xml.setNode("Temperature");
  xml.setNode("Optics");
  for (int i = 0; xml.setNode("OpticsDef", i); ++i) {
    xml.setNode("TempRanges");
    for (int j = 0; xml.setNode("TemperatureRange", j); ++j) {
      if (!xml.getFloat("Absent", &value)) ++absent;
      xml.resetNode();
    }
    xml.resetNode();
    xml.resetNode();
  }
  return absent;
}

using Lookup = std::size_t (*)(ardo::SimpleXML& xml);

Contestant contestant(const char* name, const Document& document, Lookup lookup) {
  return {name, [document, lookup] { keep(lookup(*document)); }};
}

struct Pair {
  Document whole;
  Document half;
};

void measure(Bench& bench, Table& table, const std::string& label, const Pair& documents,
             Lookup lookup) {
  require(lookup(*documents.whole) / 2 == lookup(*documents.half), label + " finds another number");
  const Timings timings = compete(
      {contestant(kLibrary, documents.whole, lookup), contestant(kHalf, documents.half, lookup)},
      bench.longWork());
  bench.report.measured("lookup growth", ratio(timings, kLibrary, kHalf));
  addTimings(table, label, timings);
}

Pair openSiblings(const Bench& bench, int count) {
  const auto open = [&](const char* name, int items) {
    writeFile(bench.folder / name, siblingsText(items));
    return openDocument((bench.folder / name).string(), "Items");
  };
  return {open("siblings.xml", count), open("half.xml", count / 2)};
}

// Records are counted in optics, so that one document has exactly twice the records of the other.
Pair openCalibrations(const Bench& bench) {
  const std::size_t opticsSize =
      calibrationText(Kind::Full, 2).size() - calibrationText(Kind::Full, 1).size();
  const int half = static_cast<int>(bench.size(kMegabytes) / opticsSize / 2);
  const auto open = [&](int serial, int records) {
    return openDocument(
        writeCalibration(bench.folder, serial, calibrationText(Kind::Full, records)).path,
        "CaliData");
  };
  return {open(3001, 2 * half), open(3002, half)};
}

}  // namespace

void benchLookups(Bench& bench) {
  Table table{"Lookups in an open document, in total", {}, {}};
  const int count = bench.count(kSiblings);
  const std::string number = std::to_string(count);
  const Pair siblings = openSiblings(bench, count);
  measure(bench, table, "setNode(name, i) over " + number + " siblings", siblings, walkSiblings);
  measure(bench, table, "getNodeCount of " + number + " siblings", siblings, countSiblings);
  measure(bench, table, "absent keys, one in each range of a 64 MB document",
          openCalibrations(bench), lookUpAbsentKeys);
  bench.report.add(table);
}

}  // namespace bench
