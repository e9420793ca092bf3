// ConfigCali: queries on the model.
#include <kalvista/Cali.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

namespace {

constexpr int kNotFound = -1;
constexpr int kNoSuchFramerate = -2;

const char* textOrEmpty(const char* text) { return text != nullptr ? text : ""; }

// Most keys are made from the model's records and share their text.
bool isSameText(const char* one, const char* other) {
  return one == other || std::strcmp(textOrEmpty(one), textOrEmpty(other)) == 0;
}

template <typename Record, typename Matches>
int indexOf(Record* const* records, int count, Matches matches) {
  for (int index = 0; index < count; ++index) {
    if (matches(records[index])) return index;
  }
  return kNotFound;
}

bool isIndex(int index, int count) { return index >= 0 && index < count; }

// Empty for an instance that was made without memory.
const OpticsList& listOf(const ConfigCali& calibration) {
  static constexpr OpticsList kNone{};
  return calibration.opticsList != nullptr ? *calibration.opticsList : kNone;
}

int indexOfOptics(const OpticsList& list, const OPTICS* key) {
  if (key == nullptr) return kNotFound;
  return indexOf(list.items, list.count, [key](const OpticsDef* optics) {
    return optics->FOV == key->FOV && isSameText(optics->Text, key->Text);
  });
}

OpticsDef* findOptics(const ConfigCali& calibration, const OPTICS* key) {
  const OpticsList& list = listOf(calibration);
  const int index = indexOfOptics(list, key);
  return isIndex(index, list.count) ? list.items[index] : nullptr;
}

int indexOfRange(const OpticsDef* optics, const Range* key) {
  if (optics == nullptr || key == nullptr) return kNotFound;
  return indexOf(optics->ranges, optics->rangeCount, [key](const TemperatureRange* range) {
    return range->TempLo == key->TempLo && range->TempHi == key->TempHi;
  });
}

TemperatureRange* findRange(const ConfigCali& calibration, const OPTICS* key, const Range* range) {
  const OpticsDef* optics = findOptics(calibration, key);
  const int index = indexOfRange(optics, range);
  return index == kNotFound ? nullptr : optics->ranges[index];
}

TemperatureRange* rangeAt(const ConfigCali& calibration, OPTICS* key, int index) {
  const OpticsDef* optics = findOptics(calibration, key);
  if (optics == nullptr || !isIndex(index, optics->rangeCount)) return nullptr;
  return optics->ranges[index];
}

constexpr Range kNoRange{1000000.0F, -1000000.0F};

void widen(Range& overAll, const OpticsDef& optics) {
  std::for_each(optics.ranges, optics.ranges + optics.rangeCount,
                [&overAll](const TemperatureRange* range) {
                  if (range->TempLo < overAll.TempLo) overAll.TempLo = range->TempLo;
                  if (range->TempHi > overAll.TempHi) overAll.TempHi = range->TempHi;
                });
}

Range* newRange(const Range& range) { return new (std::nothrow) Range(range); }

}  // namespace

int ConfigCali::getOpticsCount() const { return listOf(*this).count; }

int ConfigCali::getOpticsIndex(OPTICS* key) const { return indexOfOptics(listOf(*this), key); }

int ConfigCali::getOpticsIndex(int fov, char* keyText) const {
  const std::string_view text = textOrEmpty(keyText);
  const OpticsList& list = listOf(*this);
  return indexOf(list.items, list.count, [&](const OpticsDef* optics) {
    const std::string_view own = textOrEmpty(optics->Text);
    return optics->FOV == fov && (own.empty() || text.empty() || own == text);
  });
}

OPTICS* ConfigCali::getOptics(int index) const {
  if (!isIndex(index, getOpticsCount())) return nullptr;
  const OpticsDef& optics = *opticsList->items[index];
  return new (std::nothrow) OPTICS{optics.FOV, optics.Text};
}

int ConfigCali::getTempRangeCount(OPTICS* key) const {
  const OpticsDef* optics = findOptics(*this, key);
  return optics != nullptr ? optics->rangeCount : kNotFound;
}

int ConfigCali::getTempRangeCount(int fov, char* text) const {
  OPTICS key{fov, text};
  return getTempRangeCount(&key);
}

