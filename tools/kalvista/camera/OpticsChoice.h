// Which optics, temperature range and frame rate a camera is to use, held against those that are
// calibrated.
#ifndef KALVISTA_TOOL_OPTICS_CHOICE_H
#define KALVISTA_TOOL_OPTICS_CHOICE_H

#include <kalvista/Cali.h>

#include <optional>
#include <string>
#include <vector>

namespace tool {

struct TemperatureInterval {
  float min = 0;
  float max = 0;
};

// What is not wanted in particular is left to the calibration: its first optics, the first range.
struct WantedOptics {
  std::optional<int> fov;
  std::optional<std::string> text;
  std::optional<TemperatureInterval> range;
  std::optional<float> framerate;
};

struct OpticsChoice {
  int fov = 0;
  std::string text;
  TemperatureInterval range;
  float framerate = 0;
};

enum class ChoicePart { Fov, Text, Range, Framerate };

struct Mismatch {
  ChoicePart part;
  std::string message;  // what is wanted, and what is possible instead
};

struct OpticsSelection {
  OpticsChoice nearest;  // calibrated; what is wanted where that is calibrated
  std::vector<Mismatch> mismatches;
};

// Null when the calibration names no optics.
std::optional<OpticsSelection> selectOptics(const OpticsList& calibrated,
                                            const WantedOptics& wanted);

// "33", "33 macro"
std::string opticsLabel(int fov, const std::string& text);
// "-20 to 100"
std::string intervalText(const TemperatureInterval& interval);

// As one word of a command line.
std::string shellWord(const std::string& text);

// The options of "kalvista config" that make this choice.
std::string optionsText(const OpticsChoice& choice);
// The library's default document with a frame rate that its optics is calibrated for, which need
// not be the library's.
std::string withUsableFramerate(std::string defaultDocument, const OpticsList& calibrated);
// The library's default document with this choice in it.
std::string withChoice(std::string defaultDocument, const OpticsChoice& choice);

}  // namespace tool

#endif  // KALVISTA_TOOL_OPTICS_CHOICE_H
