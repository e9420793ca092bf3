#include "report/Picture.h"

#include "camera/OpticsPicture.h"

namespace tool {
namespace {

constexpr int kTextHeight = 18;
constexpr int kBarHeight = 12;
constexpr int kRowHeight = 42;
constexpr int kAxisHeight = 24;
constexpr std::size_t kMostCharacters = 24;  // of frame rates, beside a range on a narrow screen

std::string percent(double fraction) {
  constexpr double kPercent = 100;
  return numberText(static_cast<float>(fraction * kPercent)) + "%";
}

void addBar(Json* bars, const char* kind, const std::optional<Bar>& bar, int top) {
  if (!bar) return;
  bars->push_back({{"kind", kind},
                   {"x", percent(bar->begin)},
                   {"width", percent(bar->end - bar->begin)},
                   {"y", top},
                   {"height", kBarHeight}});
}

std::string shortFramerates(const PictureRow& row) {
  if (row.framerateCount == 0) return "any frame rate";
  if (row.framerates.size() <= kMostCharacters) return row.framerates + " per second";
  return countText(row.framerateCount, "frame rate");
}

Json rowOf(const PictureRow& row, int* top) {
  Json bars = Json::array();
  const int barTop = *top + kTextHeight + kBarHeight / 2;
  addBar(&bars, "extended", row.extended, barTop);
  addBar(&bars, "calibrated", row.calibrated, barTop);
  addBar(&bars, "configured", row.configured, barTop);
  Json result = {{"label", row.label},
                 {"framerates", shortFramerates(row)},
                 {"textY", *top + kTextHeight},
                 {"bars", bars},
                 {"note", row.note.empty() ? Json() : Json(row.note)},
                 {"noteY", *top + kRowHeight + kTextHeight / 2}};
  *top += row.note.empty() ? kRowHeight : kRowHeight + kTextHeight;
  return result;
}

Json ticksOf(const TemperatureScale& scale) {
  Json ticks = Json::array();
  const std::vector<double> places = scale.ticks();
  for (std::size_t i = 0; i < places.size(); ++i) {
    const bool isLast = i + 1 == places.size();
    ticks.push_back({{"x", percent(scale.fractionOf(places[i]))},
                     {"label", numberText(static_cast<float>(places[i]))},
                     {"anchor", i == 0   ? "start"
                                : isLast ? "end"
                                         : "middle"},
                     {"minor", i % 2 == 1 && !isLast}});
  }
  return ticks;
}

std::string descriptionOf(const OpticsPicture& optics) {
  std::string text;
  for (const PictureRow& row : optics.rows) {
    text += row.label + ", frame rates " + row.framerates +
            (row.note.empty() ? "" : ", " + row.note) + ". ";
  }
  return text;
}

}  // namespace

Json picturesOf(const Json& report) {
  const Json& optics = report["calibration"]["optics"];
  const Json& configuration = report["configuration"];
  const CameraPicture picture =
      pictureOf(optics, configuration.is_null() ? Json() : configuration["params"]);
  Json pictures = Json::array();
  for (std::size_t i = 0; i < picture.optics.size(); ++i) {
    const OpticsPicture& one = picture.optics[i];
    Json rows = Json::array();
    int top = 0;
    for (const PictureRow& row : one.rows) rows.push_back(rowOf(row, &top));
    pictures.push_back({{"id", i},
                        {"label", one.label},
                        {"description", descriptionOf(one)},
                        {"rows", rows},
                        {"ticks", ticksOf(picture.scale)},
                        {"bottom", top + 4},
                        {"axisY", top + kTextHeight},
                        {"height", top + kAxisHeight}});
  }
  return pictures;
}

}  // namespace tool
