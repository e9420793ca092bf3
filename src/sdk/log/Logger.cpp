#include <fcntl.h>
#include <kalvista/Logger.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "sdk/log/LogMessage.h"

namespace brivex {

namespace {

std::atomic<bool> notConfiguredReported{false};

std::string_view levelWord(unsigned int level) {
  switch (level) {
    case ardo::kLogWarning:
      return "WARNING ";
    case ardo::kLogInfo:
      return "INFO ";
    case ardo::kLogDebug:
      return "DEBUG ";
    default:
      return "ERROR ";
  }
}

char* put(char* to, std::string_view piece) { return std::copy(piece.begin(), piece.end(), to); }

char* put(char* to, int number) {
  constexpr std::size_t kMostDigits = 11;
  return std::to_chars(to, to + kMostDigits, number).ptr;
}

// Six significant digits in general notation, without an exponent. Null, with nothing put, for what
// needs one, and where the sixth digit hangs on how the format rounds a tie.
char* putPlainSeconds(char* to, long double seconds) {
  constexpr std::size_t kDigits = 6;
  constexpr std::array kPowersOfTen{1.0L, 1e1L, 1e2L, 1e3L, 1e4L, 1e5L, 1e6L, 1e7L, 1e8L, 1e9L};
  const auto scale = std::find_if(kPowersOfTen.begin(), kPowersOfTen.end(),
                                  [=](long double power) { return seconds * power >= 1e5L; });
  if (scale == kPowersOfTen.end()) return nullptr;
  const long double scaled = seconds * *scale;
  if (!(scaled < 999999.0L)) return nullptr;
  const int whole = static_cast<int>(scaled);
  const long double rest = scaled - whole;
  if (std::fabs(rest - 0.5L) < 1e-6L) return nullptr;

  std::array<char, kDigits> digits{};
  std::to_chars(digits.begin(), digits.end(), whole + (rest > 0.5L ? 1 : 0));
  std::string_view shown(digits.data(), digits.size());
  const auto decimals = static_cast<std::size_t>(scale - kPowersOfTen.begin());
  if (decimals >= kDigits) {
    to = std::fill_n(put(to, "0."), decimals - kDigits, '0');
  } else {
    to = put(to, shown.substr(0, kDigits - decimals));
    shown.remove_prefix(kDigits - decimals);
  }
  shown = shown.substr(0, shown.find_last_not_of('0') + 1);
  if (decimals < kDigits && !shown.empty()) to = put(to, ".");
  return put(to, shown);
}

char* putSeconds(char* to, long double milliseconds) {
  const long double seconds = milliseconds / 1000;
  if (char* end = putPlainSeconds(to, seconds); end != nullptr) return end;
  ardo::TextComposer number;
  number << seconds;
  return put(to, number.text());
}

// One line of the log. It is composed without the heap, unless it is unusually long.
class Line {
 public:
  Line(std::string_view head, std::string_view source, int number, long double elapsed,
       std::string_view message) {
    constexpr std::size_t kRoomForTheRest = 64;
    const std::size_t room = head.size() + source.size() + message.size() + kRoomForTheRest;
    if (room > short_.size()) long_.resize(room);
    char* to = put(put(put(begin(), head), "["), source);
    to = put(put(put(to, ":"), number), "] @ ");
    to = put(put(putSeconds(to, elapsed), "s :"), message);
    end_ = put(to, "\n");  // of the room, all behind it is zero
  }

  const char* c_str() const { return long_.empty() ? short_.data() : long_.data(); }
  std::size_t size() const { return static_cast<std::size_t>(end_ - c_str()); }

 private:
  char* begin() { return long_.empty() ? short_.data() : long_.data(); }

