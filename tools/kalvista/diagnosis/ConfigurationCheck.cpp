#include "diagnosis/ConfigurationCheck.h"

#include <algorithm>
#include <filesystem>

#include "camera/Calibration.h"
#include "camera/OpticsChoice.h"
#include "lint/Lint.h"
#include "machine/Files.h"

namespace tool {
namespace {

struct Offending {
  std::size_t offset;
  ConfigurationFinding finding;
};

// Where the reader finds elements: by their exact tags, outside of comments.
class Places {
 public:
  explicit Places(const std::string& document) {
    Findings ignored;
    view_ = readAsText(document, ignored).view;
  }
  // Of the value, behind the parent's tag; of the root when there is no such element.
  std::size_t valueOf(const std::string& name, const std::string& parent = kRoot) const {
    const std::string tag = "<" + name + ">";
    const std::size_t at = view_.find(tag, view_.find(parent));
    if (at == std::string::npos) return std::min(view_.find(kRoot), view_.size());
    return findInk(view_, at + tag.size(), view_.size());
  }

 private:
  static constexpr auto kRoot = "<imager";

  std::string view_;
};

WantedOptics wantedBy(const ardo::IRDeviceParams& values) {
  WantedOptics wanted;
  const std::string text = values.opticsText != nullptr ? values.opticsText : "";
  if (values.fov != 0) wanted.fov = values.fov;
  if (values.fov != 0 || !text.empty()) wanted.text = text;
  if (values.tMin != 0 || values.tMax != 0) {
    wanted.range = {static_cast<float>(values.tMin), static_cast<float>(values.tMax)};
  }
  wanted.framerate = values.framerate;
  return wanted;
}

class Comparison {
 public:
  Comparison(const CommonOptions& common, const ardo::IRDeviceParams& values,
             ConfigurationCheck& check)
      : common_(common), values_(values), places_(check.document), check_(check) {}

  std::vector<Offending> run(unsigned long wantedSerial) {
    for (const Finding& finding : lint(check_.document)) {
      add(finding.offset, finding.path, finding.message, "mend it by hand");
    }
    const std::vector<unsigned long> calibrated = calibratedSerials(common_.calibrationDir);
    unsigned long serial = wantedSerial != 0 ? wantedSerial : cameraOf(values_);
    if (serial == 0 && calibrated.size() == 1) serial = calibrated.front();
    compareWithCalibration(serial);
    if (check_.serial == 0 && !calibrated.empty()) reportNoCalibration(serial, calibrated);
    if (values_.serial != 0 && values_.serial != serial) {
      add(places_.valueOf("serial"), "imager/serial",
          "names camera " + std::to_string(values_.serial) +
              ", possible: " + std::to_string(serial),
          remedy_.empty() ? commandText(serial, "") : remedy_);
    }
    checkDirectories();
    return offending_;
  }

 private:
  void add(std::size_t offset, const std::string& path, const std::string& message,
           const std::string& remedy, bool isFault = true) {
    offending_.push_back({offset, {path, message, remedy, isFault}});
  }

  // A new file, so that what else stands in the old one is not lost.
  std::string commandText(unsigned long serial, const std::string& options) const {
    return "\"kalvista config " + std::to_string(serial) + options + " -o " +
           shellWord(check_.file == kStandardStream ? "camera.xml" : check_.file + ".new") +
           "\" writes one that fits";
  }

  // The one in the calibration directory, else in the directory that the configuration names.
  std::unique_ptr<ConfigCali> calibrationOf(unsigned long serial) {
    const std::string named = values_.caliPath != nullptr ? values_.caliPath : "";
    for (const std::string& directory : {common_.calibrationDir, named}) {
      // Looked at first: the library makes the directory when there is no such file.
      std::error_code error;
      const std::string path = calibrationXmlPath(directory, serial);
      if (directory.empty() || !std::filesystem::exists(path, error)) continue;
      checkedDirectory_ = directory;
      if (auto calibration = loadCalibration(directory, serial)) return calibration;
    }
    return nullptr;
  }

  void compareWithCalibration(unsigned long serial) {
    const auto calibration = calibrationOf(serial);
    const auto selection = calibration ? selectOptics(*calibration->opticsList, wantedBy(values_))
                                       : std::optional<OpticsSelection>();
    if (!selection) return;
    check_.serial = serial;
    remedy_ = commandText(serial, " " + optionsText(selection->nearest));
    for (const Mismatch& mismatch : selection->mismatches) {
      const auto [offset, path] = placeOf(mismatch.part, selection->nearest);
      add(offset, path, mismatch.message, remedy_);
    }
  }

