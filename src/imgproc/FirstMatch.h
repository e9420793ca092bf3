// What queries by key find, for whoever goes through all records of a calibration.
#ifndef KALVISTA_IMGPROC_FIRST_MATCH_H
#define KALVISTA_IMGPROC_FIRST_MATCH_H

#include <kalvista/Cali.h>

#include <cmath>
#include <map>
#include <string_view>
#include <utility>

namespace cali {

// Records are given in their order, each once, and each tells the first of its key. A query would
// go through the list again for every one of them.
class FirstOptics {
 public:
  const OpticsDef& sameKeyAs(const OpticsDef& optics) {
    const std::string_view text = optics.Text != nullptr ? optics.Text : "";
    return *first_.emplace(std::pair(optics.FOV, text), &optics).first->second;
  }

 private:
  std::map<std::pair<std::int32_t, std::string_view>, const OpticsDef*> first_;
};

// Null for a range that no key equals, not even its own.
class FirstRange {
 public:
  const TemperatureRange* sameKeyAs(const TemperatureRange& range) {
    if (std::isnan(range.TempLo) || std::isnan(range.TempHi)) return nullptr;
    return first_.emplace(std::pair(range.TempLo, range.TempHi), &range).first->second;
  }

 private:
  std::map<std::pair<float, float>, const TemperatureRange*> first_;
};

}  // namespace cali

#endif  // KALVISTA_IMGPROC_FIRST_MATCH_H
