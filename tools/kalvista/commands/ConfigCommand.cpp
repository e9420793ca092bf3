#include "camera/Configuration.h"
#include "commands/Commands.h"
#include "machine/Files.h"

namespace tool {
namespace {

struct OwnOptions {
  unsigned long serial = 0;
  std::string file;
  bool force = false;
};

void declare(CLI::App& app, OwnOptions& own) {
  addSerial(app, own.serial)->required();
  addPathOrStream(app, "-o,--output", own.file,
                  "Write to FILE instead of standard output, which is - as well");
  app.add_flag("--force", own.force, "Overwrite FILE when it exists with another content");
}

Answer run(const CommonOptions& common, const OwnOptions& own) {
  const std::string document = defaultDocument(common, own.serial);
  const bool toFile = !own.file.empty() && own.file != kStandardStream;
  Answer answer;
  answer.document["serial"] = own.serial;
  answer.document["configuration"] = document;
  answer.document["file"] = toFile ? Json(own.file) : Json();
  answer.document["changed"] = false;
  answer.text = document;
  if (toFile) {
    const bool written = writeDocument(own.file, document, own.force);
    answer.document["changed"] = written;
    answer.text = "The configuration of camera " + std::to_string(own.serial) +
                  (written ? " is written to " : " stands already in ") + own.file + ".\n";
  }
  return answer;
}

}  // namespace

Command configCommand() {
  return makeCommand("config", "Write a default device configuration",
                     "kalvista config 12345678 -o camera.xml", declare, run);
}

}  // namespace tool
