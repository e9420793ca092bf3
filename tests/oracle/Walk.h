// One random walk that both readers take, written down step by step.
#ifndef KALVISTA_TESTS_ORACLE_WALK_H
#define KALVISTA_TESTS_ORACLE_WALK_H

#include <climits>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "ByteSource.h"

namespace oracle {

template <typename Xml>
class Walk {
 public:
  Walk(std::string file, std::vector<std::string> names, ByteSource source)
      : file_(std::move(file)), names_(std::move(names)), source_(source) {}

  /// Gives one line for each step: what was called, its result, and where the reader stands.
  std::string run(const std::string& root) {
    if (source_.oneIn(8)) step();  // before any document
    open(file_, root);
    if (!source_.oneIn(16)) record("setNode()", xml_.setNode());
    for (int left = source_.between(0, 60); left > 0; --left) step();
    for (int level = 0; level <= xml_.depth; ++level) record("level", xml_.nodeEnd[level]);
    return trace_;
  }

 private:
  void step() {
    switch (source_.below(16)) {
      case 0:
        return record("setNode()", xml_.setNode());
      case 1:
      case 2:
        return enter(name());
      case 3:
        return enter(name(), source_.between(-1, 6));
      case 4:
      case 5:
        return record("resetNode()", xml_.resetNode());
      case 6:
        return visitChildren(name());
      case 7:
        return descend();
      case 8:
        return search(name());
      case 9:
        return readContent();
      case 10:
        return reopen();
      default:
        return readChild(name());
    }
  }

  // Mostly the name of an element that is there.
  std::string name() {
    std::string picked = source_.pick(names_);
    for (int again = source_.between(0, 4); again > 0; --again) {
      const int depth = xml_.depth;
      if (xml_.getKey(picked.c_str(), xml_.nodeBegin[depth], xml_.nodeEnd[depth], false) >= 0)
        break;
      picked = source_.pick(names_);
    }
    return picked;
  }

  void open(const std::string& file, const std::string& root) {
    record("open " + root, xml_.open(file.c_str(), root.c_str()));
    record(xml_.buffer == nullptr ? "no text" : "text '" + std::string(xml_.buffer) + "'",
           xml_.hasRoot());
  }

  // Other roots and files that are none: what an earlier text left behind must not show.
  void reopen() {
    switch (source_.below(16)) {
      case 0:
        return open(file_ + ".missing", "root");
      case 1:
        return open("/", "root");
      case 2:
        return open(file_, name());
      case 3:
        return open(file_, "root");
      default:
        return record("setNode()", xml_.setNode());
    }
  }

  void enter(const std::string& name) { record("setNode " + name, xml_.setNode(name.c_str())); }

  void enter(const std::string& name, int index) {
    record("setNode " + name + ", " + std::to_string(index), xml_.setNode(name.c_str(), index));
  }

  // As callers walk over lists of lists.
  void visitChildren(const std::string& child) {
    const int depth = xml_.depth;
    const int count = xml_.getNodeCount(child.c_str());
    record("getNodeCount " + child, count);
    const std::string grandchild = name();
    for (int i = 0; i <= count && i < 20; i += source_.between(1, 2)) {
      enter(child, i);
      if (source_.oneIn(2)) {
        readChild(name());
      } else {
        enter(grandchild, source_.between(0, 2));
      }
      while (xml_.depth > depth) xml_.resetNode();
    }
  }

  void descend() {
    for (int level = 0; xml_.setNode(("n" + std::to_string(level)).c_str());) ++level;
    record("descend", xml_.getNodeCount("n254"));
  }

  int offset() {
    const int ends[] = {xml_.length, xml_.length + 1, -1, INT_MAX, INT_MIN, xml_.nodeEnd[0]};
    return source_.oneIn(3) ? source_.pick(ends) : source_.between(0, 300);
  }

  void search(const std::string& name) {
    const int from = offset();
    const int limit = offset();
    const bool closing = source_.oneIn(2);
    record("getKey " + name + ", " + std::to_string(from) + ", " + std::to_string(limit),
           xml_.getKey(name.c_str(), from, limit, closing));
  }

  void readContent() {
    char* text = nullptr;
    const bool found = xml_.getNode(&text);
    recordText("getNode", found, text);
  }

  void readChild(const std::string& name) {
    int integer = -77;
    long number = -77;
    float real = -77.0F;
    char* text = nullptr;
    record("getInt " + name, xml_.getInt(name.c_str(), &integer));
    record("getLong " + std::to_string(integer), xml_.getLong(name.c_str(), &number));
    record("getFloat " + std::to_string(number), xml_.getFloat(name.c_str(), &real));
    std::memcpy(&integer, &real, sizeof real);  // tells -0 from 0
    const bool found = xml_.getString(name.c_str(), &text);
    recordText("getString " + std::to_string(integer), found, text);
  }

  void recordText(const std::string& what, bool found, const char* text) {
    const std::unique_ptr<const char[]> owner(text);
    record(text == nullptr ? what : what + " '" + text + "'", found);
  }

  void record(const std::string& what, long result) {
    const int depth = xml_.depth;
    trace_ += what + " -> " + std::to_string(result) + " @" + std::to_string(depth) + " " +
              std::to_string(xml_.nodeBegin[depth]) + ".." + std::to_string(xml_.nodeEnd[depth]) +
              " of " + std::to_string(xml_.length) + "\n";
  }

  Xml xml_;
  std::string file_;
  std::vector<std::string> names_;
  ByteSource source_;
  std::string trace_;
};

}  // namespace oracle

#endif  // KALVISTA_TESTS_ORACLE_WALK_H
