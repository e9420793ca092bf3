/// @file
/// The process-wide log.
#ifndef KALVISTA_LOGGER_H
#define KALVISTA_LOGGER_H

#include <kalvista/Timer.h>
#include <kalvista/export.h>

#include <atomic>
#include <cstdint>
#include <fstream>
#include <string>

namespace brivex {

/// Sinks of the log, joined by "|". Only the two "on" bits are tested.
enum loggerConf_ : std::int32_t {
  LOGGER_FILE_ON = 1,      ///< write to the log file
  LOGGER_FILE_OFF = 2,     ///< carried for the caller's benefit
  LOGGER_CONSOLE_ON = 4,   ///< write to standard error
  LOGGER_CONSOLE_OFF = 8,  ///< carried for the caller's benefit
};

/// Joins two sinks.
/// @param a sinks
/// @param b sinks
/// @return both of them
constexpr loggerConf_ operator|(loggerConf_ a, loggerConf_ b) {
  return static_cast<loggerConf_>(static_cast<std::int32_t>(a) | static_cast<std::int32_t>(b));
}

/// The process-wide log: each message becomes one line in a log file, on standard error, or both,
/// each sink with its own threshold.
///
/// Levels: 0 ERROR, 1 WARNING, 2 INFO, 3 DEBUG. A line reads
/// `WARNING [Cali:120] @ 3.25s :text`: level, source name and line, seconds since the instance was
/// made, message.
///
/// Until configure() has run, messages are dropped; the first one of the process writes one line to
/// standard error that says so.
///
/// Thread context: getInstance() and print() from **any thread**, as long as no thread runs
/// configure() or releaseInstance() or changes a field meanwhile; a line stays whole. These two are
/// **process-wide**.
class KALVISTA_API Logger {
 public:
  /// Gives the one instance and makes it, not configured, when there is none.
  /// @return the instance, valid until releaseInstance(); null when there is none and no memory for
  ///         it
  static Logger* getInstance();

  /// Destroys the instance, if any. A later getInstance() makes a new one, not configured.
  static void releaseInstance();

  /// Sets sinks and thresholds; may be called again at any time.
  ///
  /// With the file sink on, opens a file for appending whose name is `file` and the local time:
  /// "tessacam.log" at 08:05:09 on 15 November 2026 gives "tessacam.log_15_11_2026_8-5-9.log". When
  /// `file` is the name in use already, that file is opened again.
  /// A file that cannot be opened is not reported: lines to it are lost. Without memory for the
  /// name nothing changes.
  /// @param file path that the file name begins with
  /// @param conf sum of the sinks
  /// @param fileLevel highest level written to the file; -1 lets every level pass
  /// @param consoleLevel highest level written to standard error; -1 lets every level pass
  void configure(const std::string& file, loggerConf_ conf, int fileLevel, int consoleLevel);

  /// Writes one message to the sinks whose threshold it meets. The file is flushed. The console has
  /// the line through the C stream `stderr`, up to its first zero byte.
  /// @param level 0 to 3; any other value is printed as ERROR and compared as it is
  /// @param file source name, without directories
  /// @param line line number in the source
  /// @param msg text of the message
  void print(unsigned int level, const std::string& file, int line, const std::string& msg);

  /// Makes an instance of its own, not configured. Applications use getInstance().
  Logger();
  /// Closes the log file.
  ~Logger();
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;

  bool configured = false;             ///< configure() has run
  std::string filename;                ///< name of the log file in use, with its time
  std::int32_t conf = LOGGER_FILE_ON;  ///< sinks, a sum of loggerConf_
  std::ofstream stream;                ///< the log file
  std::uint32_t fileLevel = 0;         ///< highest level written to the file
  std::uint32_t consoleLevel = 0;      ///< highest level written to standard error
  ardo::Timer timer;                   ///< started when the instance is made

  static Logger* m_;  ///< the instance; null when there is none

 private:
  friend struct LoggerInternals;

  int descriptor_ = -1;  // of the log file, for lines in one piece
  std::atomic<bool> fileWorks_{false};
};

}  // namespace brivex

#endif  // KALVISTA_LOGGER_H
