#include "acquisition/Mirror.h"

#include <algorithm>
#include <filesystem>

#include "acquisition/Acquisition.h"
#include "acquisition/Address.h"
#include "camera/Seal.h"
#include "machine/Files.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kMostInVain = 3;

std::string makeFolder(const std::string& directory, unsigned long serial) {
  std::string folder = directory + "/" + folderOf(serial);
  std::error_code error;
  fs::create_directories(folder, error);
  if (!error) return folder;
  throw Failure(ExitCode::CouldNot, "the folder " + folder + " cannot be made: " + error.message() +
                                        "; check permissions and free space");
}

std::string linksDocument(const std::string& address) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<DownloadLinks>\n  <Imager>\n"
         "    <CaliData>\n      <Links>\n        <string>" +
         address + "</string>\n      </Links>\n    </CaliData>\n  </Imager>\n</DownloadLinks>\n";
}

bool writeWhenOther(const std::string& path, const std::string& content) {
  if (readFile(path) == content) return false;
  writeFileWhole(path, content, true);
  return true;
}

}  // namespace

Mirror::Mirror(CommonOptions common, std::string directory,
               std::vector<std::unique_ptr<Repository>> sources)
    : common_(std::move(common)), directory_(std::move(directory)), sources_(std::move(sources)) {}

bool Mirror::isHopeless() const { return inVain_ >= kMostInVain; }

void Mirror::bring(unsigned long serial) {
  try {
    bringInto(makeFolder(directory_, serial), serial);
    inVain_ = 0;
  } catch (const Failure& failure) {
    failures_.push_back({serial, failure.exitCode(), failure.what()});
    inVain_ = failure.exitCode() == ExitCode::CouldNot ? inVain_ + 1 : 0;
  }
}

void Mirror::bringInto(const std::string& folder, unsigned long serial) {
  common_.calibrationDir = folder;
  const Acquisition acquisition = acquire(common_, serial, sourceOf(serial), Differing::Replace);
  changed_ += acquisition.installed.size();
  if (acquisition.exitCode != ExitCode::Done) {
    throw Failure(acquisition.exitCode, acquisition.problem);
  }
  if (!acquisition.status.complete()) {
    throw Failure(ExitCode::AnswerIsNo, lackText(acquisition.status, folder, serial));
  }
  seal(folder, serial, namesOf(acquisition.status.files));
  ++complete_;
  files_ += acquisition.status.files.size() + 1;
}

void Mirror::seal(const std::string& folder, unsigned long serial,
                  const std::vector<std::string>& names) {
  if (Seal::read(folder, serial).exists()) return;  // it came along, and holds
  writeFileWhole(folder + "/" + sealName(serial), Seal::of(folder, names).text(), true);
  ++changed_;
}

Repository& Mirror::sourceOf(unsigned long serial) {
  const auto found = std::find_if(sources_.begin(), sources_.end(), [&](const auto& source) {
    const std::vector<std::string> names = source->namesOf(serial);
    return std::find(names.begin(), names.end(), calibrationXmlName(serial)) != names.end();
  });
  return found != sources_.end() ? **found : *sources_.front();
}

std::string Mirror::provideLinks(const std::string& address) {
  std::string path = directory_ + "/downloadlinks.xml";
  changed_ += writeWhenOther(path, linksDocument(address)) ? 1 : 0;
  return path;
}

}  // namespace tool
