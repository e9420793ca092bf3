// The way from a folder, by the library's copy command.
#include <kalvista/IRCalibrationManager.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <vector>

#include "acquisition/Acquisition.h"
#include "acquisition/Staging.h"
#include "answer/Console.h"
#include "machine/Files.h"
#include "machine/Paths.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

// Where the files of a camera lie in a repository, by name: a name may stand there twice.
using Sources = std::map<std::string, std::vector<fs::path>>;

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

// The copy command takes whatever has such a name.
bool isTakenByCommand(const std::string& name, unsigned long serial) {
  const std::string number = std::to_string(serial);
  return name.rfind("Cali-" + number, 0) == 0 || name.rfind("Kennlinie-" + number, 0) == 0;
}

// It would wait for a pipe, fill the disk from a device, and bring, for root, whatever a link
// names.
void refuseForeignFile(const fs::directory_entry& entry, const fs::path& root) {
  std::error_code error;
  const std::string target = fs::canonical(entry.path(), error).string();
  const std::string inside = (root / "").string();
  const bool isInside = target.compare(0, inside.size(), inside) == 0;
  if (!error && isInside && fs::is_regular_file(target, error)) return;
  throw Failure(ExitCode::CouldNot,
                "the file " + entry.path().string() +
                    " is no regular file of the repository, nor a link to one; take it away");
}

// Which of two calibrations holds is not to be told by the order of a directory.
void refuseAmbiguity(const Sources& sources) {
  for (const auto& [name, paths] : sources) {
    for (const fs::path& path : paths) {
      if (readFile(path.string()) == readFile(paths.front().string())) continue;
      throw Failure(
          ExitCode::AnswerIsNo,
          "the files " + paths.front().string() + " and " + path.string() +
              " have one name and differ; take one away, or name the folder of the other");
    }
  }
}

Sources findSources(const std::string& repository, unsigned long serial) {
  Sources sources;
  std::error_code error;
  const fs::path root = fs::canonical(repository, error);
  fs::recursive_directory_iterator entries(repository,
                                           fs::directory_options::skip_permission_denied, error);
  for (; !error && entries != fs::recursive_directory_iterator(); entries.increment(error)) {
    const std::string name = entries->path().filename().string();
    std::error_code statusError;
    if (!isTakenByCommand(name, serial) || entries->is_directory(statusError)) continue;
    refuseForeignFile(*entries, root);
    if (belongsToCamera(name, serial)) sources[name].push_back(entries->path());
  }
  refuseAmbiguity(sources);
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

// Names that arrived with the size of their source; the rest was cut short or did not arrive.
std::vector<std::string> arrivedWhole(const Staging& staging, const Sources& sources) {
  std::vector<std::string> names;
  for (const auto& [name, paths] : sources) {
    std::error_code error;
    std::error_code sourceError;
    const std::uintmax_t size = fs::file_size(staging.pathOf(name), error);
    const std::uintmax_t sourceSize = fs::file_size(paths.front(), sourceError);
    if (!error && !sourceError && size == sourceSize) names.push_back(name);
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
