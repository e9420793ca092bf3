// The library's own way to the log.
#ifndef KALVISTA_SDK_LOG_MESSAGE_H
#define KALVISTA_SDK_LOG_MESSAGE_H

#include <kalvista/Logger.h>

#include <locale>
#include <sstream>

namespace ardo {

enum LogLevel : unsigned int { kLogError = 0, kLogWarning = 1, kLogInfo = 2, kLogDebug = 3 };

// True when a sink takes messages of this level, or the line that the log is not configured is
// still to be written.
bool logAccepts(unsigned int level);

// Composes a message from its pieces, as an output stream writes them, and logs it. A null text
// ends the message.
template <typename... Pieces>
void logMessage(LogLevel level, const char* source, int line, const Pieces&... pieces) {
  if (!logAccepts(level)) return;
  std::ostringstream message;
  message.imbue(std::locale::classic());
  (message << ... << pieces);
  brivex::Logger::getInstance()->print(level, source, line, message.str());
}

}  // namespace ardo

#endif  // KALVISTA_SDK_LOG_MESSAGE_H
