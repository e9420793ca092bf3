// One random walk that both readers take.
#include <kalvista/SimpleXML.h>

#include <climits>
#include <functional>
#include <sstream>
#include <vector>

#include "Oracle.h"
#include "PlainXml.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace oracle {
namespace {

// Names to look up: those of the document's tags, and texts that are no names.
std::vector<std::string> namesIn(const std::string& document) {
  std::vector<std::string> names = {"a", "/a", "a><b", "!--", "missing", "", "\n", "<a", "a>"};
  for (std::size_t at = 0; names.size() < 200 && (at = document.find('<', at) + 1) != 0;) {
    const std::string name = document.substr(at, document.find('>', at) - at);
    if (name.size() < 30 && name[0] != '/') names.push_back(name);
  }
  return names;
}

template <typename Xml>
class Walk {
 public:
  Walk(const std::string& file, const std::string& document, const ByteSource& source)
      : file_(file),
        root_(document.find("<CaliData>") == std::string::npos ? "root" : "CaliData"),
        names_(namesIn(document)),
        source_(source) {}

  // One line for each step: what was called, its result, and where the reader stands.
  std::string run() {
    if (source_.oneIn(8)) step();  // before any document
    open(file_, root_);
    if (!source_.oneIn(16)) record("setNode()", xml_.setNode());
    for (std::size_t left = source_.below(60); left > 0; --left) step();
    return trace_.str();
  }

 private:
  void step() {
    const std::string name = pickName();
    const std::function<void()> steps[] = {
        [&] { record("setNode()", xml_.setNode()); },
        [&] { enter(name); },
        [&] { enterChild(name, static_cast<int>(source_.below(8)) - 1); },
        [&] { record("resetNode()", xml_.resetNode()); },
        [&] { visitChildren(name); },
        [&] { search(name); },
        [&] { reopen(name); },
        [&] { descend(); },
        [&] { readTexts(name.c_str()); },
    };
    source_.pick(steps)();
  }

  // Mostly the name of an element that is there.
  std::string pickName() {
    const std::string name = source_.pick(names_);
    const std::string other = source_.pick(names_);
    return xml_.getKey(name.c_str(), xml_.nodeBegin[xml_.depth], INT_MAX, false) < 0 ? other : name;
  }

  void open(const std::string& file, const std::string& root) {
    record("open " + root, xml_.open(file.c_str(), root.c_str()));
    record(xml_.buffer == nullptr ? "" : xml_.buffer, xml_.hasRoot());
  }

  // Other roots and files that are none: what an earlier text left behind must not show.
  void reopen(const std::string& name) {
    const std::string files[] = {file_, file_, file_ + ".missing", "/"};
    const std::string& file = source_.pick(files);
    const std::string& root = source_.oneIn(4) ? name : root_;
    if (source_.oneIn(2)) open(file, root);
    if (source_.oneIn(2)) xml_.setNode();
  }

  bool enter(const std::string& name) {
    return record("setNode " + name, xml_.setNode(name.c_str())) != 0;
  }

  void enterChild(const std::string& name, int index) {
    record("setNode " + name + " " + std::to_string(index), xml_.setNode(name.c_str(), index));
  }

  void descend() {
    for (int level = 0; enter("n" + std::to_string(level));) ++level;
    record("count", xml_.getNodeCount("n254"));
  }

  // As callers walk over lists of lists.
  void visitChildren(const std::string& child) {
    const int depth = xml_.depth;
    const long count = record("count " + child, xml_.getNodeCount(child.c_str()));
    for (int i = 0; i <= count && i < 20; i += source_.oneIn(3) ? 2 : 1) {
      enterChild(child, i);
      const std::string grandchild = pickName();
      if (source_.oneIn(2)) readTexts(grandchild.c_str());
      if (source_.oneIn(2)) enterChild(grandchild, static_cast<int>(source_.below(3)));
      while (xml_.depth > depth) xml_.resetNode();
    }
  }

  void search(const std::string& name) {
    const int some = static_cast<int>(source_.below(300));
    const int offsets[] = {some, some / 2, xml_.length, xml_.nodeEnd[0], -1, INT_MAX, INT_MIN};
    const int from = source_.pick(offsets);
    const int limit = source_.pick(offsets);
    record("getKey " + name + " " + std::to_string(from) + " " + std::to_string(limit),
           xml_.getKey(name.c_str(), from, limit, source_.oneIn(2)));
  }

  void readTexts(const char* name) {
    int integer = -77;
    long number = -77;
    float real = -77.0F;
    trace_ << xml_.getInt(name, &integer) << xml_.getLong(name, &number)
           << xml_.getFloat(name, &real) << std::hexfloat << ' ' << integer << ' ' << number << ' '
           << real << ' ';
    char* texts[] = {nullptr, nullptr};
    record(name, xml_.getString(name, &texts[0]) + 2 * xml_.getNode(&texts[1]));
    for (const char* text : texts) {
      trace_ << (text == nullptr ? "none" : text) << '\n';
      delete[] text;
    }
  }

  long record(const std::string& what, long result) {
    const int depth = xml_.depth;
    trace_ << what << " -> " << result << " @" << depth << ' ' << xml_.nodeBegin[depth] << ".."
           << xml_.nodeEnd[depth] << " of " << xml_.length << '\n';
    return result;
  }

  Xml xml_;
  std::string file_;
  std::string root_;
  std::vector<std::string> names_;
  ByteSource source_;
  std::ostringstream trace_;
};

}  // namespace

const std::string& scratchFolder() {
  static const support::TemporaryFolder folder;
  return folder.path();
}

std::string writeScratchFile(const std::string& name, std::string_view bytes) {
  return support::writeFile(scratchFolder() + "/" + name, bytes);
}

std::string firstDifference(const std::string& expected, const std::string& actual) {
  if (expected == actual) return "";
  std::istringstream lines(expected);
  std::istringstream others(actual);
  std::string line;
  std::string other;
  while (std::getline(lines, line) && std::getline(others, other) && line == other) continue;
  return "expected: " + line + "\nactual:   " + other + "\n";
}

std::string walkLibrary(const std::string& document, const ByteSource& walk) {
  const std::string file = writeScratchFile("document.xml", document);
  return Walk<ardo::SimpleXML>(file, document, walk).run();
}

std::string compareReaders(const std::string& document, const ByteSource& walk) {
  const std::string actual = walkLibrary(document, walk);
  const std::string file = scratchFolder() + "/document.xml";
  return firstDifference(Walk<PlainXml>(file, document, walk).run(), actual);
}

std::string compareAtRandom(ByteSource source) {
  bool isCalibration = false;
  const std::string document = randomDocument(source, isCalibration);
  const std::string difference =
      isCalibration ? compareLoaders(document) : compareReaders(document, source);
  return difference.empty() ? "" : difference + "document:\n" + document;
}

}  // namespace oracle
