// The records of the calibration model, their initial values and their lifecycle.
#include "imgproc/CaliModel.h"

#include <algorithm>
#include <new>

#include "sdk/text/NoThrow.h"

MainSection::MainSection() = default;

namespace cali {

namespace {

// Moves owned records into a counted array of pointers, as the public records hold them.
template <typename Record, typename Pointer>
void moveToArray(std::vector<Pointer>& from, Record**& array, std::int32_t& count) {
  array = new Record*[from.size()];
  std::transform(from.begin(), from.end(), array,
                 [](Pointer& pointer) { return pointer.release(); });
  count = static_cast<std::int32_t>(from.size());
}

template <typename Record, typename Release>
void releaseArray(Record** array, std::int32_t count, Release release) {
  std::for_each(array, array + count, release);
  delete[] array;
}

RangePointer makeRangeOf(float low, float high) {
  RangePointer range = makeRange();
  range->TempLo = low;
  range->TempHi = high;
  return range;
}

void releaseOptics(OpticsList& list) { releaseArray(list.items, list.count, RecordDeleter()); }

}  // namespace

void RecordDeleter::operator()(TemperatureRange* range) const {
  delete range->tableParams;
  releaseArray(range->framerates, range->framerateCount, std::default_delete<FR>());
  delete range;
}

void RecordDeleter::operator()(OpticsDef* optics) const {
  releaseArray(optics->ranges, optics->rangeCount, *this);
  delete[] optics->Text;
  delete optics;
}

RangePointer makeRange() {
  RangePointer range(new TemperatureRange);
  range->tableParams = new TableParams;
  return range;
}

OpticsPointer makeOptics() { return OpticsPointer(new OpticsDef); }

void setFramerates(TemperatureRange& range, const std::vector<FR>& framerates) {
  range.framerates = new FR*[framerates.size()];
  for (const FR framerate : framerates) {
    range.framerates[range.framerateCount] = new FR(framerate);
    ++range.framerateCount;
  }
}

void setRanges(OpticsDef& optics, std::vector<RangePointer>& ranges) {
  moveToArray(ranges, optics.ranges, optics.rangeCount);
}

void setDefaultRanges(OpticsDef& optics) {
  constexpr std::size_t kDefaultRanges = 3;
  std::vector<RangePointer> ranges;
  ranges.reserve(kDefaultRanges);
  ranges.push_back(makeRangeOf(-20.0F, 100.0F));
  ranges.push_back(makeRangeOf(0.0F, 250.0F));
  ranges.push_back(makeRangeOf(150.0F, 900.0F));
  setRanges(optics, ranges);
}

void setOptics(OpticsList& list, std::vector<OpticsPointer>& optics) {
  OpticsList made;
  moveToArray(optics, made.items, made.count);
  releaseOptics(list);
  list = made;
}

ConfigCali& instance() {
  ConfigCali* calibration = ConfigCali::getInstance();
  if (calibration == nullptr) throw std::bad_alloc();
  return *calibration;
}

void resetModel(ConfigCali& calibration) {
  constexpr std::int32_t kInitialFieldOfView = 30;
  std::vector<OpticsPointer> optics;
  optics.push_back(makeOptics());
  optics.front()->FOV = kInitialFieldOfView;
  setDefaultRanges(*optics.front());

  auto mainSection = std::make_unique<MainSection>();
  auto list = std::make_unique<OpticsList>();
  setOptics(*list, optics);
  releaseModel(calibration);
  calibration.mainSection = mainSection.release();
  calibration.opticsList = list.release();
  calibration.loaded = false;
  calibration.serial = -1;
}

void releaseModel(ConfigCali& calibration) {
  delete calibration.mainSection;
  if (calibration.opticsList != nullptr) releaseOptics(*calibration.opticsList);
  delete calibration.opticsList;
}

}  // namespace cali

ConfigCali* ConfigCali::_this = nullptr;

ConfigCali* ConfigCali::getInstance() {
  if (_this == nullptr) {
    std::unique_ptr<ConfigCali> made(new (std::nothrow) ConfigCali);
    if (made != nullptr && made->opticsList != nullptr) _this = made.release();
  }
  return _this;
}

ConfigCali::ConfigCali() {
  ardo::withoutThrowing([this] { cali::resetModel(*this); });
}

ConfigCali::~ConfigCali() { cali::releaseModel(*this); }

bool ConfigCali::isLoaded(int wanted) const { return loaded && serial == wanted; }
