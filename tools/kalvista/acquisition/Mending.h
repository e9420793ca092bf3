// Files that only some users may read.
#ifndef KALVISTA_TOOL_MENDING_H
#define KALVISTA_TOOL_MENDING_H

#include <string>
#include <vector>

namespace tool {

// Lets all users read those of a camera's files that belong to this one, as far as the mask allows.
// Gives the names of those that were changed.
std::vector<std::string> letAllReadCalibration(const std::string& directory, unsigned long serial);

}  // namespace tool

#endif  // KALVISTA_TOOL_MENDING_H
