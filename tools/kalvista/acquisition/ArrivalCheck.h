// Tells calibration files from what a failed or foreign transfer brings.
#ifndef KALVISTA_TOOL_ARRIVAL_CHECK_H
#define KALVISTA_TOOL_ARRIVAL_CHECK_H

#include <string>

namespace tool {

// Looks at one file of a camera's calibration. Gives what is wrong, to be read after the name of
// the file ("is empty"), or an empty text when nothing is.
std::string whatIsWrongWith(const std::string& path, unsigned long serial);

}  // namespace tool

#endif  // KALVISTA_TOOL_ARRIVAL_CHECK_H
