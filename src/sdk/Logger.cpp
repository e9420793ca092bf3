#include <kalvista/Logger.h>

#include <array>
#include <charconv>
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

// Both clock readings are multiples of 2^-12 ms, so their difference is exact in double precision,
// and no quotient by 1000 comes near enough to a tie of six digits for the division to matter.
void appendSeconds(std::string& text, long double milliseconds) {
  constexpr int kSignificantDigits = 6;
  std::array<char, 32> digits{};
  const auto end =
      std::to_chars(digits.begin(), digits.end(), static_cast<double>(milliseconds) / 1000.0,
                    std::chars_format::general, kSignificantDigits)
          .ptr;
  text.append(digits.begin(), end);
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

}  // namespace

Logger* Logger::m_ = nullptr;

Logger* Logger::getInstance() {
  if (m_ == nullptr) m_ = new Logger;
  return m_;
}

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
    if (notConfiguredReported) return;
    std::fputs(composeLine("", file, line, timer.getTime(), " Logger not configured!").c_str(),
               stderr);
    notConfiguredReported = true;
    return;
  }
  const bool toFile = fileTakes(*this, level);
  const bool toConsole = consoleTakes(*this, level);
  if (!toFile && !toConsole) return;

  const std::string text = composeLine(levelWord(level), file, line, timer.getTime(), msg);
  if (toFile) stream.write(text.data(), static_cast<std::streamsize>(text.size())).flush();
  if (toConsole) std::fputs(text.c_str(), stderr);
}

}  // namespace brivex

namespace ardo {

bool logAccepts(unsigned int level) {
  const brivex::Logger& log = *brivex::Logger::getInstance();
  if (!log.configured) return !brivex::notConfiguredReported;
  return brivex::fileTakes(log, level) || brivex::consoleTakes(log, level);
}

}  // namespace ardo
