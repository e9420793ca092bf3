#include "machine/Machine.h"

#include <net/route.h>

#include <fstream>
#include <limits>
#include <string>

namespace tool {

std::size_t countDefaultRoutes() {
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
    if (destination == 0 && mask == 0 && (flags & RTF_UP) != 0) ++count;
    table.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  return count;
}

}  // namespace tool
