#include "camera/Calibration.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "answer/Console.h"
#include "camera/Seal.h"

namespace tool {
namespace {

constexpr int kNameCapacity = 260;
// The model's value of an extended limit that the file does not give.
constexpr float kNotExtended = -100.0F;

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
void addDataFiles(const ConfigCali& calibration, const OpticsDef& optics,
                  const TemperatureRange& range, FR framerate, std::vector<std::string>& names) {
  char base[kNameCapacity] = "";
  calibration.caliFilenameString(calibration.serial, optics.FOV, optics.Text, range.TempLo,
                                 range.TempHi, framerate, base, kNameCapacity);
  names.push_back("Cali-" + std::string(base) + ".dat");
  if (!optics.SamplePointCali) names.push_back("Kennlinie-" + std::string(base) + ".prn");
}

// `listed` is the first optics of the same key, as a query finds it; likewise with the ranges. No
// key finds a range with an end that is no number.
void addFilesOf(const ConfigCali& calibration, const OpticsDef& optics, const OpticsDef& listed,
                std::vector<std::string>& names) {
  std::map<std::pair<float, float>, const TemperatureRange*> firstOfEnds;
  for (int j = 0; j < listed.rangeCount; ++j) {
    const TemperatureRange& range = *listed.ranges[j];
    const bool found = !std::isnan(range.TempLo) && !std::isnan(range.TempHi);
    const TemperatureRange& first =
        found ? *firstOfEnds.emplace(std::pair(range.TempLo, range.TempHi), &range).first->second
              : range;
    const int rates = found ? first.framerateCount : 0;
    // A range without frame rates has one set of files, of no rate in particular.
    if (rates <= 0) addDataFiles(calibration, optics, range, 0, names);
    for (int k = 0; k < rates; ++k) {
      addDataFiles(calibration, optics, range, *first.framerates[k], names);
    }
  }
}

std::vector<std::string> requiredDataFiles(const ConfigCali& calibration) {
  std::vector<std::string> names;
  std::map<std::pair<int, std::string_view>, const OpticsDef*> firstOfKey;
  for (int i = 0; i < calibration.opticsList->count; ++i) {
    const OpticsDef& optics = *calibration.opticsList->items[i];
    const std::string_view text = optics.Text != nullptr ? optics.Text : "";
    const auto first = firstOfKey.emplace(std::pair(optics.FOV, text), &optics).first;
    addFilesOf(calibration, optics, *first->second, names);
  }
  return names;
}

void holdAgainst(const Seal& seal, const std::string& directory, unsigned long serial,
                 CalibrationStatus* status) {
  bool covered = true;
  for (CalibrationFile& file : status->files) {
    covered = covered && (seal.covers(file.name) || file.state != FileState::Present);
    if (file.state == FileState::Present && !seal.holds(directory, file.name)) {
      file.state = FileState::Damaged;
    }
  }
  if (seal.isWhole() && covered) return;
  status->files.push_back(lookAt(directory, sealName(serial)));
  status->files.back().state = FileState::Damaged;
}

std::vector<CalibrationFile> filesInState(const CalibrationStatus& status, FileState state) {
  std::vector<CalibrationFile> result;
  std::copy_if(status.files.begin(), status.files.end(), std::back_inserter(result),
               [state](const CalibrationFile& file) { return file.state == state; });
  return result;
}

// An extended range reaches to the range's own limit where only the other one is extended.
Json rangeDocument(const TemperatureRange& range) {
  Json framerates = Json::array();
  for (int i = 0; i < range.framerateCount; ++i) framerates.push_back(*range.framerates[i]);
  const bool isLowGiven = range.TempLoExt != kNotExtended;
  const bool isHighGiven = range.TempHiExt != kNotExtended;
  Json extended;
  if (isLowGiven || isHighGiven) {
    extended = {{"min", isLowGiven ? range.TempLoExt : range.TempLo},
                {"max", isHighGiven ? range.TempHiExt : range.TempHi}};
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

}  // namespace

std::string stateText(FileState state) {
  switch (state) {
    case FileState::Present:
      return "present";
    case FileState::Missing:
      return "missing";
    case FileState::Empty:
      return "empty";
    case FileState::Damaged:
      return "damaged";
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

std::vector<unsigned long> calibratedSerials(const std::string& directory) {
  std::vector<unsigned long> serials;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
    const std::string name = entry.path().filename();
    const unsigned long serial = std::strtoul(&name[name.find('-') + 1], nullptr, 10);
    if (serial != 0 && name == calibrationXmlName(serial)) serials.push_back(serial);
  }
  std::sort(serials.begin(), serials.end());
  return serials;
}

std::unique_ptr<ConfigCali> loadCalibration(const std::string& directory, unsigned long serial) {
  auto calibration = std::make_unique<ConfigCali>();
  if (calibration->load(directory.c_str(), static_cast<int>(serial)) != 0) return nullptr;
  return calibration;
}

CalibrationStatus lookAtCalibration(const std::string& directory, unsigned long serial) {
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

CalibrationStatus inspectCalibration(const std::string& directory, unsigned long serial) {
  CalibrationStatus status = lookAtCalibration(directory, serial);
  const Seal seal = Seal::read(directory, serial);
  if (seal.exists()) holdAgainst(seal, directory, serial, &status);
  return status;
}

std::vector<std::string> requiredNames(const std::string& directory, unsigned long serial) {
  const auto calibration = loadCalibration(directory, serial);
  if (!calibration) return {};
  std::vector<std::string> names = requiredDataFiles(*calibration);
  names.insert(names.begin(), calibrationXmlName(serial));
  return names;
}

std::vector<std::string> namesOf(const std::vector<CalibrationFile>& files) {
  std::vector<std::string> names(files.size());
  std::transform(files.begin(), files.end(), names.begin(),
                 [](const CalibrationFile& file) { return file.name; });
  return names;
}

Json documentsOf(const std::vector<CalibrationFile>& files) {
  Json documents = Json::array();
  for (const CalibrationFile& file : files) {
    documents.push_back({{"name", file.name},
                         {"path", file.path},
                         {"size", file.size},
                         {"state", stateText(file.state)}});
  }
  return documents;
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
                                      " are missing, empty, unreadable or damaged";
  return which + " in " + directory + "; get what is missing with \"kalvista copy " + number +
         " REPOSITORY\" or \"kalvista download " + number + "\"";
}

Answer answerOf(const CalibrationStatus& status, const std::string& directory,
                unsigned long serial) {
  Answer answer;
  answer.document["serial"] = serial;
  answer.document["calibrationDir"] = directory;
  answer.document["complete"] = status.complete();
  for (const FileState state :
       {FileState::Missing, FileState::Empty, FileState::Unreadable, FileState::Damaged}) {
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

std::string frameratesText(const Json& range) {
  std::string text;
  for (const Json& framerate : range["framerates"]) {
    text += (text.empty() ? "" : ", ") + framerate.dump();
  }
  return text.empty() ? "any" : text;
}

std::vector<OpticsRow> opticsRows(const Json& optics) {
  std::vector<OpticsRow> rows;
  for (const Json& definition : optics) {
    const std::string fov = definition["fov"].dump();
    const std::string named = definition["text"];
    const std::string text = named.empty() ? "-" : named;
    if (definition["ranges"].empty()) rows.push_back({fov, text, "none", "", "", ""});
    for (const Json& range : definition["ranges"]) {
      rows.push_back({fov, text, intervalText(range), intervalText(range["extended"]),
                      range["decimals"].dump(), frameratesText(range)});
    }
  }
  return rows;
}

std::string opticsTable(const Json& optics) {
  Table table({"FOV", "TEXT", "RANGE", "EXTENDED", "DECIMALS", "FRAME RATES"});
  for (const OpticsRow& row : opticsRows(optics)) {
    table.add({row.fov, row.text, row.range, row.extended, row.decimals, row.framerates});
  }
  return table.text();
}

}  // namespace tool
