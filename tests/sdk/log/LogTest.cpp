#include <sys/stat.h>
#include <sys/time.h>

#include <clocale>
#include <csignal>
#include <ctime>

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
  EXPECT_THAT(captured(STDERR_FILENO, [] { ardo::SimpleXML().open("none", "r"); }),
              testing::MatchesRegex("\\[SimpleXML:72\\] @ [0-9.e-]+s : Logger not configured!\n"));
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

TEST_F(Log, LineTellsTheSecondsSinceTheStart) {
  Logger& log = *Logger::getInstance();
  log.configure("x", brivex::LOGGER_CONSOLE_ON, 0, 0);
  stopClock(0);
  const locale_t threads = duplocale(LC_GLOBAL_LOCALE);
  uselocale(threads);
  for (const long double elapsed :
       {-7.0L,        0.0L,         0.5L,         1.0L,        9.9999L,     99.9995L,
        123.456L,     999.9995L,    1e3L,         1234.575L,   12345.6L,    59999.95L,
        123456.5L,    999999.5L,    1e6L,         12345678.0L, 99999950.0L, 123456500.0L,
        123457500.0L, 999999000.0L, 999999499.0L, 1e9L}) {
    log.timer.start = -elapsed;
    const std::string line = captured(STDERR_FILENO, [&] { log.print(0, "s", 1, "t"); });
    EXPECT_EQ(line, "ERROR [s:1] @ " + shown(elapsed / 1000) + "s :t\n");
  }
  EXPECT_EQ(uselocale(LC_GLOBAL_LOCALE), threads);
  freelocale(threads);
}

// A pipe is full, with one line or half of one, when a signal comes whose handler reads it.
TEST_F(Log, SignalLosesNoLine) {
  constexpr std::size_t kLines = 8;
  static char received[1U << 20U];
  static std::size_t size = 0;
  ASSERT_EQ(mkfifo("log", 0600), 0);
  static const int reader = open("log", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  const auto pipeSize = static_cast<std::size_t>(fcntl(reader, F_SETPIPE_SZ, 4096));
  ASSERT_LE(2 * kLines * pipeSize, sizeof received);  // a pipe has a page at least
  constexpr auto kReceive = [](int) {
    const ssize_t more = read(reader, received + size, sizeof received - size);
    if (more > 0) size += static_cast<std::size_t>(more);
  };
  struct sigaction action {};
  action.sa_handler = kReceive;
  sigaction(SIGALRM, &action, nullptr);
  Logger& log = *Logger::getInstance();
  log.filename = "log";
  log.configure("log", brivex::LOGGER_FILE_ON, 0, 0);
  stopClock(0);
  log.timer.start = 0;
  itimerval interval{{0, 1000}, {0, 1000}};
  setitimer(ITIMER_REAL, &interval, nullptr);
  std::string sent;
  for (std::size_t i = 0; i < kLines; ++i) {
    const std::string message(pipeSize * (1 + i % 2) - 100, static_cast<char>('a' + i));
    log.print(0, "s", 1, message);
    sent += "ERROR [s:1] @ 0s :" + message + "\n";
  }
  interval = {};
  setitimer(ITIMER_REAL, &interval, nullptr);
  kReceive(0);
  EXPECT_EQ(std::string(received, size), sent);
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

TEST_F(Log, WritesToAStreamThatTheApplicationOpened) {
  Logger& log = *Logger::getInstance();
  log.configure("x", brivex::LOGGER_CONSOLE_ON, 0, 0);
  log.conf = brivex::LOGGER_FILE_ON;
  log.stream.open("own");
  log.print(0, "s", 1, "t");
  EXPECT_THAT(readFile("own"), testing::MatchesRegex("ERROR \\[s:1\\] @ [0-9.e-]+s :t\n"));
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
