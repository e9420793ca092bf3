// What a person most likely meant.
#ifndef KALVISTA_TOOL_NEAREST_H
#define KALVISTA_TOOL_NEAREST_H

#include <string_view>
#include <vector>

namespace tool {

// The known name that the author most likely meant; empty when none is near.
std::string_view nearestOf(std::string_view name, const std::vector<std::string_view>& known);

}  // namespace tool

#endif  // KALVISTA_TOOL_NEAREST_H
