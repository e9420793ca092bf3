// The temperature ranges of a camera's optics as bars on one scale in °C.
#ifndef KALVISTA_TOOL_OPTICS_PICTURE_H
#define KALVISTA_TOOL_OPTICS_PICTURE_H

#include <optional>
#include <string>
#include <vector>

#include "answer/Output.h"

namespace tool {

// From round number to round number, around all temperatures.
class TemperatureScale {
 public:
  TemperatureScale(double lowest, double highest);
  std::vector<double> ticks() const;
  double fractionOf(double temperature) const { return (temperature - begin_) / (end_ - begin_); }

 private:
  double step_;
  double begin_;
  double end_;
};

struct Bar {
  double begin;  // fractions of the scale
  double end;
};

struct PictureRow {
  std::string label;           // such as -20 to 100 °C
  std::string framerates;      // such as 27, 32, 80
  std::size_t framerateCount;  // 0 for any
  std::optional<Bar> calibrated;
  std::optional<Bar> extended;
  std::optional<Bar> configured;
  std::string note;  // what is configured; empty for other ranges
};

struct OpticsPicture {
  std::string label;  // such as 33 macro
  std::vector<PictureRow> rows;
};

struct CameraPicture {
  TemperatureScale scale;
  std::vector<OpticsPicture> optics;
};

// `optics` as in the answers of the tool; `params` are the values of a configuration, or null.
CameraPicture pictureOf(const Json& optics, const Json& params);

std::string chartText(const CameraPicture& picture);

}  // namespace tool

#endif  // KALVISTA_TOOL_OPTICS_PICTURE_H
