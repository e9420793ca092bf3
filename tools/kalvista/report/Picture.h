// The picture of an optics as the page draws it.
#ifndef KALVISTA_TOOL_PICTURE_H
#define KALVISTA_TOOL_PICTURE_H

#include "answer/Output.h"

namespace tool {

// One for each optics of the report's calibration: places across in percent of the width, places
// down in pixels.
Json picturesOf(const Json& report);

}  // namespace tool

#endif  // KALVISTA_TOOL_PICTURE_H
