// This machine and its user, as somebody far away needs to know them.
#ifndef KALVISTA_TOOL_SYSTEM_H
#define KALVISTA_TOOL_SYSTEM_H

#include <string>
#include <vector>

namespace tool {

struct System {
  std::string distribution;  // "Debian GNU/Linux 12 (bookworm)"; empty when the system does not say
  std::string kernel;        // "Linux 6.1.0"
  std::string processor;     // "x86_64"
  unsigned processors = 0;
};
System thisSystem();

struct User {
  bool isRoot = false;
  std::vector<std::string> names;  // of the account, and of the one that became root
  std::vector<std::string> homes;
};
User thisUser();

}  // namespace tool

#endif  // KALVISTA_TOOL_SYSTEM_H
