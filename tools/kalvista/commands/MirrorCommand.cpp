#include <algorithm>
#include <sstream>

#include "acquisition/Address.h"
#include "acquisition/FolderRepository.h"
#include "acquisition/Mirror.h"
#include "acquisition/WebRepository.h"
#include "commands/Commands.h"
#include "commands/WebOptions.h"
#include "machine/Files.h"
#include "machine/Paths.h"

namespace tool {
namespace {

struct OwnOptions {
  std::string directory;
  std::string serials;
  std::vector<std::string> folders;
  std::string address;
  WebOptions web;
};

// The folders of cameras are added to it, and the library keeps 260 characters of a directory.
constexpr std::size_t kLongestDirectory = 180;

// The library would not hand such an address to its downloader.
std::string checkAddress(const std::string& text) {
  const bool isUsable = isWebAddress(text) && text.find_first_of("\"'`$\\<>&\r\n") == text.npos;
  return isUsable
             ? ""
             : "the address " + shownAddress(text) + " is not one that a links document can hold";
}

void declare(CLI::App& app, OwnOptions& own) {
  addPath(app, "DIR", own.directory, "Directory that holds the mirror, and that a server serves")
      ->required();
  addPathOrStream(app, "--serials", own.serials,
                  "File with the serial numbers of the cameras, one a line; - is standard input")
      ->required();
  app.add_option_function<std::vector<std::string>>(
         "--from",
         [&own](const std::vector<std::string>& paths) {
           std::transform(paths.begin(), paths.end(), std::back_inserter(own.folders),
                          absolutePath);
         },
         "Copy from this folder instead of fetching; may be given several times")
      ->type_name("REPOSITORY")
      ->allow_extra_args(false);
  app.add_option("--address", own.address,
                 "Where the server serves DIR; writes a links document that says so")
      ->type_name("URL")
      ->check(CLI::Validator(checkAddress, ""));
  addWebOptions(app, own.web);
}

// Blank lines, and what follows a "#", are for people.
std::vector<unsigned long> readSerials(const std::string& path) {
  if (path != kStandardStream) requireFileReadable(path, "list of serial numbers");
  std::istringstream lines(path == kStandardStream ? readStandardInput() : readFile(path));
  std::vector<unsigned long> serials;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    for (std::string word; words >> word;) serials.push_back(parseSerial(word));
  }
  if (!serials.empty()) return serials;
  throw Failure(ExitCode::WrongUsage, "the list of serial numbers " + path +
                                          " is empty; write one number a line into it");
}

std::vector<std::unique_ptr<Repository>> sourcesOf(const OwnOptions& own) {
  std::vector<std::unique_ptr<Repository>> sources;
  for (const std::string& folder : own.folders) {
    requireDirectory(folder, "repository");
    sources.push_back(std::make_unique<FolderRepository>(folder));
  }
  if (sources.empty()) {
    sources.push_back(std::make_unique<WebRepository>(limitsOf(own.web), own.web.mirror));
  }
  return sources;
}

std::string problemText(const Mirror& mirror, std::size_t wanted) {
  const auto& failures = mirror.failures();
  std::string text =
      "camera " + std::to_string(failures.front().serial) + ": " + failures.front().problem;
  if (failures.size() > 1) {
    text = std::to_string(failures.size()) + " of " + countText(wanted, "camera") +
           " could not be mirrored, such as " + text;
  }
  return text +
         (mirror.isHopeless() ? "; the rest was not tried, run the same again to go on" : "");
}

Answer answerOf(const Mirror& mirror, const OwnOptions& own, std::size_t wanted) {
  Answer answer;
  answer.document["directory"] = own.directory;
  answer.document["cameras"] = wanted;
  answer.document["complete"] = mirror.complete();
  answer.document["files"] = mirror.files();
  answer.document["filesChanged"] = mirror.changed();
  answer.document["changed"] = mirror.changed() > 0;
  answer.document["failed"] = Json::array();
  for (const MirrorFailure& failure : mirror.failures()) {
    answer.document["failed"].push_back({{"serial", failure.serial}, {"problem", failure.problem}});
    answer.exitCode = std::max(answer.exitCode, failure.exitCode);
  }
  answer.text = "The mirror " + own.directory + " holds " + countText(mirror.complete(), "camera") +
                " of " + std::to_string(wanted) + ": " + countText(mirror.files(), "file") + " (" +
                (mirror.changed() == 0 ? "nothing had to be changed"
                                       : std::to_string(mirror.changed()) + " added or replaced") +
                ").\n";
  if (!mirror.failures().empty()) answer.problem = problemText(mirror, wanted);
  return answer;
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  requireDirectory(own.directory, "directory of the mirror");
  if (own.directory.size() > kLongestDirectory) {
    throw Failure(ExitCode::WrongUsage, "the directory " + own.directory + " is longer than " +
                                            std::to_string(kLongestDirectory) +
                                            " characters; give a shorter path or a link");
  }
  const std::vector<unsigned long> serials = readSerials(own.serials);
  Mirror mirror(common, own.directory, sourcesOf(own));
  for (const unsigned long serial : serials) {
    if (!mirror.isHopeless()) mirror.bring(serial);
  }
  const std::string links = own.address.empty() ? "" : mirror.provideLinks(own.address);
  Answer answer = answerOf(mirror, own, serials.size());
  answer.document["linksDocument"] = textOrNull(links);
  return answer;
}

}  // namespace

Command mirrorCommand() {
  return makeCommand("mirror", "Bring the calibrations of many cameras together for a web server",
                     "kalvista mirror /srv/calibration --serials serials.txt --from /media/usb",
                     declare, run);
}

}  // namespace tool
