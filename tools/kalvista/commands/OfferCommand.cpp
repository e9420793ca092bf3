// What this machine knows that fits at a place of the command line, for the completions of the
// shells.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>

#include "answer/Console.h"
#include "camera/Calibration.h"
#include "commands/Commands.h"
#include "commands/Completions.h"
#include "machine/Paths.h"
#include "machine/Usb.h"

namespace tool {
namespace {

using Texts = std::vector<std::string>;

struct OwnOptions {
  const CLI::App* tool = nullptr;
  std::string kind;
  Texts words;
  std::filesystem::path workingDirectory;  // from which the words are seen
};

// What the words typed so far say.
struct Typed {
  std::string serial;
  std::string calibrationDir;
  std::string fov;
};

std::set<std::string> optionsWithValues(const CLI::App& tool) {
  std::vector<const CLI::App*> apps = listedCommands(tool);
  apps.push_back(&tool);
  std::set<std::string> names;
  for (const CLI::App* app : apps) {
    for (const CLI::Option* option : namedOptions(*app)) {
      if (!takesValue(*option)) continue;
      for (const std::string& name : spellings(*option)) names.insert(name);
    }
  }
  return names;
}

bool isNumber(const std::string& word) {
  return !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
}

// As the shell would have made it before the command ran.
std::string pathOf(const OwnOptions& own, const std::string& word) {
  const char* const home = std::getenv("HOME");
  if (home != nullptr && word.compare(0, 2, "~/") == 0) return home + word.substr(1);
  return absolutePath(own.workingDirectory / word);
}

// Some shells give "--option=value" as three words.
Typed read(const OwnOptions& own, const std::string& defaultDir) {
  const std::set<std::string> withValues = optionsWithValues(*own.tool);
  Typed typed{"", defaultDir, ""};
  std::string option;
  for (const std::string& word : own.words) {
    if (word == "=") continue;
    const std::size_t equals = word.compare(0, 2, "--") == 0 ? word.find('=') : std::string::npos;
    const bool isValue = equals != std::string::npos || withValues.count(option) != 0;
    const std::string name = equals != std::string::npos ? word.substr(0, equals) : option;
    const std::string value = equals != std::string::npos ? word.substr(equals + 1) : word;
    if (isValue && name == "--calibration-dir") typed.calibrationDir = pathOf(own, value);
    if (isValue && name == "--fov") typed.fov = value;
    if (!isValue && typed.serial.empty() && isNumber(word)) typed.serial = word;
    option = isValue ? "" : word;
  }
  return typed;
}

Texts serials(const Typed& typed) {
  if (!typed.serial.empty()) return {};
  std::vector<unsigned long> known = calibratedSerials(typed.calibrationDir);
  try {
    const auto attached = usableSerials(readUsbDevices().cameras);
    known.insert(known.end(), attached.begin(), attached.end());
  } catch (const Failure&) {
    // Without USB none is attached.
  }
  Texts texts;
  for (const unsigned long serial : std::set<unsigned long>(known.begin(), known.end())) {
    texts.push_back(std::to_string(serial));
  }
  return texts;
}

std::string plain(const Json& value) {
  return value.is_string() ? value.get<std::string>() : numberText(value.get<float>());
}

// What stands in the calibration, each once, in its order.
Texts calibrated(const Typed& typed, const std::string& kind) {
  Texts texts;
  if (typed.serial.empty() || typed.serial.size() > 10) return texts;
  const auto add = [&texts](const std::string& text) {
    const bool isNew = std::find(texts.begin(), texts.end(), text) == texts.end();
    if (isNew && !text.empty() && printable(text) == text) texts.push_back(text);
  };
  const auto calibration = loadCalibration(typed.calibrationDir, std::stoul(typed.serial));
  if (calibration == nullptr) return texts;
  for (const Json& optics : opticsDocument(*calibration)) {
    if (!typed.fov.empty() && kind != "DEGREES" && plain(optics["fov"]) != typed.fov) continue;
    if (kind == "DEGREES") add(plain(optics["fov"]));
    if (kind == "TEXT") add(plain(optics["text"]));
    for (const Json& range : optics["ranges"]) {
      if (kind == "RANGE") add(plain(range["min"]) + ":" + plain(range["max"]));
      if (kind != "RATE") continue;
      for (const Json& rate : range["framerates"]) add(plain(rate));
    }
  }
  return texts;
}

void declare(CLI::App& app, OwnOptions& own) {
  app.group("");
  own.tool = app.get_parent();
  app.add_option("KIND", own.kind, "SERIAL, or the type of an option's value")->required();
  app.add_option("WORDS", own.words, "The command line so far, behind --")
      ->each([&own](const std::string&) {
        std::error_code error;
        own.workingDirectory = std::filesystem::current_path(error);
      });
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  const Typed typed = read(own, common.calibrationDir);
  Answer answer;
  answer.document["offers"] = Json::array();
  for (const std::string& text :
       own.kind == "SERIAL" ? serials(typed) : calibrated(typed, own.kind)) {
    answer.document["offers"].push_back(text);
    answer.text += text + "\n";
  }
  return answer;
}

}  // namespace

Command offerCommand() {
  return makeCommand("offer", "List what fits at a place of the command line",
                     "kalvista offer SERIAL -- check", declare, run);
}

}  // namespace tool
