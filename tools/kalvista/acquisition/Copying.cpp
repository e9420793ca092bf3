// The way from a folder, by the library's copy command.
#include <kalvista/IRCalibrationManager.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <set>

#include "acquisition/Acquisition.h"
#include "acquisition/Staging.h"
#include "answer/Console.h"
#include "machine/Files.h"
#include "machine/Paths.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

// Sizes of the files of a camera that a repository holds, by name: a name may stand there twice.
using Sources = std::map<std::string, std::set<std::uintmax_t>>;

// While it lives, what is written to standard output goes to standard error: the library prints
// the command there, where the answer belongs.
class StandardOutputDiversion {
 public:
  StandardOutputDiversion() : original_(dup(STDOUT_FILENO)) { dup2(STDERR_FILENO, STDOUT_FILENO); }
  ~StandardOutputDiversion() { dup2(original_.number(), STDOUT_FILENO); }
  StandardOutputDiversion(const StandardOutputDiversion&) = delete;
  StandardOutputDiversion& operator=(const StandardOutputDiversion&) = delete;

 private:
  Descriptor original_;
};

// The copy command brings files of cameras whose numbers begin with the same digits as well.
bool belongsToCamera(const std::string& name, unsigned long serial) {
  const std::string number = std::to_string(serial);
  return name == calibrationXmlName(serial) || name.rfind("Cali-" + number + "-", 0) == 0 ||
         name.rfind("Kennlinie-" + number + "-", 0) == 0;
}

Sources findSources(const std::string& repository, unsigned long serial) {
  Sources sources;
  std::error_code error;
  fs::recursive_directory_iterator entries(repository,
                                           fs::directory_options::skip_permission_denied, error);
  for (; !error && entries != fs::recursive_directory_iterator(); entries.increment(error)) {
    std::error_code sizeError;
    const std::string name = entries->path().filename().string();
    if (!belongsToCamera(name, serial) || !entries->is_regular_file(sizeError)) continue;
    sources[name].insert(entries->file_size(sizeError));
  }
  return sources;
}

void runCopyCommand(const Staging& staging, const CommonOptions& common, unsigned long serial,
                    const std::string& repository) {
  const auto manager = ardo::IRCalibrationManager::getInstance();
  const StandardOutputDiversion diversion;
  manager->setCalibrationDir(staging.path().c_str());
  manager->copyCalibrationFromLocalRepo(serial, repository);
  manager->setCalibrationDir(common.calibrationDir.c_str());
}

// Names that arrived with the size of a source; the rest was cut short or did not arrive.
std::vector<std::string> arrivedWhole(const Staging& staging, const Sources& sources) {
  std::vector<std::string> names;
  for (const auto& [name, sizes] : sources) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(staging.pathOf(name), error);
    if (!error && sizes.count(size) != 0) names.push_back(name);
  }
  return names;
}

}  // namespace

Acquisition copyFromRepository(const CommonOptions& common, unsigned long serial,
                               const std::string& repository) {
  refuseShellCharacters(repository, "repository");
  requireDirectory(repository, "repository");
  requireWorkableCalibrationDir(common);
  for (const char* program : {"find", "cp"}) requireProgram(program);

  note("copying the files of camera " + std::to_string(serial) + " from " + repository);
  const Sources sources = findSources(repository, serial);
  if (sources.empty()) {
    warn("the repository " + repository + " holds no file of camera " + std::to_string(serial) +
         ", or only in folders that this user may not enter");
  }
  Staging staging(common.calibrationDir, serial);
  // find goes into a link only when its name ends like a directory's.
  runCopyCommand(staging, common, serial,
                 fs::is_symlink(repository) ? repository + "/" : repository);
  const std::vector<std::string> whole = arrivedWhole(staging, sources);
  Acquisition result;
  result.installed = staging.install(whole);
  result.status = inspectCalibration(common.calibrationDir, serial);
  if (whole.size() < sources.size()) {
    throw Failure(ExitCode::CouldNot, countText(sources.size() - whole.size(), "file") +
                                          " of the repository " + repository +
                                          " could not be copied whole to " + common.calibrationDir +
                                          "; check free space and permissions and copy again");
  }
  return result;
}

}  // namespace tool
