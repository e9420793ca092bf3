#include <ctime>
#include <set>

#include "support/Clock.h"
#include "support/OwnNamespaces.h"
#include "support/Transcript.h"

using Log = InFolder;
using brivex::Logger;

namespace {

// What the console shows of six messages.
std::string printed() {
  return captured(STDERR_FILENO, [] {
    Logger& log = *Logger::getInstance();
    for (const unsigned int level : {0U, 1U, 2U, 3U, 7U}) log.print(level, "Cali", 120, "text");
    log.print(0, "Cali", 120, "a\0b"s);
  });
}

}  // namespace

// Stands first: one process gives one such line.
TEST_F(Log, SaysOnceThatItIsNotConfigured) {
  EXPECT_THAT(printed(),
              testing::MatchesRegex("\\[Cali:120\\] @ [0-9.e-]+s : Logger not configured!\n"));
  Logger::releaseInstance();
  EXPECT_EQ(printed(), "");
}

TEST_F(Log, Transcript) {
  Logger& log = *Logger::getInstance();
  log.timer.start -= 1234570000000;
  std::string name;
  Commands on;
  on["configure"] = [&](auto& a) {
    log.filename = name;
    log.configure(a[0].text == "again" ? name : a[0].text, a[1], a[2], a[3]);
    name = log.filename;
    const std::string console = printed();
    return "console " + console + "\nfile " + readFile(name);
  };
  on["verbosity"] = [&](auto& a) {
    ardo::IRLogger::setVerbosity(a[0], a[1], a[2]);
    const std::string base = std::regex_replace(log.filename, std::regex("_.*"), "");
    return shown(log.conf, log.consoleLevel, log.fileLevel, base, fs::exists(log.filename));
  };
  runTranscript("sdk/log/log.txt", on);
}

// Whatever the clock may have shown meanwhile.
TEST_F(Log, LineTellsTheSecondsSinceTheStart) {
  Logger& log = *Logger::getInstance();
  log.configure("x", brivex::LOGGER_CONSOLE_ON, 0, 0);
  for (const long double shift :
       {-7.0L, 0.5L, 1.0L, 9.9999L, 99.9995L, 123.456L, 999.9995L, 1e3L, 12345.6L, 59999.95L,
        123456.5L, 999999.5L, 1e6L, 12345678.0L, 99999950.0L, 999999000.0L, 999999499.0L, 1e9L}) {
    log.timer.start = milliseconds(microsecondsNow()) - shift;
    const std::int64_t before = microsecondsNow();
    const std::string line = captured(STDERR_FILENO, [&] { log.print(0, "s", 1, "t"); });
    const std::int64_t after = microsecondsNow();
    std::set<std::string> lines;
    for (std::int64_t at = before; at <= after; ++at) {
      lines.insert("ERROR [s:1] @ " + shown((milliseconds(at) - log.timer.start) / 1000) +
                   "s :t\n");
    }
    EXPECT_THAT(lines, testing::Contains(line)) << static_cast<double>(shift);
  }
}

// Neither a file of its own twice, nor one that has got its number since.
TEST_F(Log, ClosesItsFileOnce) {
  Logger& log = *Logger::getInstance();
  const std::string held = outputOf("ls /proc/$PPID/fd");
  for (const auto sink : {brivex::LOGGER_FILE_ON, brivex::LOGGER_FILE_OFF}) {
    log.configure("x", sink, 0, 0);
  }
  EXPECT_EQ(outputOf("ls /proc/$PPID/fd"), held);
  const int others[] = {dup(0), dup(0)};
  Logger::releaseInstance();
  EXPECT_EQ(close(others[0]) + close(others[1]), 0);
}

TEST_F(Log, FileIsNamedByTheLocalTime) {
  setenv("TZ", "TEST-11:07", 1);
  const std::time_t before = std::time(nullptr);
  Logger& log = *Logger::getInstance();
  log.configure("x", brivex::LOGGER_FILE_OFF, 3, 3);
  std::string dates;
  for (std::time_t at = before; at <= std::time(nullptr); ++at) {
    dates += outputOf("date -d @" + shown(at) + " +x_%-d_%-m_%Y_%-H-%-M-%-S.log");
  }
  EXPECT_THAT(linesOf(dates), testing::Contains(log.filename));
}

TEST_F(Log, LinesOfAnyLengthAreWhole) {
  Logger& log = *Logger::getInstance();
  log.configure("x", brivex::LOGGER_FILE_ON, 0, 0);
  std::string message;
  for (; message.size() < 1100; message += "y") log.print(0, message, -120, message);
  const auto lines = linesOf(readFile(log.filename));
  ASSERT_EQ(lines.size(), message.size());
  for (std::size_t size = 0; size < lines.size(); ++size) {
    const std::string text(size, 'y');
    EXPECT_THAT(lines[size], testing::StartsWith("ERROR [" + text + ":-120] @ "));
    EXPECT_THAT(lines[size], testing::EndsWith("s :" + text));
  }
}

TEST_F(Log, FullDiskLosesLinesAndNothingElse) {
  if (!enterOwnNamespaces(CLONE_NEWNS) || !mountTmpfs(folder_.path(), "size=16k")) {
    GTEST_SKIP() << "only root may mount a small disk";
  }
  constexpr auto kBothSinks = static_cast<brivex::loggerConf_>(5);
  Logger& log = *Logger::getInstance();
  log.configure(folder_ / "log", kBothSinks, 3, 3);
  const std::string name = log.filename;
  for (int i = 0; i < 200; ++i) EXPECT_EQ(linesOf(printed()).size(), 5U);
  EXPECT_EQ(readFile(name).size(), 16384U);
  fs::remove(name);
  log.configure(name, kBothSinks, 3, 3);
  EXPECT_EQ(linesOf(printed()).size(), 5U);
  EXPECT_EQ(linesOf(readFile(name)).size(), 5U);
}
