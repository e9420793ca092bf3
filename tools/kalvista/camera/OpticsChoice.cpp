#include "camera/OpticsChoice.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "answer/Output.h"

namespace tool {
namespace {

constexpr float kDefaultFramerate = 32;  // of the library's default document

std::string textOf(const OpticsDef& optics) { return optics.Text != nullptr ? optics.Text : ""; }

std::string labelOf(const OpticsDef& optics) { return opticsLabel(optics.FOV, textOf(optics)); }

template <typename Item, typename Describe>
std::string possibleText(Item* const* items, int count, Describe describe) {
  std::string text;
  for (int i = 0; i < count; ++i) text += (text.empty() ? "" : ", ") + describe(*items[i]);
  return ", possible: " + (text.empty() ? "none" : text);
}

template <typename Item, typename Distance>
const Item* nearestItem(Item* const* items, int count, Distance distance) {
  const auto nearest =
      std::min_element(items, items + count, [&distance](const Item* one, const Item* other) {
        return distance(*one) < distance(*other);
      });
  return count > 0 ? *nearest : nullptr;
}

class Selector {
 public:
  Selector(const OpticsList& calibrated, const WantedOptics& wanted)
      : calibrated_(calibrated), wanted_(wanted) {}

  OpticsSelection select() {
    const OpticsDef& optics = selectFromAll();
    selection_.nearest.fov = optics.FOV;
    selection_.nearest.text = textOf(optics);
    const TemperatureRange* range = selectRange(optics);
    if (range != nullptr) selection_.nearest.range = {range->TempLo, range->TempHi};
    selection_.nearest.framerate = selectFramerate(range);
    return selection_;
  }

 private:
  void report(ChoicePart part, const std::string& message) {
    selection_.mismatches.push_back({part, message});
  }

  // The text alone tells an optics, too, when no field of view is wanted.
  const OpticsDef& selectFromAll() {
    const std::string text = wanted_.text.value_or("");
    const auto fits = [this, &text](const OpticsDef& optics) {
      return (!wanted_.fov || optics.FOV == *wanted_.fov) &&
             (!wanted_.text || textOf(optics) == text);
    };
    const auto distance = [this, &text](const OpticsDef& optics) {
      const double degrees = std::abs(double(optics.FOV) - wanted_.fov.value_or(optics.FOV));
      const bool hasOtherText = (wanted_.fov || wanted_.text) && textOf(optics) != text;
      return std::make_pair(degrees, hasOtherText);
    };
    const OpticsDef& nearest = *nearestItem(calibrated_.items, calibrated_.count, distance);
    if (fits(nearest)) return nearest;
    const bool fovIsKnown = wanted_.fov && nearest.FOV == *wanted_.fov;
    const std::string label =
        wanted_.fov ? opticsLabel(*wanted_.fov, text) : "with the text " + text;
    report(!wanted_.fov || fovIsKnown ? ChoicePart::Text : ChoicePart::Fov,
           "the optics " + label + " is not calibrated" +
               possibleText(calibrated_.items, calibrated_.count, labelOf));
    return nearest;
  }

  const TemperatureRange* selectRange(const OpticsDef& optics) {
    const TemperatureInterval wanted = wanted_.range.value_or(TemperatureInterval{});
    const auto distance = [this, &wanted](const TemperatureRange& range) {
      if (!wanted_.range) return 0.0F;
      return std::fabs(range.TempLo - wanted.min) + std::fabs(range.TempHi - wanted.max);
    };
    const TemperatureRange* nearest = nearestItem(optics.ranges, optics.rangeCount, distance);
    if (wanted_.range && (nearest == nullptr || distance(*nearest) != 0)) {
      report(ChoicePart::Range,
             "the range " + intervalText(wanted) + " is not calibrated for the optics " +
                 labelOf(optics) +
                 possibleText(optics.ranges, optics.rangeCount, [](const TemperatureRange& range) {
                   return intervalText({range.TempLo, range.TempHi});
                 }));
    }
    return nearest;
  }

  // A range that lists no frame rates is calibrated for all.
  float selectFramerate(const TemperatureRange* range) {
    const float wanted = wanted_.framerate.value_or(kDefaultFramerate);
    if (range == nullptr || range->framerateCount == 0) return wanted;
    const float nearest = *nearestItem(
        range->framerates, range->framerateCount,
        [wanted](FR framerate) { return std::fabs(static_cast<float>(framerate) - wanted); });
    if (wanted_.framerate && nearest != wanted) {
      report(ChoicePart::Framerate,
             numberText(wanted) + " frames per second are not calibrated for the range " +
                 intervalText({range->TempLo, range->TempHi}) + " of the optics " +
                 opticsLabel(selection_.nearest.fov, selection_.nearest.text) +
                 possibleText(range->framerates, range->framerateCount,
                              [](FR framerate) { return std::to_string(framerate); }));
    }
    return nearest;
  }

  const OpticsList& calibrated_;
  const WantedOptics& wanted_;
  OpticsSelection selection_;
};

std::string element(const std::string& indent, const std::string& name, const std::string& text) {
  return indent + "<" + name + ">" + text + "</" + name + ">\n";
}

void replaceFramerate(std::string* document, float framerate) {
  const std::string_view opening = "<framerate>";
  const std::size_t rate = document->rfind(opening) + opening.size();
  document->replace(rate, document->find('<', rate) - rate, numberText(framerate));
}

bool isPlain(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 ||
         std::string_view("-_.,:/+").find(character) != std::string_view::npos;
}

}  // namespace

std::optional<OpticsSelection> selectOptics(const OpticsList& calibrated,
                                            const WantedOptics& wanted) {
  if (calibrated.count == 0) return std::nullopt;
  return Selector(calibrated, wanted).select();
}

std::string opticsLabel(int fov, const std::string& text) {
  return std::to_string(fov) + (text.empty() ? "" : " " + text);
}

std::string intervalText(const TemperatureInterval& interval) {
  return numberText(interval.min) + " to " + numberText(interval.max);
}

std::string optionsText(const OpticsChoice& choice) {
  return "--fov " + std::to_string(choice.fov) +
         (choice.text.empty() ? "" : " --text " + shellWord(choice.text)) +
         " --range=" + numberText(choice.range.min) + ":" + numberText(choice.range.max) +
         " --framerate " + numberText(choice.framerate);
}

std::string shellWord(const std::string& text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), isPlain)) return text;
  std::string word = "'";
  for (const char character : text) word += character == '\'' ? "'\\''" : std::string(1, character);
  return word + "'";
}

std::string withUsableFramerate(std::string document, const OpticsList& calibrated) {
  const auto selection = selectOptics(calibrated, {});
  if (selection && selection->nearest.framerate != kDefaultFramerate) {
    replaceFramerate(&document, selection->nearest.framerate);
  }
  return document;
}

std::string withChoice(std::string document, const OpticsChoice& choice) {
  // The library writes optics and range as a comment that tells what could be written there.
  const std::size_t begin = document.find("  <!-- Uncomment");
  replaceFramerate(&document, choice.framerate);
  const std::size_t end = document.rfind("  <framerate>");
  std::string chosen = element("  ", "fov", std::to_string(choice.fov));
  if (!choice.text.empty()) chosen += element("  ", "optics_text", choice.text);
  chosen += "  <temperature>\n" + element("    ", "min", numberText(choice.range.min)) +
            element("    ", "max", numberText(choice.range.max)) + "  </temperature>\n";
  return document.replace(begin, end - begin, chosen);
}

}  // namespace tool
