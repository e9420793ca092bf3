#include <kalvista/version.h>

#include "commands/Commands.h"

namespace tool {
namespace {

struct OwnOptions {};

void declare(CLI::App&, OwnOptions&) {}

// The tool's version is that of the library.
std::string versionNumber() {
  return std::to_string(KALVISTA_VERSION_MAJOR) + "." + std::to_string(KALVISTA_VERSION_MINOR) +
         "." + std::to_string(KALVISTA_VERSION_PATCH);
}

Answer run(const CommonOptions&, const OwnOptions&) {
  Answer answer;
  answer.document["version"] = versionNumber();
  answer.text = versionText() + "\n";
  return answer;
}

}  // namespace

std::string versionText() { return "kalvista " + versionNumber(); }

Command versionCommand() {
  return makeCommand("version", "Show the version", "kalvista version --json", declare, run);
}

}  // namespace tool
