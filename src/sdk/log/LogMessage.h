// The library's own way to the log.
#ifndef KALVISTA_SDK_LOG_MESSAGE_H
#define KALVISTA_SDK_LOG_MESSAGE_H

#include <kalvista/Logger.h>

#include "sdk/text/NoThrow.h"
#include "sdk/text/TextComposer.h"

namespace ardo {

enum LogLevel : unsigned int { kLogError = 0, kLogWarning = 1, kLogInfo = 2, kLogDebug = 3 };

// True when a sink takes messages of this level, or the line that the log is not configured is
// still to be written.
bool logAccepts(unsigned int level);

// Composes a message from its pieces and logs it. Without memory for it, it is lost.
template <typename... Pieces>
void logMessage(LogLevel level, const char* source, int line, const Pieces&... pieces) {
  if (!logAccepts(level)) return;
  withoutThrowing([&] {
    TextComposer message;
    (message << ... << pieces);
    brivex::Logger::getInstance()->print(level, source, line, message.text());
  });
}

}  // namespace ardo

#endif  // KALVISTA_SDK_LOG_MESSAGE_H
