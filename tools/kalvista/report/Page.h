// A report as one page that needs nothing beside itself: no script, no address.
#ifndef KALVISTA_TOOL_PAGE_H
#define KALVISTA_TOOL_PAGE_H

#include <string>

#include "answer/Output.h"

namespace tool {

std::string pageOf(const Json& report);

}  // namespace tool

#endif  // KALVISTA_TOOL_PAGE_H