  void reportNoCalibration(unsigned long serial, const std::vector<unsigned long>& calibrated) {
    const std::string number = std::to_string(serial);
    add(places_.valueOf("serial"), "imager/serial",
        (serial != 0 ? "there is no calibration of camera " + number
                     : std::string("names no camera, and there are several calibrations")) +
            " in " + common_.calibrationDir + ", possible: " + listText(calibrated),
        serial != 0 ? "get it with \"kalvista setup " + number + "\"" : "give a serial number",
        false);
  }

  std::pair<std::size_t, std::string> placeOf(ChoicePart part, const OpticsChoice& nearest) const {
    switch (part) {
      case ChoicePart::Fov:
        return {places_.valueOf("fov"), "imager/fov"};
      case ChoicePart::Text:
        return {places_.valueOf("optics_text"), "imager/optics_text"};
      case ChoicePart::Range:
        break;
      case ChoicePart::Framerate:
        return {places_.valueOf("framerate"), "imager/framerate"};
    }
    const std::string end = nearest.range.min != static_cast<float>(values_.tMin) ? "min" : "max";
    return {places_.valueOf(end, "<temperature>"), "imager/temperature/" + end};
  }

  // The tool has to do with the first one only; an application may bring video formats itself.
  void checkDirectories() {
    checkDirectory("calipath", values_.caliPath, common_.calibrationDir, true);
    checkDirectory("formatspath", values_.formatsPath, common_.formatsDir, false);
  }

  void checkDirectory(const std::string& element, const char* directory,
                      const std::string& possible, bool isFault) {
    if (directory == nullptr) return;
    std::error_code error;
    if (!std::filesystem::is_directory(directory, error)) {
      const bool helps = std::filesystem::is_directory(possible, error);
      add(places_.valueOf(element), "imager/" + element,
          std::string("the directory ") + directory + " does not exist" +
              (helps ? ", possible: " + possible : ""),
          helps && !remedy_.empty() ? "create it, or " + remedy_ : "create it or correct the path",
          isFault);
    } else if (isFault && !checkedDirectory_.empty() &&
               !std::filesystem::equivalent(directory, checkedDirectory_, error)) {
      add(places_.valueOf(element), "imager/" + element,
          std::string("the directory ") + directory + " is another one than " + checkedDirectory_ +
              ", which was checked",
          "correct the path, or give --calibration-dir " + shellWord(directory), false);
    }
  }

  const CommonOptions& common_;
  const ardo::IRDeviceParams& values_;
  const Places places_;
  ConfigurationCheck& check_;
  std::string checkedDirectory_;
  std::string remedy_;
  std::vector<Offending> offending_;
};

// In one walk over the document.
void addPlaced(std::vector<Offending> offending, ConfigurationCheck* check) {
  std::stable_sort(
      offending.begin(), offending.end(),
      [](const Offending& one, const Offending& other) { return one.offset < other.offset; });
  LineCounter lines(check->document);
  for (Offending& one : offending) {
    lines.goTo(one.offset);
    one.finding.line = lines.line();
    one.finding.column = lines.column();
    check->findings.push_back(one.finding);
  }
}

}  // namespace

std::size_t ConfigurationCheck::faultCount() const {
  return static_cast<std::size_t>(
      std::count_if(findings.begin(), findings.end(),
                    [](const ConfigurationFinding& finding) { return finding.isFault; }));
}

ConfigurationCheck checkConfiguration(const CommonOptions& common, unsigned long serial,
                                      const std::string& path, const Configuration& configuration) {
  ConfigurationCheck check;
  check.file = path;
  check.document = configuration.text;
  addPlaced(Comparison(common, configuration.values, check).run(serial), &check);
  return check;
}

std::string sentenceOf(const ConfigurationCheck& check, const ConfigurationFinding& finding) {
  return check.file + ":" + std::to_string(finding.line) + ":" + std::to_string(finding.column) +
         ": " + finding.path + ": " + finding.message;
}

Json documentOf(const ConfigurationCheck& check) {
  Json findings = Json::array();
  for (const ConfigurationFinding& finding : check.findings) {
    findings.push_back({{"line", finding.line},
                        {"column", finding.column},
                        {"path", finding.path},
                        {"message", finding.message},
                        {"remedy", finding.remedy},
                        {"fault", finding.isFault}});
  }
  return {{"file", check.file == kStandardStream ? Json() : Json(check.file)},
          {"calibrated", check.serial != 0 ? Json(check.serial) : Json()},
          {"findings", findings}};
}

std::string problemOf(const ConfigurationCheck& check) {
  const std::size_t count = check.faultCount();
  if (count == 0) return "";
  const auto first = std::find_if(check.findings.begin(), check.findings.end(),
                                  [](const ConfigurationFinding& one) { return one.isFault; });
  return "the configuration has " + countText(count, "fault") + (count == 1 ? ": " : ", first ") +
         sentenceOf(check, *first) + "; " + first->remedy;
}

}  // namespace tool