  std::array<char, 256> short_{};
  std::string long_;
  char* end_ = nullptr;
};

std::string decorateFileName(const std::string& base) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  tzset();
  localtime_r(&now, &local);
  return base + "_" + std::to_string(local.tm_mday) + "_" + std::to_string(local.tm_mon + 1) + "_" +
         std::to_string(local.tm_year + 1900) + "_" + std::to_string(local.tm_hour) + "-" +
         std::to_string(local.tm_min) + "-" + std::to_string(local.tm_sec) + ".log";
}

bool takes(const Logger& log, loggerConf_ sink, std::uint32_t threshold, unsigned int level) {
  return (log.conf & sink) != 0 && level <= threshold;
}

bool fileTakes(const Logger& log, unsigned int level) {
  return takes(log, LOGGER_FILE_ON, log.fileLevel, level);
}

bool consoleTakes(const Logger& log, unsigned int level) {
  return takes(log, LOGGER_CONSOLE_ON, log.consoleLevel, level);
}

// Functions of their own, so that a message below the thresholds costs nothing of them.
// Threads may come here together: one instance is kept.
[[gnu::noinline]] Logger* makeInstance() {
  std::unique_ptr<Logger> made(new (std::nothrow) Logger);
  Logger* const none = nullptr;
  Logger* const kept = __sync_val_compare_and_swap(&Logger::m_, none, made.get());
  return kept == nullptr ? made.release() : kept;
}

[[gnu::noinline]] void reportNotConfigured(const Logger& log, std::string_view source, int line) {
  if (notConfiguredReported.exchange(true)) return;
  const long double elapsed = log.timer.getTime();
  std::fputs(Line("", source, line, elapsed, " Logger not configured!").c_str(), stderr);
}

}  // namespace

// The log file, for lines in one piece: one call for each, which no other thread's line can enter.
// The rest of a line that does not fit on the disk is lost, and so are all after it.
struct LoggerInternals {
  static void open(Logger& log) {
    try {
      log.stream.open(log.filename, std::ios::out | std::ios::app);
    } catch (const std::exception&) {
      log.stream.close();
      log.stream.setstate(std::ios::failbit);
    }
    if (log.stream.is_open()) {
      log.descriptor_ = ::open(log.filename.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    }
    log.fileWorks_ = log.descriptor_ >= 0;
  }

  static void close(Logger& log) {
    if (log.stream.is_open()) log.stream.close();
    if (log.descriptor_ >= 0) ::close(log.descriptor_);
    log.descriptor_ = -1;
    log.fileWorks_ = false;
  }

  // A stream that the application has opened itself has no descriptor here.
  static void write(Logger& log, const char* text, std::size_t size) {
    if (log.descriptor_ < 0 && log.stream.is_open()) {
      log.stream.write(text, static_cast<std::streamsize>(size)).flush();
    }
    while (size > 0 && log.fileWorks_.load(std::memory_order_relaxed)) {
      const ssize_t written = ::write(log.descriptor_, text, size);
      if (written < 0 && errno == EINTR) continue;
      if (written <= 0) {
        log.fileWorks_ = false;
      } else {
        text += written;
        size -= static_cast<std::size_t>(written);
      }
    }
  }
};

Logger* Logger::m_ = nullptr;

Logger* Logger::getInstance() {
  Logger* log = __atomic_load_n(&m_, __ATOMIC_ACQUIRE);
  return log != nullptr ? log : makeInstance();
}

void Logger::releaseInstance() {
  delete m_;
  m_ = nullptr;
}

Logger::Logger() = default;

Logger::~Logger() { LoggerInternals::close(*this); }

void Logger::configure(const std::string& file, loggerConf_ newConf, int newFileLevel,
                       int newConsoleLevel) {
  try {
    if (file != filename) filename = decorateFileName(file);
  } catch (const std::exception&) {
    return;
  }
  fileLevel = static_cast<std::uint32_t>(newFileLevel);
  consoleLevel = static_cast<std::uint32_t>(newConsoleLevel);
  LoggerInternals::close(*this);
  if ((newConf & LOGGER_FILE_ON) != 0) LoggerInternals::open(*this);
  conf = newConf;
  configured = true;
}

void Logger::print(unsigned int level, const std::string& file, int line, const std::string& msg) {
  const bool toFile = configured && fileTakes(*this, level);
  const bool toConsole = configured && consoleTakes(*this, level);
  if (configured && !toFile && !toConsole) return;
  try {
    if (!configured) {
      reportNotConfigured(*this, file, line);
      return;
    }
    const Line text(levelWord(level), file, line, timer.getTime(), msg);
    if (toFile) LoggerInternals::write(*this, text.c_str(), text.size());
    if (toConsole) std::fputs(text.c_str(), stderr);
  } catch (const std::exception&) {
    // Without memory for the line it is lost, as on a full disk.
    return;
  }
}

}  // namespace brivex

namespace ardo {

bool logAccepts(unsigned int level) {
  const brivex::Logger* log = brivex::Logger::getInstance();
  if (log == nullptr) return false;
  if (!log->configured) return !brivex::notConfiguredReported;
  return brivex::fileTakes(*log, level) || brivex::consoleTakes(*log, level);
}

}  // namespace ardo