int ConfigCali::getTempRangeIndex(OPTICS* key, Range* range) const {
  return indexOfRange(findOptics(*this, key), range);
}

int ConfigCali::getTempRangeIndex(int fov, char* text, float tMin, float tMax) const {
  OPTICS key{fov, text};
  Range range{tMin, tMax};
  return getTempRangeIndex(&key, &range);
}

Range* ConfigCali::getTempRange(OPTICS* key, int index) const {
  const TemperatureRange* range = rangeAt(*this, key, index);
  return range != nullptr ? newRange({range->TempLo, range->TempHi}) : nullptr;
}

Range* ConfigCali::getTempRange(int fov, char* text, int index) const {
  OPTICS key{fov, text};
  return getTempRange(&key, index);
}

Range* ConfigCali::getExtendedTempRange(OPTICS* key, int index) const {
  const TemperatureRange* range = rangeAt(*this, key, index);
  return range != nullptr ? newRange({range->TempLoExt, range->TempHiExt}) : nullptr;
}

Range* ConfigCali::getExtendedTempRange(int fov, char* text, int index) const {
  OPTICS key{fov, text};
  return getExtendedTempRange(&key, index);
}

Range* ConfigCali::getExtendedTempRange(int fov, char* text, float tMin, float tMax) const {
  return getExtendedTempRange(fov, text, getTempRangeIndex(fov, text, tMin, tMax));
}

Range* ConfigCali::getTempRangeOverAll(OPTICS* key) const {
  const OpticsDef* optics = findOptics(*this, key);
  if (optics == nullptr) return nullptr;
  Range overAll = kNoRange;
  widen(overAll, *optics);
  return newRange(overAll);
}

Range* ConfigCali::getTempRangeOverAll() const {
  Range overAll = kNoRange;
  const OpticsList& list = listOf(*this);
  std::for_each(list.items, list.items + list.count,
                [&overAll](const OpticsDef* optics) { widen(overAll, *optics); });
  return newRange(overAll);
}

int ConfigCali::getFramerateCount(OPTICS* optics, Range* key) const {
  const TemperatureRange* range = findRange(*this, optics, key);
  return range != nullptr ? range->framerateCount : kNotFound;
}

int ConfigCali::getFramerateIndex(OPTICS* optics, Range* key, unsigned short fr) const {
  const TemperatureRange* range = findRange(*this, optics, key);
  if (range == nullptr || range->framerates == nullptr) return kNotFound;
  const int index = indexOf(range->framerates, range->framerateCount,
                            [fr](const FR* framerate) { return *framerate == fr; });
  return index == kNotFound ? kNoSuchFramerate : index;
}

int ConfigCali::getFramerateIndex(int fov, char* text, float tMin, float tMax,
                                  unsigned short fr) const {
  OPTICS optics{fov, text};
  Range range{tMin, tMax};
  return getFramerateIndex(&optics, &range, fr);
}

unsigned short ConfigCali::getFramerate(OPTICS* optics, Range* key, int index) const {
  const TemperatureRange* range = findRange(*this, optics, key);
  if (range == nullptr || !isIndex(index, range->framerateCount)) return 0;
  return *range->framerates[index];
}

bool ConfigCali::checkFramerate(OPTICS* optics, Range* range, unsigned short& fr) const {
  const int index = getFramerateIndex(optics, range, fr);
  if (index >= 0) return true;
  fr = 0;
  // A range that is unknown or lists no frame rates takes any: its files carry none in their names.
  return index == kNotFound;
}

bool ConfigCali::checkFramerate(int fov, char* text, float tMin, float tMax,
                                unsigned short& fr) const {
  OPTICS optics{fov, text};
  Range range{tMin, tMax};
  return checkFramerate(&optics, &range, fr);
}

unsigned short ConfigCali::getTempRangeDecimal(int fov, char* text, float tMin, float tMax) const {
  const int optics = getOpticsIndex(fov, text);
  const int range = getTempRangeIndex(fov, text, tMin, tMax);
  // The two rules of matching may find two optics, of which the first has fewer ranges.
  if (optics < 0 || !isIndex(range, opticsList->items[optics]->rangeCount)) return 0;
  return opticsList->items[optics]->ranges[range]->Decimal;
}
