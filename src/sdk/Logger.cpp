#include <kalvista/Logger.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string_view>

#include "sdk/LogMessage.h"

namespace brivex {

namespace {

bool notConfiguredReported = false;

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

void appendNumber(std::string& text, int number) {
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  text.append(digits.begin(), end);
}

// Six significant digits in general notation, without an exponent. False, with nothing written,
// for what needs one, and where the sixth digit hangs on how the format rounds a tie.
bool appendPlainSeconds(std::string& text, long double seconds) {
  constexpr std::size_t kDigits = 6;
  constexpr std::array kPowersOfTen{1.0L, 1e1L, 1e2L, 1e3L, 1e4L, 1e5L, 1e6L, 1e7L, 1e8L, 1e9L};
  const auto scale = std::find_if(kPowersOfTen.begin(), kPowersOfTen.end(),
                                  [=](long double power) { return seconds * power >= 1e5L; });
  if (scale == kPowersOfTen.end()) return false;
  const long double scaled = seconds * *scale;
  if (!(scaled < 999999.0L)) return false;
  const int whole = static_cast<int>(scaled);
  const long double rest = scaled - whole;
  if (std::fabs(rest - 0.5L) < 1e-6L) return false;

  std::array<char, kDigits> digits{};
  std::to_chars(digits.begin(), digits.end(), whole + (rest > 0.5L ? 1 : 0));
  std::string_view shown(digits.data(), digits.size());
  const auto decimals = static_cast<std::size_t>(scale - kPowersOfTen.begin());
  if (decimals >= kDigits) {
    text.append("0.").append(decimals - kDigits, '0');
  } else {
    text.append(shown.substr(0, kDigits - decimals));
    shown.remove_prefix(kDigits - decimals);
  }
  shown = shown.substr(0, shown.find_last_not_of('0') + 1);
  if (decimals < kDigits && !shown.empty()) text.append(".");
  text.append(shown);
  return true;
}

void appendSeconds(std::string& text, long double milliseconds) {
  const long double seconds = milliseconds / 1000;
  if (appendPlainSeconds(text, seconds)) return;
  ardo::TextComposer number;
  number << seconds;
  text.append(number.text());
}

std::string composeLine(std::string_view head, std::string_view source, int line,
                        long double elapsed, std::string_view message) {
  constexpr std::size_t kRoomForTheRest = 64;
  std::string text;
  text.reserve(head.size() + source.size() + message.size() + kRoomForTheRest);
  text.append(head).append("[").append(source).append(":");
  appendNumber(text, line);
  text.append("] @ ");
  appendSeconds(text, elapsed);
  return text.append("s :").append(message).append("\n");
}

std::string decorateFileName(const std::string& base) {
  const std::time_t now = std::time(nullptr);
  const std::tm& local = *std::localtime(&now);
  std::string name = base;
  const auto append = [&name](const char* separator, int number) {
    name.append(separator);
    appendNumber(name, number);
  };
  append("_", local.tm_mday);
  append("_", local.tm_mon + 1);
  append("_", local.tm_year + 1900);
  append("_", local.tm_hour);
  append("-", local.tm_min);
  append("-", local.tm_sec);
  return name.append(".log");
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
[[gnu::noinline]] Logger* makeInstance() { return Logger::m_ = new Logger; }

[[gnu::noinline]] void reportNotConfigured(const Logger& log, std::string_view source, int line) {
  if (notConfiguredReported) return;
  const long double elapsed = log.timer.getTime();
  std::fputs(composeLine("", source, line, elapsed, " Logger not configured!").c_str(), stderr);
  notConfiguredReported = true;
}

[[gnu::noinline]] void write(Logger& log, unsigned int level, std::string_view source, int line,
                             std::string_view message) {
  const std::string text =
      composeLine(levelWord(level), source, line, log.timer.getTime(), message);
  if (fileTakes(log, level)) {
    log.stream.write(text.data(), static_cast<std::streamsize>(text.size())).flush();
  }
  if (consoleTakes(log, level)) std::fputs(text.c_str(), stderr);
}

}  // namespace

Logger* Logger::m_ = nullptr;

Logger* Logger::getInstance() { return m_ != nullptr ? m_ : makeInstance(); }

void Logger::releaseInstance() {
  delete m_;
  m_ = nullptr;
}

Logger::Logger() = default;

Logger::~Logger() {
  if ((conf & LOGGER_FILE_ON) != 0) stream.close();
}

void Logger::configure(const std::string& file, loggerConf_ newConf, int newFileLevel,
                       int newConsoleLevel) {
  fileLevel = static_cast<std::uint32_t>(newFileLevel);
  consoleLevel = static_cast<std::uint32_t>(newConsoleLevel);
  if ((conf & LOGGER_FILE_ON) != 0) stream.close();
  if (file != filename) filename = decorateFileName(file);
  if ((newConf & LOGGER_FILE_ON) != 0) stream.open(filename, std::ios::out | std::ios::app);
  conf = newConf;
  configured = true;
}

void Logger::print(unsigned int level, const std::string& file, int line, const std::string& msg) {
  if (!configured) {
    reportNotConfigured(*this, file, line);
  } else if (fileTakes(*this, level) || consoleTakes(*this, level)) {
    write(*this, level, file, line, msg);
  }
}

}  // namespace brivex

namespace ardo {

bool logAccepts(unsigned int level) {
  const brivex::Logger& log = *brivex::Logger::getInstance();
  if (!log.configured) return !brivex::notConfiguredReported;
  return brivex::fileTakes(log, level) || brivex::consoleTakes(log, level);
}

}  // namespace ardo
