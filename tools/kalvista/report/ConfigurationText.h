// A device configuration as a page shows it: its lines, with what is wrong marked in them.
#ifndef KALVISTA_TOOL_CONFIGURATION_TEXT_H
#define KALVISTA_TOOL_CONFIGURATION_TEXT_H

#include "diagnosis/ConfigurationCheck.h"

namespace tool {

// For each line its number, the parts that make it up, each marked or not, and its findings.
Json linesOf(const ConfigurationCheck& check);

}  // namespace tool

#endif  // KALVISTA_TOOL_CONFIGURATION_TEXT_H
