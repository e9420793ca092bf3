// The elements of the calibration file, and the record field that each one fills.
#ifndef KALVISTA_IMGPROC_CALI_FORMAT_H
#define KALVISTA_IMGPROC_CALI_FORMAT_H

#include <kalvista/Cali.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "imgproc/CaliModel.h"
#include "sdk/text/NumberText.h"

namespace cali {

// Records in the making. A record joins its parent when its element is closed, so that an element
// whose closing tag is missing leaves no trace.
struct Records {
  explicit Records(const MainSection& before) : mainBefore(before), main(before) {
    constexpr std::size_t kUsualCount = 8;
    opticsList.reserve(kUsualCount);
    ranges.reserve(kUsualCount);
    framerates.reserve(kUsualCount);
  }

  MainSection mainBefore;  // keys that are absent keep their values
  MainSection main;
  std::vector<OpticsPointer> opticsList;
  OpticsPointer optics;
  std::vector<RangePointer> ranges;
  RangePointer range;
  std::vector<FR> framerates;
  FR framerate = 0;
  TableParams tableParams;
  bool lineEndInValue = false;
  // Whether the C library's scanner, in this thread, reads a plain decimal as it stands.
  bool plainNumbers = ardo::isPointDecimal();
};

// Elements that hold others; elements that hold a value follow them without a name of their own.
enum Element : std::size_t {
  kMain,
  kTemperature,
  kOptics,
  kOpticsDef,
  kTempRanges,
  kTemperatureRange,
  kFramerates,
  kFramerate,
  kTableParams,
  kNoElement = 63,
};

// Sets of elements, a bit each.
using ElementSet = std::uint64_t;
constexpr ElementSet setOf(std::size_t element) { return ElementSet{1} << element; }

struct ElementRule {
  std::string_view name;
  std::size_t parent;                              // kNoElement for the root
  bool repeated;                                   // its parent may hold any number
  void (*open)(Records&);                          // may be null
  void (*close)(Records&, std::string_view text);  // may be null
  ElementSet children;
  ElementSet descendants;

  bool holdsValue() const { return children == 0; }
};

constexpr std::size_t kElementCount = 51;
extern const std::array<ElementRule, kElementCount> kElementRules;

// kNoElement for a name that the format does not know. A name stands for one element at one place.
std::size_t elementNamed(std::string_view name);

}  // namespace cali

#endif  // KALVISTA_IMGPROC_CALI_FORMAT_H
