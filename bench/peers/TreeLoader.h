// Fills the calibration model from a document tree, whichever library built it.
#ifndef KALVISTA_BENCH_PEERS_TREE_LOADER_H
#define KALVISTA_BENCH_PEERS_TREE_LOADER_H

#include "ModelBuilder.h"

namespace bench {

// `Node` gives name(), text() and forEachChild(), which visits the child elements in file order.
template <typename Node>
void loadRange(const Node& node, ModelBuilder& builder) {
  builder.beginRange();
  node.forEachChild([&builder](const Node& child) {
    const std::string_view name = child.name();
    if (name == "Framerates") {
      child.forEachChild([&builder](const Node& framerate) {
        framerate.forEachChild(
            [&builder](const Node& rate) { builder.addFramerate(toFramerate(rate.text())); });
      });
      builder.endFramerates();
    } else if (name == "TableParams") {
      child.forEachChild([&builder](const Node& value) {
        setTableValue(*builder.range().tableParams, value.name(), value.text());
      });
    } else {
      setRangeValue(builder.range(), name, child.text());
    }
  });
}

template <typename Node>
void loadOptics(const Node& node, ModelBuilder& builder) {
  builder.beginOptics();
  node.forEachChild([&builder](const Node& child) {
    const std::string_view name = child.name();
    if (name == "TempRanges") {
      child.forEachChild([&builder](const Node& range) { loadRange(range, builder); });
      builder.endRanges();
    } else {
      setOpticsValue(builder.optics(), name, child.text());
    }
  });
}

// `root` is the element "CaliData".
template <typename Node>
void loadTree(const Node& root, ConfigCali& calibration) {
  ModelBuilder builder(calibration);
  root.forEachChild([&builder](const Node& section) {
    if (section.name() == "Main") {
      section.forEachChild([&builder](const Node& value) {
        setMainValue(builder.main(), value.name(), value.text());
      });
    } else {
      section.forEachChild([&builder](const Node& list) {
        list.forEachChild([&builder](const Node& optics) { loadOptics(optics, builder); });
      });
    }
  });
  builder.endFile();
}

}  // namespace bench

#endif  // KALVISTA_BENCH_PEERS_TREE_LOADER_H
