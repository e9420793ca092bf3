// What the machine offers to a download.
#ifndef KALVISTA_TOOL_MACHINE_H
#define KALVISTA_TOOL_MACHINE_H

#include <cstddef>

namespace tool {

// IPv4 default routes that are up.
std::size_t countDefaultRoutes();

}  // namespace tool

#endif  // KALVISTA_TOOL_MACHINE_H
