#include <kalvista/IRLogger.h>

#include "sdk/log/LogMessage.h"
#include "sdk/text/NoThrow.h"

namespace ardo {

namespace {

LogLevel threshold(IRLoggerVerbosityLevel verbosity) {
  switch (verbosity) {
    case IRLOGGER_WARNING:
      return kLogWarning;
    case IRLOGGER_INFO:
      return kLogInfo;
    case IRLOGGER_DEBUG:
      return kLogDebug;
    default:
      return kLogError;
  }
}

}  // namespace

void IRLogger::setVerbosity(IRLoggerVerbosityLevel console, IRLoggerVerbosityLevel file,
                            const char* filename) {
  const int fileSink = file == IRLOGGER_OFF ? brivex::LOGGER_FILE_OFF : brivex::LOGGER_FILE_ON;
  const int consoleSink =
      console == IRLOGGER_OFF ? brivex::LOGGER_CONSOLE_OFF : brivex::LOGGER_CONSOLE_ON;
  const bool named = filename != nullptr && *filename != '\0';
  brivex::Logger* log = brivex::Logger::getInstance();
  if (log == nullptr) return;
  withoutThrowing([&] {
    log->configure(named ? filename : "tessacam.log",
                   static_cast<brivex::loggerConf_>(fileSink + consoleSink),
                   static_cast<int>(threshold(file)), static_cast<int>(threshold(console)));
  });
}

}  // namespace ardo
