// The command-line tool as its users and their scripts meet it.
#include <gmock/gmock.h>

#include <atomic>
#include <nlohmann/json.hpp>

#include "real_parts/OnlineRepository.h"
#include "real_parts/UsbTree.h"

namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string sampleConfiguration = support::readFile(SAMPLE_CONFIGURATION);
// Opened before the build, which may be a folder in /tmp, is out of sight.
const int tool = open(TOOL_FILE, O_RDONLY | O_CLOEXEC);
const std::string kAsNobody =
    geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups" : "";
const std::string kSuccess = "HTTP/1.1 200 OK\r\n";
const std::string kLinks = kSuccess + "\r\n" + linksDocument(kLink);
const std::string kXml = sample.at("Cali-12345678.xml");
const std::string kHalf = kXml.substr(0, kXml.size() / 2);
const std::string kBrokenOff = kSuccess + "Content-Length: 20000\r\n\r\n" + kHalf;

struct ToolRun {
  int exitCode;
  std::string out;
  std::string err;
};

// The shell reads the arguments, and what stands before the program.
ToolRun run(const std::string& arguments, const std::string& before = "") {
  const int status = std::system(
      ("{ " + before + " ./kalvista " + arguments + "; } < /dev/null > out 2> err").c_str());
  return {WEXITSTATUS(status), support::readFile("out"), support::readFile("err")};
}

// What a change of any file would change.
std::map<std::string, std::pair<fs::file_time_type, std::string>> stateOf(
    const std::string& folder) {
  std::map<std::string, std::pair<fs::file_time_type, std::string>> state;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    state[entry.path()] = {entry.last_write_time(), support::readFile(entry.path())};
  }
  return state;
}

// Files that a check would count as present, and anything that should not lie there.
void expectWholeFilesOnly(const std::string& folder) {
  for (const auto& [name, content] : contentsOf(folder)) {
    ASSERT_EQ(sample.count(name), 1U) << name;
    EXPECT_EQ(content, sample.at(name)) << name;
  }
}

class ToolTest : public OnlineRepositoryFixture {
 protected:
  void SetUp() override {
    OnlineRepositoryFixture::SetUp();
    fs::copy_file("/proc/self/fd/" + std::to_string(tool), "kalvista");
    writeAll("full", sample);
    writeAll("repository/12/1234", sample);
    for (const char* folder : {"none", "new"}) fs::create_directory(folder);
    support::writeFile("imager.xml", sampleConfiguration);
  }
};

TEST_F(ToolTest, EveryCommandAsTextAndAsJson) {
  const struct {
    std::string arguments;
    int exitCode;
    std::string out;  // a part of it; empty when there is none
    std::string err;  // a part of it
  } rows[] = {
      {"version", 0, "kalvista 1.", ""},
      {"check 12345678 --calibration-dir full", 0, "", ""},
      {"check 12345678 --calibration-dir none", 1, "Cali-12345678.xml\n",
       "kalvista copy 12345678 REPOSITORY"},
      {"check 2147483647 --calibration-dir none", 1, "Cali-2147483647.xml\n", "2147483647"},
      {"check 12345678 --calibration-dir absent", 3, "", "/absent does not exist"},
      {"optics 12345678 --calibration-dir full", 0,
       "\n33   macro  150 to 900   145 to 950    1         any\n", ""},
      {"optics 99 --calibration-dir full", 1, "", "/full"},
      {"config 12345678 --calibration-dir full", 0, "  <fov>33</fov>\n", ""},
      {"config 99 --calibration-dir full", 0, "  <fov>0</fov>\n", "/full/Cali-99.xml"},
      {"params imager.xml", 0, "\nframerate ", ""},
      {"params full", 3, "", "/full is not a file"},
      {"params full/Cali-12345678.xml", 3, "", "no root element \"imager\""},
      {"copy 12345678 repository --calibration-dir new", 0, "complete: 34 files", "find /"},
      {"copy 12345678 none --calibration-dir none", 1, "Cali-12345678.xml\n", "/none holds no"},
      {"copy 12345678 absent --calibration-dir none", 3, "", "/absent does not exist"},
      {"download 12345678 --calibration-dir full", 0, "nothing had to be changed", ""},
      {"setup 12345678 --calibration-dir full", 0, "Camera 12345678 is ready", ""},
      {"doctor 12345678 --calibration-dir none", 1, "fail  calibration ", "failed"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.arguments);
    const ToolRun text = run(row.arguments);
    EXPECT_EQ(text.exitCode, row.exitCode);
    EXPECT_EQ(text.out.empty(), row.out.empty());
    EXPECT_THAT(text.out, HasSubstr(row.out));
    EXPECT_THAT(text.err, HasSubstr(row.err));

    const ToolRun json = run("--json " + row.arguments);
    EXPECT_EQ(json.exitCode, row.exitCode);
    const auto document = nlohmann::json::parse(json.out, nullptr, false);
    ASSERT_TRUE(document.is_object()) << json.out;
    EXPECT_EQ(document["command"], row.arguments.substr(0, row.arguments.find(' ')));
    EXPECT_EQ(document["problem"].is_null(), row.exitCode == 0);
  }
}

