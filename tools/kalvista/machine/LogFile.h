// The file of --log-file, which may lie where other users write as well.
#ifndef KALVISTA_TOOL_LOG_FILE_H
#define KALVISTA_TOOL_LOG_FILE_H

#include <kalvista/Logger.h>

namespace tool {

// Lets the log, which was configured without a file, write to the one whose name it has, with the
// threshold of its console. A Failure when that cannot be opened, is a link, or is not the user's.
void addLogFile(brivex::Logger& log);

}  // namespace tool

#endif  // KALVISTA_TOOL_LOG_FILE_H
