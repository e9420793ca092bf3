#include "camera/Calibration.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

#include "answer/Console.h"

namespace tool {
namespace {

constexpr int kNameCapacity = 260;
constexpr float kNotExtended = -100.0F;  // the model's value of a limit that the file does not give

CalibrationFile lookAt(const std::string& directory, const std::string& name) {
  CalibrationFile file{name, directory + "/" + name};
  struct stat status {};
  if (stat(file.path.c_str(), &status) != 0) {
    if (errno != ENOENT && errno != ENOTDIR) file.state = FileState::Unreadable;
    return file;
  }
  file.size = static_cast<std::uintmax_t>(status.st_size);
  if (!S_ISREG(status.st_mode) || access(file.path.c_str(), R_OK) != 0) {
    file.state = FileState::Unreadable;
  } else {
    file.state = file.size == 0 ? FileState::Empty : FileState::Present;
  }
  return file;
}

// The files of one optics, range and frame rate, in the library's order and with its names.
std::vector<std::string> dataFileNames(ConfigCali& calibration, const OpticsDef& definition,
                                       OPTICS* optics, Range* range, unsigned short framerate) {
  char base[kNameCapacity] = "";
  calibration.caliFilenameString(calibration.serial, optics->FOV, optics->Text, range, framerate,
                                 base, kNameCapacity);
  std::vector<std::string> names = {"Cali-" + std::string(base) + ".dat"};
  if (!definition.SamplePointCali) names.push_back("Kennlinie-" + std::string(base) + ".prn");
  return names;
}

std::vector<std::string> requiredDataFiles(ConfigCali& calibration) {
  std::vector<std::string> names;
  for (int i = 0; i < calibration.getOpticsCount(); ++i) {
    const std::unique_ptr<OPTICS> optics(calibration.getOptics(i));
    for (int j = 0; j < calibration.getTempRangeCount(optics.get()); ++j) {
      const std::unique_ptr<Range> range(calibration.getTempRange(optics.get(), j));
      const int rates = calibration.getFramerateCount(optics.get(), range.get());
      // A range without frame rates has one set of files, of no rate in particular.
      for (int k = 0; k < std::max(rates, 1); ++k) {
        const auto added =
            dataFileNames(calibration, *calibration.opticsList->items[i], optics.get(), range.get(),
                          calibration.getFramerate(optics.get(), range.get(), k));
        names.insert(names.end(), added.begin(), added.end());
      }
    }
  }
  return names;
}

std::vector<CalibrationFile> filesInState(const CalibrationStatus& status, FileState state) {
  std::vector<CalibrationFile> result;
  std::copy_if(status.files.begin(), status.files.end(), std::back_inserter(result),
               [state](const CalibrationFile& file) { return file.state == state; });
  return result;
}

Json rangeDocument(const TemperatureRange& range) {
  Json framerates = Json::array();
  for (int i = 0; i < range.framerateCount; ++i) framerates.push_back(*range.framerates[i]);
  Json extended;
  if (range.TempLoExt != kNotExtended || range.TempHiExt != kNotExtended) {
    extended = {{"min", range.TempLoExt}, {"max", range.TempHiExt}};
  }
  return {{"min", range.TempLo},
          {"max", range.TempHi},
          {"extended", extended},
          {"decimals", range.Decimal},
          {"framerates", framerates}};
}

std::string intervalText(const Json& interval) {
  if (interval.is_null()) return "-";
  return numberText(interval["min"]) + " to " + numberText(interval["max"]);
}

std::string listText(const Json& numbers) {
  std::string text;
  for (const Json& number : numbers) text += (text.empty() ? "" : ", ") + number.dump();
  return text.empty() ? "any" : text;
}

}  // namespace

std::string stateText(FileState state) {
  switch (state) {
    case FileState::Present:
      return "present";
    case FileState::Missing:
      return "missing";
    case FileState::Empty:
      return "empty";
    case FileState::Unreadable:
      break;
  }
  return "unreadable";
}

std::vector<CalibrationFile> CalibrationStatus::lacking() const {
  std::vector<CalibrationFile> result;
  std::copy_if(files.begin(), files.end(), std::back_inserter(result),
               [](const CalibrationFile& file) { return file.state != FileState::Present; });
  return result;
}

std::string calibrationXmlName(unsigned long serial) {
  return "Cali-" + std::to_string(serial) + ".xml";
}

std::string calibrationXmlPath(const std::string& directory, unsigned long serial) {
  return directory + "/" + calibrationXmlName(serial);
}

std::unique_ptr<ConfigCali> loadCalibration(const std::string& directory, unsigned long serial) {
  auto calibration = std::make_unique<ConfigCali>();
  if (calibration->load(directory.c_str(), static_cast<int>(serial)) != 0) return nullptr;
  return calibration;
}

CalibrationStatus inspectCalibration(const std::string& directory, unsigned long serial) {
  CalibrationStatus status;
  status.files.push_back(lookAt(directory, calibrationXmlName(serial)));
  CalibrationFile& xml = status.files.front();
  if (xml.state != FileState::Present) return status;
  const auto calibration = loadCalibration(directory, serial);
  if (!calibration) {
    xml.state = FileState::Unreadable;
    return status;
  }
  for (const std::string& name : requiredDataFiles(*calibration)) {
    status.files.push_back(lookAt(directory, name));
  }
  return status;
}

std::vector<std::string> namesOf(const std::vector<CalibrationFile>& files) {
  std::vector<std::string> names(files.size());
  std::transform(files.begin(), files.end(), names.begin(),
                 [](const CalibrationFile& file) { return file.name; });
  return names;
}

std::string lackText(const CalibrationStatus& status, const std::string& directory,
                     unsigned long serial) {
  const std::vector<CalibrationFile> lacking = status.lacking();
  if (lacking.empty()) return "";
  const std::string number = std::to_string(serial);
  const std::string which = lacking.size() == 1
                                ? "the file " + lacking.front().name + " of camera " + number +
                                      " is " + stateText(lacking.front().state)
                                : countText(lacking.size(), "file") + " of the " +
                                      std::to_string(status.files.size()) + " of camera " + number +
                                      " are missing, empty or unreadable";
  return which + " in " + directory + "; get what is missing with \"kalvista copy " + number +
         " REPOSITORY\" or \"kalvista download " + number + "\"";
}

Answer answerOf(const CalibrationStatus& status, const std::string& directory,
                unsigned long serial) {
  Answer answer;
  answer.document["serial"] = serial;
  answer.document["calibrationDir"] = directory;
  answer.document["complete"] = status.complete();
  for (const FileState state : {FileState::Missing, FileState::Empty, FileState::Unreadable}) {
    answer.document[stateText(state)] = namesOf(filesInState(status, state));
  }
  for (const CalibrationFile& file : status.lacking()) {
    const bool missing = file.state == FileState::Missing;
    answer.text +=
        printable(file.name) + (missing ? "" : " (" + stateText(file.state) + ")") + "\n";
  }
  answer.problem = lackText(status, directory, serial);
  if (!status.complete()) answer.exitCode = ExitCode::AnswerIsNo;
  return answer;
}

Json opticsDocument(const ConfigCali& calibration) {
  Json list = Json::array();
  for (int i = 0; i < calibration.opticsList->count; ++i) {
    const OpticsDef& definition = *calibration.opticsList->items[i];
    Json ranges = Json::array();
    for (int j = 0; j < definition.rangeCount; ++j) {
      ranges.push_back(rangeDocument(*definition.ranges[j]));
    }
    list.push_back({{"fov", definition.FOV},
                    {"text", definition.Text != nullptr ? definition.Text : ""},
                    {"serialNumber", definition.SerNo},
                    {"ranges", ranges}});
  }
  return list;
}

std::string opticsTable(const Json& optics) {
  Table table({"FOV", "TEXT", "RANGE", "EXTENDED", "DECIMALS", "FRAME RATES"});
  for (const Json& definition : optics) {
    const std::string fov = definition["fov"].dump();
    const std::string named = definition["text"];
    const std::string text = named.empty() ? "-" : named;
    if (definition["ranges"].empty()) table.add({fov, text, "none"});
    for (const Json& range : definition["ranges"]) {
      table.add({fov, text, intervalText(range), intervalText(range["extended"]),
                 range["decimals"].dump(), listText(range["framerates"])});
    }
  }
  return table.text();
}

}  // namespace tool