TEST_F(ToolTest, WrongUsageRunsNothing) {
  for (const std::string arguments : {"",
                                      "nonsense",
                                      "check",
                                      "check 0",
                                      "check 2147483648",
                                      "check 99999999999999999999",
                                      "check +5",
                                      "check -5",
                                      "check ' 5'",
                                      "check 5x",
                                      "check ''",
                                      "check 1 2",
                                      "check 1 --verbosity loud",
                                      "download 1 --timeout 0",
                                      "copy 1 'a b'",
                                      "copy 1 'a;b'",
                                      "copy 1 'a$b'",
                                      "copy 1 \"a'b\"",
                                      "copy 1 'a*'",
                                      "copy 1 'a\nb'",
                                      "copy 1 full --calibration-dir 'a b'",
                                      "download 1 --calibration-dir 'a`b'"}) {
    const ToolRun wrong = run(arguments);
    EXPECT_EQ(wrong.exitCode, 2) << arguments;
    EXPECT_EQ(wrong.out, "") << arguments;
    EXPECT_THAT(wrong.err, HasSubstr("kalvista: ")) << arguments;
  }
}

TEST_F(ToolTest, StandardOutputThatTakesNothing) {
  for (const std::string arguments :
       {"version --log-file log >&-", "optics 12345678 --calibration-dir full > /dev/full",
        "--help > /dev/full", "check 12345678 --json --calibration-dir full <&- >&- 2>&-"}) {
    EXPECT_EQ(run(arguments).exitCode, 3) << arguments;
  }
}

TEST_F(ToolTest, ConfigurationIsNeverOverwrittenUnasked) {
  fs::create_directory("settings");
  const std::string write = "config 12345678 --calibration-dir full -o settings/camera.xml";
  EXPECT_EQ(run(write).exitCode, 0);
  const auto written = stateOf("settings");
  EXPECT_EQ(run(write).exitCode, 0);
  EXPECT_EQ(stateOf("settings"), written);
  support::writeFile("settings/camera.xml", "mine");
  EXPECT_EQ(run(write).exitCode, 3);
  // More than 512 bytes of a file kill the tool in the middle.
  EXPECT_GT(run(write + " --force", "ulimit -f 1;").exitCode, 128);
  EXPECT_EQ(support::readFile("settings/camera.xml"), "mine");
  EXPECT_EQ(run(write + " --force").exitCode, 0);
  EXPECT_EQ(contentsOf("settings").size(), 1U);
  EXPECT_EQ(support::readFile("settings/camera.xml"), written.begin()->second.second);
}

TEST_F(ToolTest, SetupTwiceChangesNothing) {
  publish("12345678", sample);
  serve(linksDocument(kLink));
  for (const std::string from : {"--from repository", ""}) {
    fs::remove_all("new");
    fs::create_directory("new");
    const std::string setup = "setup 12345678 --calibration-dir new " + from;
    const ToolRun first = run(setup);
    EXPECT_EQ(first.exitCode, 0) << first.err;
    EXPECT_THAT(first.out, HasSubstr("34 files added, configuration written"));
    support::writeFile("new/config-12345678.xml", sampleConfiguration);
    const auto before = stateOf("new");
    EXPECT_EQ(before.size(), sample.size() + 1);
    EXPECT_THAT(run(setup).out, HasSubstr("nothing had to be changed"));
    EXPECT_EQ(stateOf("new"), before);
  }
}

TEST_F(ToolTest, AttachedCamera) {
  if (!usb::makeTree()) GTEST_SKIP() << "a USB tree of its own needs root, who may mount it";
  usb::attach("1-1", {{"idVendor", "1d6b\n"}, {"idProduct", "0002\n"}});
  EXPECT_EQ(run("serial").exitCode, 1);
  EXPECT_THAT(run("serial").err, HasSubstr("1 USB device"));
  EXPECT_EQ(run("setup --from repository --calibration-dir new").exitCode, 1);
  usb::attach("1-2", usb::camera("12345678"));
  EXPECT_EQ(run("serial").out, "12345678\n");
  EXPECT_EQ(run("serial 12345678").exitCode, 0);
  EXPECT_EQ(run("serial 5").exitCode, 1);
  EXPECT_EQ(run("setup --from repository --calibration-dir new").exitCode, 0);
  const ToolRun healthy = run("doctor --calibration-dir new --config new/config-12345678.xml");
  EXPECT_EQ(healthy.exitCode, 0) << healthy.out;
  EXPECT_THAT(healthy.out, Not(HasSubstr("fail")));
  fs::remove_all(usb::kTree);
  EXPECT_EQ(run("serial").exitCode, 3);
  EXPECT_THAT(run("doctor --calibration-dir new").out, HasSubstr("fail  usb-tree"));
}

