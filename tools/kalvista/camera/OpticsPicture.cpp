#include "camera/OpticsPicture.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "camera/Calibration.h"
#include "camera/OpticsChoice.h"

namespace tool {
namespace {

constexpr double kMostSteps = 10;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::size_t kBarWidth = 48;

struct Interval {
  double min;
  double max;
};

// Null when a limit is no number that can be drawn, such as an infinite one.
std::optional<Interval> intervalOf(const Json& range) {
  if (!range.is_object() || !range["min"].is_number() || !range["max"].is_number()) return {};
  const double min = range["min"];
  const double max = range["max"];
  if (!std::isfinite(min) || !std::isfinite(max)) return {};
  return Interval{std::min(min, max), std::max(min, max)};
}

// What a configuration chooses; what it leaves open is the calibration's first.
struct Configured {
  std::optional<std::size_t> optics;
  std::optional<Interval> range;  // null for the first one
  std::string framerate;
};

Configured configuredBy(const Json& params, const Json& optics) {
  Configured configured;
  if (params.is_null()) return configured;
  const Json& text = params["opticsText"];
  const std::string wantedText = text.is_string() ? text.get<std::string>() : "";
  const bool isOpen = params["fov"] == 0 && wantedText.empty();
  for (std::size_t i = optics.size(); i > 0; --i) {
    const Json& one = optics[i - 1];
    const bool fits = (params["fov"] == 0 || one["fov"] == params["fov"]) &&
                      (isOpen || one["text"] == wantedText);
    if (fits) configured.optics = i - 1;
  }
  if (params["tMin"] != 0 || params["tMax"] != 0) {
    configured.range = intervalOf({{"min", params["tMin"]}, {"max", params["tMax"]}});
  }
  if (params["framerate"].is_number()) configured.framerate = numberText(params["framerate"]);
  return configured;
}

std::string labelOf(const Json& range) {
  const auto text = [](const Json& limit) { return limit.is_number() ? numberText(limit) : "?"; };
  return text(range["min"]) + " to " + text(range["max"]) + " °C";
}

class Painter {
 public:
  Painter(const Json& optics, const Json& params)
      : optics_(optics), configured_(configuredBy(params, optics)), scale_(makeScale()) {}

  CameraPicture paint() const {
    CameraPicture picture{scale_, {}};
    for (std::size_t i = 0; i < optics_.size(); ++i) {
      OpticsPicture one{opticsLabel(optics_[i]["fov"], optics_[i]["text"]), {}};
      for (const Json& range : optics_[i]["ranges"]) one.rows.push_back(rowOf(range));
      if (i == configured_.optics) mark(optics_[i]["ranges"], &one.rows);
      picture.optics.push_back(one);
    }
    return picture;
  }

 private:
  TemperatureScale makeScale() const {
    Interval all{kInfinity, -kInfinity};
    const auto include = [&all](const std::optional<Interval>& interval) {
      const Interval one = interval.value_or(all);
      all = {std::min(all.min, one.min), std::max(all.max, one.max)};
    };
    for (const Json& optics : optics_) {
      for (const Json& range : optics["ranges"]) {
        include(intervalOf(range));
        include(intervalOf(range["extended"]));
      }
    }
    if (configured_.optics) include(configured_.range);
    return all.min <= all.max ? TemperatureScale(all.min, all.max) : TemperatureScale(0, 1);
  }

  std::optional<Bar> barOf(const std::optional<Interval>& interval) const {
    if (!interval) return {};
    return Bar{scale_.fractionOf(interval->min), scale_.fractionOf(interval->max)};
  }

  PictureRow rowOf(const Json& range) const {
    return {labelOf(range),
            frameratesText(range),
            range["framerates"].size(),
            barOf(intervalOf(range)),
            barOf(intervalOf(range["extended"])),
            {},
            ""};
  }

