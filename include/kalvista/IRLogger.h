/// @file
/// Switches the log on and off by verbosity.
#ifndef KALVISTA_IRLOGGER_H
#define KALVISTA_IRLOGGER_H

#include <kalvista/export.h>

namespace ardo {

/// How much of the log a sink shows.
enum IRLoggerVerbosityLevel : int {
  IRLOGGER_OFF = 1,      ///< sink off
  IRLOGGER_ERROR = 2,    ///< errors only; so is any value that is not listed here
  IRLOGGER_WARNING = 3,  ///< warnings too
  IRLOGGER_INFO = 4,     ///< information too
  IRLOGGER_DEBUG = 5,    ///< everything
};

/// The log's one switch for applications.
class KALVISTA_API IRLogger {
 public:
  /// Configures the process's log; without memory it stays as it was. Thread context:
  /// **process-wide**.
  /// @param console verbosity on standard error
  /// @param file verbosity of the log file
  /// @param filename path that the name of the log file begins with (see
  ///                 brivex::Logger::configure()); null or empty stands for "tessacam.log"
  static void setVerbosity(IRLoggerVerbosityLevel console, IRLoggerVerbosityLevel file,
                           const char* filename);
};

}  // namespace ardo

#endif  // KALVISTA_IRLOGGER_H
