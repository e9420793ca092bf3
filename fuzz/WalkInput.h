// An input that is a document and a walk over it, the walk behind the first byte 255. A plain
// document gets a walk of its own.
#ifndef KALVISTA_FUZZ_WALK_INPUT_H
#define KALVISTA_FUZZ_WALK_INPUT_H

#include <algorithm>
#include <string>

#include "ByteSource.h"

struct WalkInput {
  WalkInput(const std::uint8_t* data, std::size_t size) : walk(size) {
    const std::uint8_t* const end = data + size;
    const std::uint8_t* const split = std::find(data, end, 255);
    document.assign(data, split);
    if (split != end)
      walk = oracle::ByteSource(split + 1, static_cast<std::size_t>(end - split - 1));
  }

  std::string root() const {
    for (const char* name : {"CaliData", "imager"}) {
      if (document.find(name) != std::string::npos) return name;
    }
    return "root";
  }

  std::string document;
  oracle::ByteSource walk;
};

#endif  // KALVISTA_FUZZ_WALK_INPUT_H
