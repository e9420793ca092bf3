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

std::map<std::string, fs::file_time_type> timesOf(const std::string& folder) {
  std::map<std::string, fs::file_time_type> times;
  for (const auto& entry : fs::directory_iterator(folder)) {
    times[entry.path()] = entry.last_write_time();
  }
  return times;
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
    writeAll("hollow", sample);
    std::ofstream("hollow/Cali-12345678-33-0-250-27.dat");
    writeAll("repository/12/1234", sample);
    for (const char* folder : {"none", "new"}) fs::create_directory(folder);
    support::writeFile("imager.xml", sampleConfiguration);
  }
};

TEST_F(ToolTest, EveryCommandAsTextAndAsJson) {
  // Arguments, exit code, and a part of what is written; nothing for no standard output at all.
  const std::vector<std::tuple<std::string, int, std::string, std::string>> rows = {
      {"version", 0, "kalvista 1.", ""},
      {"check 12345678 --calibration-dir full", 0, "", ""},
      {"check 12345678 --calibration-dir none", 1, "Cali-12345678.xml\n",
       "kalvista copy 12345678 REPOSITORY"},
      {"check 2147483647 --calibration-dir none", 1, "Cali-2147483647.xml\n", "2147483647"},
      {"check 12345678 --calibration-dir hollow", 1, "Cali-12345678-33-0-250-27.dat (empty)\n", ""},
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
  for (const auto& [arguments, exitCode, out, err] : rows) {
    SCOPED_TRACE(arguments);
    const ToolRun text = run(arguments);
    EXPECT_EQ(text.exitCode, exitCode);
    EXPECT_EQ(text.out.empty(), out.empty());
    EXPECT_THAT(text.out, HasSubstr(out));
    EXPECT_THAT(text.err, HasSubstr(err));
    const ToolRun json = run("--json " + arguments);
    EXPECT_EQ(json.exitCode, exitCode);
    const auto document = nlohmann::json::parse(json.out, nullptr, false);
    ASSERT_TRUE(document.is_object()) << json.out;
    EXPECT_EQ(document["command"], arguments.substr(0, arguments.find(' ')));
    EXPECT_EQ(document["problem"].is_null(), exitCode == 0);
  }
}

TEST_F(ToolTest, WrongUsage) {
  std::vector<std::string> rows = {"",
                                   "nonsense",
                                   "check 1 --verbosity loud",
                                   "copy 1",
                                   "download 1 --timeout 0",
                                   "copy 1 full --calibration-dir 'a b'"};
  for (const char* serial :
       {"", "0", "2147483648", "99999999999999999999", "+5", "-5", "' 5'", "5x", "''", "1 2"}) {
    rows.push_back(std::string("check ") + serial);
  }
  for (const char* path : {"'a b'", "'a;b'", "'a$b'", "\"a'b\"", "'a*'", "'a\nb'"}) {
    rows.push_back(std::string("copy 1 ") + path);
  }
  for (const std::string& arguments : rows) {
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
  const std::string write = "config 12345678 --calibration-dir full -o new/camera.xml";
  EXPECT_EQ(run(write).exitCode, 0);
  const Contents written = contentsOf("new");
  const auto times = timesOf("new");
  EXPECT_EQ(run(write).exitCode, 0);
  EXPECT_EQ(timesOf("new"), times);
  support::writeFile("new/camera.xml", "mine");
  EXPECT_EQ(run(write).exitCode, 3);
  // More than 512 bytes of a file kill the tool in the middle.
  EXPECT_GT(run(write + " --force", "ulimit -f 1;").exitCode, 128);
  EXPECT_EQ(support::readFile("new/camera.xml"), "mine");
  EXPECT_EQ(run(write + " --force").exitCode, 0);
  EXPECT_EQ(contentsOf("new"), written);
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
    const Contents contents = contentsOf("new");
    const auto times = timesOf("new");
    EXPECT_EQ(contents.size(), sample.size() + 1);
    EXPECT_THAT(run(setup).out, HasSubstr("nothing had to be changed"));
    EXPECT_EQ(contentsOf("new"), contents);
    EXPECT_EQ(timesOf("new"), times);
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
  if (!mountTmpfs("new", "size=64k")) GTEST_SKIP() << "a small disk needs root";
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
  if (machine_.isOwn) {
    EXPECT_THAT(some.err, HasSubstr("no default route"));
  }
  publish("12345678", sample);
  EXPECT_EQ(run("download 12345678 --calibration-dir new").exitCode, 0);
  EXPECT_EQ(contentsOf("new"), sample);
}

TEST_F(ToolTest, DownloadThatFails) {
  const std::string download = "download 12345678 --calibration-dir new --timeout 5";
  EXPECT_EQ(run(download, "env --ignore-signal=CHLD").exitCode, 3) << "no server";
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
  std::atomic<pid_t> process = 0;
  answerAndBreakOff({kLinks, kSuccess + "\r\n" + kXml, kLinks, kBrokenOff}, [&process] {
    while (process <= 0) usleep(1000);
    kill(process, SIGKILL);
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
