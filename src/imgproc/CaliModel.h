// Making and releasing the records of the calibration model.
#ifndef KALVISTA_IMGPROC_CALI_MODEL_H
#define KALVISTA_IMGPROC_CALI_MODEL_H

#include <kalvista/Cali.h>

#include <memory>
#include <vector>

namespace cali {

struct RecordDeleter {
  void operator()(TemperatureRange* range) const;
  void operator()(OpticsDef* optics) const;
};

using RangePointer = std::unique_ptr<TemperatureRange, RecordDeleter>;
using OpticsPointer = std::unique_ptr<OpticsDef, RecordDeleter>;

// A range with table parameters at their defaults and no frame rates.
RangePointer makeRange();
// An optics without ranges.
OpticsPointer makeOptics();

void setFramerates(TemperatureRange& range, const std::vector<FR>& framerates);
void setRanges(OpticsDef& optics, std::vector<RangePointer>& ranges);
// Gives an optics the three ranges that it has until a file says otherwise.
void setDefaultRanges(OpticsDef& optics);
void setOptics(OpticsList& list, std::vector<OpticsPointer>& optics);

// The one instance; throws without memory for it.
ConfigCali& instance();

// Brings a calibration to its initial state, releasing what it holds. Without memory for that it
// stays as it was.
void resetModel(ConfigCali& calibration);
void releaseModel(ConfigCali& calibration);

}  // namespace cali

#endif  // KALVISTA_IMGPROC_CALI_MODEL_H
