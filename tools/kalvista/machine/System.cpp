#include "machine/System.h"

#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <thread>

namespace tool {
namespace {

std::string distributionName() {
  constexpr std::string_view kKey = "PRETTY_NAME=";
  std::ifstream release("/etc/os-release");
  for (std::string line; std::getline(release, line);) {
    if (line.compare(0, kKey.size(), kKey) != 0) continue;
    line.erase(0, kKey.size());
    line.erase(std::remove(line.begin(), line.end(), '"'), line.end());
    return line;
  }
  return "";
}

void addTo(std::vector<std::string>* texts, const char* text) {
  if (text == nullptr || *text == '\0') return;
  if (std::find(texts->begin(), texts->end(), text) == texts->end()) texts->emplace_back(text);
}

void addAccount(User* user, const passwd* account) {
  if (account == nullptr) return;
  addTo(&user->names, account->pw_name);
  addTo(&user->homes, account->pw_dir);
}

}  // namespace

System thisSystem() {
  System system;
  system.distribution = distributionName();
  utsname names{};
  if (uname(&names) == 0) {
    system.kernel = std::string(names.sysname) + " " + names.release;
    system.processor = names.machine;
  }
  system.processors = std::thread::hardware_concurrency();
  return system;
}

User thisUser() {
  User user;
  user.isRoot = geteuid() == 0;
  addAccount(&user, getpwuid(getuid()));
  for (const char* variable : {"USER", "LOGNAME", "SUDO_USER"}) {
    const char* name = std::getenv(variable);
    if (name == nullptr) continue;
    addTo(&user.names, name);
    addAccount(&user, getpwnam(name));
  }
  addTo(&user.homes, std::getenv("HOME"));
  // Where a home is a link, paths may be given either way.
  for (const std::string& home : std::vector<std::string>(user.homes)) {
    std::error_code error;
    addTo(&user.homes, std::filesystem::canonical(home, error).c_str());
  }
  return user;
}

}  // namespace tool
