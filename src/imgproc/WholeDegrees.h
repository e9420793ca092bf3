// Temperatures cut to whole degrees.
#ifndef KALVISTA_IMGPROC_WHOLE_DEGREES_H
#define KALVISTA_IMGPROC_WHOLE_DEGREES_H

#include <cmath>
#include <cstdint>
#include <limits>

namespace cali {

// Cut toward zero; what an integer cannot hold is clamped, NaN counts as 0.
inline std::int32_t wholeDegrees(float temperature) {
  constexpr float kBeyondLargest = 2147483648.0F;
  if (std::isnan(temperature)) return 0;
  if (temperature >= kBeyondLargest) return std::numeric_limits<std::int32_t>::max();
  if (temperature <= -kBeyondLargest) return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(temperature);
}

}  // namespace cali

#endif  // KALVISTA_IMGPROC_WHOLE_DEGREES_H