  // A range that is not calibrated gets a row of its own.
  void mark(const Json& ranges, std::vector<PictureRow>* rows) const {
    for (std::size_t i = 0; i < rows->size(); ++i) {
      const auto interval = intervalOf(ranges[i]);
      const bool fits =
          !configured_.range || (interval && interval->min == configured_.range->min &&
                                 interval->max == configured_.range->max);
      if (!fits) continue;
      (*rows)[i].configured = (*rows)[i].calibrated;
      (*rows)[i].note = "configured at " + configured_.framerate;
      return;
    }
    if (!configured_.range) return;
    const Json range = {{"min", configured_.range->min}, {"max", configured_.range->max}};
    rows->push_back({labelOf(range),
                     configured_.framerate,
                     1,
                     {},
                     {},
                     barOf(configured_.range),
                     "configured, but not calibrated"});
  }

  const Json& optics_;
  const Configured configured_;
  const TemperatureScale scale_;
};

// A temperature range is never too short to be seen.
void fill(const std::optional<Bar>& bar, const std::string& block,
          std::vector<std::string>* cells) {
  if (!bar) return;
  const auto cellOf = [](double fraction) {
    return std::min(kBarWidth, static_cast<std::size_t>(std::lround(fraction * kBarWidth)));
  };
  const std::size_t begin = std::min(cellOf(bar->begin), kBarWidth - 1);
  const std::size_t end = std::max(cellOf(bar->end), begin + 1);
  std::fill(cells->begin() + static_cast<std::ptrdiff_t>(begin),
            cells->begin() + static_cast<std::ptrdiff_t>(end), block);
}

std::string barText(const PictureRow& row) {
  std::vector<std::string> cells(kBarWidth, "·");
  if (!row.calibrated) fill(row.configured, "?", &cells);
  fill(row.extended, "░", &cells);
  fill(row.calibrated, "█", &cells);
  std::string text;
  for (const std::string& cell : cells) text += cell;
  return text;
}

// Each number begins below its place, the last one ends there.
std::string axisText(const TemperatureScale& scale) {
  std::string axis;
  for (const double tick : scale.ticks()) {
    const std::string number = numberText(static_cast<float>(tick));
    const auto place = static_cast<std::size_t>(std::lround(scale.fractionOf(tick) * kBarWidth));
    const std::size_t begin = std::min(place, kBarWidth - std::min(kBarWidth, number.size()));
    if (!axis.empty() && begin <= axis.size()) continue;
    axis += std::string(begin - axis.size(), ' ') + number;
  }
  return axis + " °C";
}

double stepFor(double span) {
  double step = std::pow(10.0, std::floor(std::log10(span / kMostSteps)));
  for (const double factor : {2.0, 2.5, 2.0}) {
    if (span / step > kMostSteps) step *= factor;
  }
  return step;
}

}  // namespace

TemperatureScale::TemperatureScale(double lowest, double highest)
    : step_(stepFor(std::max(highest - lowest, 1.0))),
      begin_(std::floor(lowest / step_) * step_),
      end_(std::max(std::ceil(highest / step_) * step_, begin_ + step_)) {}

std::vector<double> TemperatureScale::ticks() const {
  std::vector<double> result;
  const auto count = std::lround((end_ - begin_) / step_);
  for (long i = 0; i <= count; ++i) result.push_back(begin_ + static_cast<double>(i) * step_);
  return result;
}

CameraPicture pictureOf(const Json& optics, const Json& params) {
  return Painter(optics, params).paint();
}

std::string chartText(const CameraPicture& picture) {
  Table table;
  for (const OpticsPicture& optics : picture.optics) {
    table.add({optics.label});
    for (const PictureRow& row : optics.rows) {
      std::vector<std::string> cells = {"  " + row.label, barText(row), row.framerates};
      if (!row.note.empty()) cells.push_back(row.note);
      table.add(cells);
    }
    table.add({"", axisText(picture.scale)});
    if (&optics != &picture.optics.back()) table.add({});
  }
  return table.text();
}

}  // namespace tool
