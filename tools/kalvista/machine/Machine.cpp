#include "machine/Machine.h"

#include <net/route.h>

#include <fstream>
#include <limits>
#include <string>

namespace tool {
namespace {

// One that leads nowhere is listed as well.
bool isUsable(unsigned flags) { return (flags & RTF_UP) != 0 && (flags & RTF_REJECT) == 0; }

std::size_t countDefaultRoutes4() {
  std::ifstream table("/proc/net/route");
  table.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  std::size_t count = 0;
  std::string interface;
  unsigned long destination = 0;
  unsigned long gateway = 0;
  unsigned flags = 0;
  unsigned long rest = 0;
  unsigned long mask = 0;
  while (table >> interface >> std::hex >> destination >> gateway >> flags >> rest >> rest >>
         rest >> mask) {
    if (destination == 0 && mask == 0 && isUsable(flags)) ++count;
    table.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  return count;
}

// The kernel keeps an unreachable one on the loopback where there is none.
std::size_t countDefaultRoutes6() {
  std::ifstream table("/proc/net/ipv6_route");
  std::size_t count = 0;
  std::string destination;
  std::string rest;
  std::string interface;
  unsigned length = 0;
  unsigned flags = 0;
  while (table >> destination >> std::hex >> length >> rest >> rest >> rest >> rest >> rest >>
         rest >> flags >> interface) {
    const bool isDefault = length == 0 && destination.find_first_not_of('0') == std::string::npos;
    if (isDefault && isUsable(flags)) ++count;
  }
  return count;
}

}  // namespace

std::size_t countDefaultRoutes() { return countDefaultRoutes4() + countDefaultRoutes6(); }

}  // namespace tool
