#include "acquisition/FolderRepository.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "acquisition/Progress.h"
#include "answer/Console.h"
#include "answer/Output.h"
#include "camera/Calibration.h"
#include "machine/Interruption.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

bool beginsWith(const std::string& name, const std::string& beginning) {
  return name.compare(0, beginning.size(), beginning) == 0;
}

// Some space is kept for root.
std::uintmax_t freeBytes(const std::string& folder) {
  struct statvfs system {};
  statvfs(folder.c_str(), &system);
  if (system.f_blocks == 0) return UINTMAX_MAX;  // it has no limit, or does not tell
  return (geteuid() == 0 ? system.f_bfree : system.f_bavail) *
         static_cast<std::uintmax_t>(system.f_frsize);
}

[[noreturn]] void failForSpace(std::uintmax_t needed, const std::string& folder) {
  throw Failure(ExitCode::CouldNot, "no space is left for the files: " + bytesText(needed) +
                                        " are needed, and " + bytesText(freeBytes(folder)) +
                                        " are free; make room and try again");
}

Delivery failed(const std::string& name, ExitCode exitCode, const std::string& problem,
                const std::string& remedy) {
  return {name, Delivery::State::Failed, exitCode, problem, remedy};
}

}  // namespace

FolderRepository::FolderRepository(const std::string& folder) : folder_(folder) {
  std::error_code error;
  truePath_ = fs::canonical(folder, error).string();
  fs::recursive_directory_iterator entries(truePath_, fs::directory_options::skip_permission_denied,
                                           error);
  for (; !error && entries != fs::recursive_directory_iterator(); entries.increment(error)) {
    throwIfInterrupted();
    const std::string name = entries->path().filename().string();
    if (!beginsWith(name, "Cali-") && !beginsWith(name, "Kennlinie-")) continue;
    std::error_code ignored;
    if (!entries->is_directory(ignored)) paths_[name].push_back(entries->path().string());
  }
  for (auto& [name, paths] : paths_) std::sort(paths.begin(), paths.end());
  if (!error) return;
  throw Failure(ExitCode::CouldNot, "the repository " + folder + " cannot be searched: " +
                                        error.message() + "; check it, or name a part of it");
}

std::vector<std::string> FolderRepository::namesOf(unsigned long serial) {
  const std::string number = std::to_string(serial);
  std::vector<std::string> names;
  const std::string xml = calibrationXmlName(serial);
  if (paths_.count(xml) != 0) names.push_back(xml);
  for (const std::string& beginning : {"Cali-" + number + "-", "Kennlinie-" + number + "-"}) {
    for (auto path = paths_.lower_bound(beginning);
         path != paths_.end() && beginsWith(path->first, beginning); ++path) {
      names.push_back(path->first);
    }
  }
  return names;
}

// At the least: of files that are present it is not known yet whether they differ.
std::uintmax_t FolderRepository::bytesNeeded(const std::vector<WantedFile>& wanted) const {
  std::uintmax_t needed = 0;
  for (const WantedFile& file : wanted) {
    const auto found = paths_.find(file.name);
    struct stat status {};
    if (found == paths_.end() || !file.present.empty()) continue;
    if (stat(found->second.front().c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
      needed += static_cast<std::uintmax_t>(status.st_size);
    }
  }
  return needed;
}

std::vector<Delivery> FolderRepository::bring(unsigned long, const std::vector<WantedFile>& wanted,
                                              const WorkFolder& work) {
  const std::uintmax_t needed = bytesNeeded(wanted);
  if (needed > freeBytes(work.path())) failForSpace(needed, work.path());
  std::vector<Delivery> deliveries;
  Progress progress(wanted.size());
  std::uintmax_t bytes = 0;
  for (const WantedFile& file : wanted) {
    throwIfInterrupted();
    progress.show(deliveries.size(), bytes);
    SourceFile source;
    deliveries.push_back(find(file, &source));
    if (deliveries.back().state != Delivery::State::Brought) continue;
    const Descriptor target = createFile(work.pathOf(file.name));
    const int reason = target.isOpen() ? copyContent(source, target) : errno;
    bytes += source.size;
    if (reason == 0) continue;
    if (isDiskFull(reason)) failForSpace(std::max(needed, source.size), work.path());
    const std::string cause =
        reason == kSizeChanged ? "it changed while it was copied" : std::strerror(reason);
    deliveries.back() =
        failed(file.name, ExitCode::CouldNot, paths_.at(file.name).front() + ": " + cause,
               "check the disks, and try again");
  }
  return deliveries;
}

// Gives Brought, and the opened file, when it is to be copied.
Delivery FolderRepository::find(const WantedFile& wanted, SourceFile* source) const {
  const auto found = paths_.find(wanted.name);
  if (found == paths_.end()) {
    return {wanted.name, Delivery::State::Absent, ExitCode::AnswerIsNo,
            folder_ + ": it holds no such file, or only where this user may not enter",
            "look for it elsewhere"};
  }
  const std::vector<std::string>& paths = found->second;
  *source = openInside(truePath_, paths.front());
  if (!source->problem.empty()) {
    return failed(wanted.name, ExitCode::CouldNot, source->problem, "mend the repository");
  }
  for (auto path = paths.begin() + 1; path != paths.end(); ++path) {
    const SourceFile other = openInside(truePath_, *path);
    if (haveSameContent(*source, other)) continue;
    return failed(wanted.name, ExitCode::AnswerIsNo,
                  paths.front() + " and " + *path + ": they have one name and differ",
                  "take away the one that does not hold, or name the folder of the other");
  }
  const bool isSame = haveSameContent(*source, openInside("/", wanted.present));
  return {wanted.name, isSame ? Delivery::State::Same : Delivery::State::Brought, ExitCode::Done,
          "", ""};
}

}  // namespace tool
