// The command-line tool as its users and their scripts meet it.
#include <gmock/gmock.h>

#include <atomic>
#include <nlohmann/json.hpp>

#include "support/OnlineRepository.h"
#include "support/Transcript.h"
#include "support/UsbTree.h"

namespace {

using ::testing::HasSubstr;

const std::string sampleConfiguration = support::readFile(SAMPLE_CONFIGURATION);
// Taken before the build, which may be a folder in /tmp, is out of sight.
const std::string transcript = support::readFile(TRANSCRIPTS "/tools/kalvista/tool.txt");
const std::string cameraTranscript = support::readFile(TRANSCRIPTS "/tools/kalvista/camera.txt");
const int tool = open(TOOL_FILE, O_RDONLY | O_CLOEXEC);
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
std::string stateOf(const std::string& folder) {
  return outputOf("find " + folder + " -type f -printf '%P %s %T@\\n' | sort");
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

// Arguments, and parts of what goes to standard output and to standard error. With --json the same
// comes to the same end, as one document.
TEST_F(ToolTest, Transcript) {
  Commands on;
  on["kalvista"] = [](auto& a) {
    a.resize(3);
    const ToolRun text = run(a[0].text);
    const ToolRun json = run("--json " + a[0].text);
    const auto document = nlohmann::json::parse(json.out, nullptr, false);
    const bool documentFits =
        document.is_object() && document["problem"].is_null() == (text.exitCode == 0);
    const bool fits = json.exitCode == text.exitCode && documentFits &&
                      text.out.empty() == a[1].text.empty() &&
                      text.out.find(a[1].text) != std::string::npos &&
                      text.err.find(a[2].text) != std::string::npos;
    return fits ? shown(text.exitCode) : shown(text.exitCode, text.out, text.err, json.out);
  };
  runTranscript("tool.txt", on, transcript);
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
    EXPECT_EQ(contentsOf("new").size(), sample.size() + 1);
    const std::string before = stateOf("new");
    EXPECT_THAT(run(setup).out, HasSubstr("nothing had to be changed"));
    EXPECT_EQ(stateOf("new"), before);
  }
}

TEST_F(ToolTest, AttachedCamera) {
  if (!usb::makeTree()) GTEST_SKIP() << "a USB tree of its own needs root, who may mount it";
  if (!usb::makeNodes()) GTEST_SKIP() << "device nodes of its own need overlays";
  usb::attach("1-1", {{"idVendor", "1d6b\n"}, {"idProduct", "0002\n"}});
  Commands on;
  on["attach"] = [](auto& a) {
    usb::attach("1-" + a[1].text, usb::camera(a[0].text, a[1].text, a.size() < 3));
    return "";
  };
  runTranscript("camera.txt", on, cameraTranscript);
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
  most["Cali-12345678-33-150-900-27.dat"] =
      "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!-- a page -->\n<html xmlns=\"x\">Not here</html>";
  most["Cali-12345678-33-150-900-80.dat"] = "\x1F\x8B\x08packed";
  publish("12345678", most);
  serve(linksDocument(kLink));
  const ToolRun some = run("download 12345678 --calibration-dir new");
  EXPECT_EQ(some.exitCode, 1);
  EXPECT_EQ(some.out,
            "Cali-12345678-33-0-250-27.dat\nCali-12345678-33-0-250-32.dat\n"
            "Cali-12345678-33-0-250-80.dat\nCali-12345678-33-150-900-27.dat\n"
            "Cali-12345678-33-150-900-80.dat\n");
  EXPECT_EQ(contentsOf("new").size(), sample.size() - 5);
  expectWholeFilesOnly("new");
  if (machine_.isOwn) {
    EXPECT_THAT(some.err, HasSubstr("no default route"));
  }
  publish("12345678", sample);
  EXPECT_EQ(run("download 12345678 --calibration-dir new").exitCode, 0);
  EXPECT_EQ(contentsOf("new"), sample);
}

// The directory is one that no search path can name.
TEST_F(ToolTest, DownloadThatFails) {
  fs::create_directory("n:w");
  const std::string download = "download 12345678 --calibration-dir n:w --timeout 5";
  EXPECT_EQ(run(download, "env --ignore-signal=CHLD").exitCode, 3) << "no server";
  answerAndBreakOff({kLinks, kSuccess + "\r\n" + kHalf}, [] {});
  EXPECT_EQ(run(download).exitCode, 1) << "breaks off unnoticed";
  EXPECT_TRUE(fs::is_empty("n:w"));
  answerAndBreakOff({kLinks, kSuccess + "\r\n" + kXml, kLinks, kBrokenOff}, [] {});
  EXPECT_EQ(run(download).exitCode, 1) << "breaks off";
  answerAndBreakOff({kLinks, kBrokenOff}, [] { pause(); });
  const ToolRun silent = run(download);
  EXPECT_EQ(silent.exitCode, 3);
  EXPECT_THAT(silent.err, HasSubstr("--timeout"));
  EXPECT_EQ(contentsOf("n:w"), Contents({{"Cali-12345678.xml", kXml}}));
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
