// What the machine offers to a download.
#ifndef KALVISTA_TOOL_MACHINE_H
#define KALVISTA_TOOL_MACHINE_H

#include <cstddef>

namespace tool {

// Default routes that are up, of IPv4 and IPv6.
std::size_t countDefaultRoutes();

}  // namespace tool

#endif  // KALVISTA_TOOL_MACHINE_H
