// All that the tool can tell about a camera, for somebody who is not at the machine.
#ifndef KALVISTA_TOOL_REPORT_H
#define KALVISTA_TOOL_REPORT_H

#include <string>

#include "answer/Output.h"
#include "machine/CommonOptions.h"

namespace tool {

// `serial` is 0 for the camera that is attached or that the configuration names; `configuration` is
// empty for none. With `full` false it tells nothing of the user.
Json reportOn(const CommonOptions& common, unsigned long serial, const std::string& configuration,
              bool full);

}  // namespace tool

#endif  // KALVISTA_TOOL_REPORT_H