TEST_F(ToolTest, FolderThatMayNotBeWritten) {
  fs::permissions("none", fs::perms(0555));
  for (const std::string arguments :
       {"copy 12345678 repository --calibration-dir none",
        "config 12345678 --calibration-dir full -o none/camera.xml"}) {
    const ToolRun refused = run(arguments, kAsNobody);
    EXPECT_EQ(refused.exitCode, 3) << arguments;
    EXPECT_THAT(refused.err, HasSubstr("/none")) << arguments;
  }
  EXPECT_THAT(run("doctor 12345678 --calibration-dir none", kAsNobody).out,
              HasSubstr("fail  calibration-dir"));
}

TEST_F(ToolTest, DiskFull) {
  if (!machine_.isOwn() || !mountTmpfs("new", "size=64k"))
    GTEST_SKIP() << "a small disk needs root";
  const std::string copy = "copy 12345678 repository --calibration-dir new";
  EXPECT_EQ(run(copy).exitCode, 3);
  expectWholeFilesOnly("new");
  std::ofstream("new/filler") << std::string(64 << 10, 'x');
  EXPECT_EQ(run("config 12345678 -o new/camera.xml --calibration-dir full").exitCode, 3);
  EXPECT_FALSE(fs::exists("new/camera.xml"));
  fs::remove("new/filler");
  ASSERT_EQ(mount("none", "new", nullptr, MS_REMOUNT, "size=1m"), 0);
  EXPECT_EQ(run(copy).exitCode, 0);
  EXPECT_EQ(contentsOf("new"), sample);
}

TEST_F(ToolTest, DownloadFromAServerThatLacksFiles) {
  Contents most = sample;
  most.erase("Cali-12345678-33-0-250-27.dat");
  most["Cali-12345678-33-0-250-32.dat"] = "";
  most["Cali-12345678-33-0-250-80.dat"] = "<!DOCTYPE html><html>Not here</html>";
  publish("12345678", most);
  serve(linksDocument(kLink));
  const ToolRun some = run("download 12345678 --calibration-dir new");
  EXPECT_EQ(some.exitCode, 1);
  EXPECT_EQ(some.out,
            "Cali-12345678-33-0-250-27.dat\nCali-12345678-33-0-250-32.dat\n"
            "Cali-12345678-33-0-250-80.dat\n");
  EXPECT_EQ(contentsOf("new").size(), sample.size() - 3);
  expectWholeFilesOnly("new");
  if (machine_.isOwn()) {
    EXPECT_THAT(some.err, HasSubstr("no default route"));
  }
  publish("12345678", sample);
  const ToolRun rest = run("download 12345678 --calibration-dir new", "env --ignore-signal=CHLD");
  EXPECT_EQ(rest.exitCode, 0);
  EXPECT_THAT(rest.err, Not(HasSubstr("ERROR")));
  EXPECT_EQ(contentsOf("new"), sample);
}

TEST_F(ToolTest, DownloadThatFails) {
  const std::string download = "download 12345678 --calibration-dir new --timeout 5";
  EXPECT_EQ(run(download).exitCode, 3) << "no server";
  answerAndBreakOff({kLinks, kSuccess + "\r\n" + kHalf}, [] {});
  EXPECT_EQ(run(download).exitCode, 1) << "breaks off unnoticed";
  EXPECT_TRUE(fs::is_empty("new"));
  answerAndBreakOff({kLinks, kSuccess + "\r\n" + kXml, kLinks, kBrokenOff}, [] {});
  EXPECT_EQ(run(download).exitCode, 1) << "breaks off";
  answerAndBreakOff({kLinks, kBrokenOff}, [] { pause(); });
  const ToolRun silent = run(download);
  EXPECT_EQ(silent.exitCode, 3);
  EXPECT_THAT(silent.err, HasSubstr("--timeout"));
  EXPECT_EQ(contentsOf("new"), Contents({{"Cali-12345678.xml", kXml}}));
  const ToolRun without = run(download, "PATH=/nowhere");
  EXPECT_EQ(without.exitCode, 3);
  EXPECT_THAT(without.err, HasSubstr("wget"));
}

TEST_F(ToolTest, KilledInTheMiddleOfADownload) {
  std::atomic<pid_t> process = -1;
  answerAndBreakOff({kLinks, kSuccess + "\r\n" + kXml, kLinks, kBrokenOff}, [&process] {
    kill(process, SIGKILL);
    usleep(100000);
  });
  process = fork();
  if (process == 0) {
    execl("kalvista", "kalvista", "download", "12345678", "--calibration-dir", "new", nullptr);
    _exit(127);
  }
  int status = 0;
  waitpid(process, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(run("check 12345678 --calibration-dir new").exitCode, 1);
  publish("12345678", sample);
  serve(linksDocument(kLink));
  EXPECT_EQ(run("download 12345678 --calibration-dir new").exitCode, 0);
  EXPECT_EQ(contentsOf("new"), sample);
}

}  // namespace
