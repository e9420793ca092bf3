#include "acquisition/Downloader.h"

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <vector>

#include "answer/Failure.h"
#include "machine/Files.h"
#include "machine/Paths.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDownloader = "wget";
constexpr const char* kStagingLink = "/staging";
constexpr const char* kTemporaryFolder = "/tmp";  // where the library keeps the links document, too
constexpr mode_t kOwnerOnly = 0700;
constexpr int kCommandNotFound = 127;
constexpr timespec kLookInterval{0, 200000000};

// Few, since each pass of a download tries again.
constexpr const char* kTries = "--tries=3";

std::string searchPath() {
  const char* value = std::getenv("PATH");
  return value != nullptr ? value : "/usr/bin:/bin";
}

// The file that the arguments name for the result; null when they name none.
char** findTarget(char** arguments) {
  for (char** argument = arguments; *argument != nullptr; ++argument) {
    if (std::string_view(*argument) == "-O" && argument[1] != nullptr) return argument + 1;
  }
  return nullptr;
}

// The tool reads what the downloader prints. The command interpreter between them outlives the
// tool, and so would the downloader.
bool hasToolEnded() {
  pollfd output{STDOUT_FILENO, 0, 0};
  return poll(&output, 1, 0) > 0 && (output.revents & POLLERR) != 0;
}

int runRealDownloader(const std::vector<char*>& arguments) {
  sigset_t childEnds;
  sigset_t original;
  sigemptyset(&childEnds);
  sigaddset(&childEnds, SIGCHLD);
  sigprocmask(SIG_BLOCK, &childEnds, &original);
  const pid_t child = fork();
  if (child < 0) return EXIT_FAILURE;
  if (child == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    sigprocmask(SIG_SETMASK, &original, nullptr);
    execvp(kDownloader, arguments.data());
    _exit(kCommandNotFound);
  }
  int status = 0;
  while (waitpid(child, &status, WNOHANG) == 0) {
    sigtimedwait(&childEnds, nullptr, &kLookInterval);
    if (hasToolEnded()) kill(child, SIGKILL);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
}

}  // namespace

DownloaderStandIn::DownloaderStandIn(const std::string& stagingFolder)
    : folder_(workName(kTemporaryFolder, "downloader")) {
  clearLeftovers(kTemporaryFolder);
  std::error_code error;
  fs::remove_all(folder_, error);  // of an earlier process with our number
  if (mkdir(folder_.c_str(), kOwnerOnly) == 0) {
    fs::create_symlink(fs::read_symlink("/proc/self/exe"), folder_ + "/" + kDownloader, error);
    if (!error) fs::create_directory_symlink(stagingFolder, folder_ + kStagingLink, error);
  } else {
    error.assign(errno, std::generic_category());
  }
  if (!error) return;
  throw Failure(ExitCode::CouldNot,
                "the folder " + folder_ + " cannot be made: " + error.message() +
                    "; check permissions and free space of " + kTemporaryFolder);
}

DownloaderStandIn::~DownloaderStandIn() {
  std::error_code error;
  fs::remove_all(folder_, error);
}

void DownloaderStandIn::takeOver() const {
  setenv("PATH", (folder_ + ":" + searchPath()).c_str(), 1);
}

bool isCalledAsDownloader(const char* programName) {
  return programName != nullptr && fs::path(programName).filename() == kDownloader;
}

int runDownloader(char** arguments) {
  const std::string path = searchPath();
  const std::string ownFolder = path.substr(0, path.find(':'));
  setenv("PATH", path.substr(ownFolder.size() + 1).c_str(), 1);

  std::string target;
  std::string unfinished;
  std::error_code error;
  const fs::path staging = fs::read_symlink(ownFolder + kStagingLink, error);
  if (char** named = findTarget(arguments); named != nullptr && parentOf(*named) == staging) {
    target = *named;
    unfinished = target + ".part";
    *named = unfinished.data();
  }
  std::string tries = kTries;
  std::vector<char*> realArguments = {arguments[0], tries.data()};
  for (char** argument = arguments + 1; *argument != nullptr; ++argument) {
    realArguments.push_back(*argument);
  }
  realArguments.push_back(nullptr);
  const int status = runRealDownloader(realArguments);
  if (!target.empty() && status == EXIT_SUCCESS) std::rename(unfinished.c_str(), target.c_str());
  return status;
}

}  // namespace tool
