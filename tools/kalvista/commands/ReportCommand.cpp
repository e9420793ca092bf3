#include <string_view>

#include "camera/Configuration.h"
#include "commands/Commands.h"
#include "machine/Files.h"
#include "report/Page.h"
#include "report/Report.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  std::string configuration;
  std::string file;
  bool full = false;
  bool force = false;
};

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial);
  addPath(app, "--config", own.configuration,
          "Show this device configuration file as well, with what is wrong in it");
  addPathOrStream(app, "-o,--output", own.file,
                  "Write to FILE instead of standard output, which is - as well; as data when its "
                  "name ends with .json");
  app.add_flag("--full", own.full, "Tell user names and home directories, too");
  app.add_flag("--force", own.force, "Overwrite FILE when it exists");
}

bool isNameOfData(std::string_view path) {
  constexpr std::string_view kEnd = ".json";
  return path.size() >= kEnd.size() && path.substr(path.size() - kEnd.size()) == kEnd;
}

// A report of what is wrong is a report all the same.
Answer run(const CommonOptions& common, const OwnOptions& own) {
  const bool toFile = !own.file.empty() && own.file != kStandardStream;
  Answer answer;
  answer.document = reportOn(common, own.serial, own.configuration, own.full);
  answer.document["file"] = Json();
  if (!toFile) {
    if (!common.json) answer.text = pageOf(answer.document);
    return answer;
  }
  writeDocument(own.file,
                isNameOfData(own.file) ? jsonText(completeDocument("report", answer))
                                       : pageOf(answer.document),
                own.force);
  answer.document["file"] = own.file;
  answer.text = "The report is written to " + own.file + ".\n";
  return answer;
}

}  // namespace

Command reportCommand() {
  return makeCommand("report", "Write all about a camera and this machine on one page, to mail it",
                     "kalvista report 12345678 --config camera.xml -o report.html", declare, run);
}

}  // namespace tool
