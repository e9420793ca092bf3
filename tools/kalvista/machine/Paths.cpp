#include "machine/Paths.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "answer/Failure.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

}  // namespace

std::string absolutePath(const std::string& path) {
  std::error_code error;
  const fs::path full = fs::absolute(path, error);
  if (error) {
    throw Failure(ExitCode::CouldNot, "the path " + path + " leads from a working directory that " +
                                          "is not there any more: " + error.message() +
                                          "; change to another one, or give paths from /");
  }
  fs::path result("/");
  for (const fs::path& component : full.relative_path()) {
    if (!component.empty() && component != ".") result /= component;
  }
  return result.string();
}

std::string parentOf(const std::string& path) { return fs::path(path).parent_path().string(); }

void requireDirectory(const std::string& path, const std::string& what) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  const bool isDirectory = fs::is_directory(status);
  if (isDirectory && access(path.c_str(), X_OK) == 0) return;
  if (isDirectory) error.assign(errno, std::generic_category());
  if (isDirectory || !fs::status_known(status)) {
    throw Failure(ExitCode::CouldNot, "the " + what + " " + path + " cannot be entered: " +
                                          error.message() + "; check the permissions on the way");
  }
  throw Failure(ExitCode::CouldNot,
                "the " + what + " " + path +
                    (fs::exists(status)
                         ? " is not a directory; check the path"
                         : " does not exist; check the path or make it: mkdir -p '" + path + "'"));
}

void requireFileReadable(const std::string& path, const std::string& what) {
  std::error_code error;
  if (access(path.c_str(), R_OK) != 0) {
    throw Failure(ExitCode::CouldNot, "the " + what + " " + path + " cannot be read: " +
                                          std::strerror(errno) + "; check the path");
  }
  if (!fs::is_regular_file(path, error)) {
    throw Failure(ExitCode::CouldNot,
                  "the " + what + " " + path + " is not a file; give the path of a file");
  }
}

bool mayWrite(const std::string& directory) { return access(directory.c_str(), W_OK | X_OK) == 0; }

std::string userConfigurationDir() {
  const auto absoluteFrom = [](const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr && *value == '/' ? std::string(value) : "";
  };
  std::string directory = absoluteFrom("XDG_CONFIG_HOME");
  if (directory.empty() && !absoluteFrom("HOME").empty()) {
    directory = absoluteFrom("HOME") + "/.config";
  }
  return directory.empty() ? "" : absolutePath(directory + "/kalvista");
}

}  // namespace tool
