// The command-line tool as its users and their scripts meet it.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "support/OnlineRepository.h"
#include "support/Transcript.h"
#include "support/UsbTree.h"

namespace {

using ::testing::HasSubstr;

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
    fs::copy_file(TOOL_FILE, "kalvista");
    writeAll("full", sample);
    writeAll("hollow", sample);
    std::ofstream("hollow/Cali-12345678-33-0-250-27.dat");
    writeAll("repository/12/1234", sample);
    for (const char* folder : {"none", "new"}) fs::create_directory(folder);
    fs::copy_file(SAMPLE_CONFIGURATION, "imager.xml");
  }
};

// The exit status and all that is printed, on standard error behind "! "; "-" is this folder. With
// --json the same comes to the same end, as one document.
TEST_F(ToolTest, Transcript) {
  Commands on;
  on["kalvista"] = [](auto& a) {
    const ToolRun text = run(a[0].text);
    const ToolRun json = run("--json " + a[0].text);
    const auto document = nlohmann::json::parse(json.out, nullptr, false);
    const bool fits = json.exitCode == text.exitCode && document.is_object() &&
                      document["problem"].is_null() == (text.exitCode == 0);
    if (!fits) return shown(text.exitCode, json.exitCode, json.out, json.err);
    const std::regex here(fs::current_path().string());
    const std::string err = std::regex_replace(text.err, std::regex("(^|\n)(?=.)"), "$1! ");
    return std::regex_replace(shown(text.exitCode) + "\n" + text.out + err, here, "-");
  };
  publish("12345678", sample);
  serve(linksDocument(kLink));
  runTranscript("tools/kalvista/tool.txt", on);
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
    run("config 12345678 --fov 60 --force -o new/config-12345678.xml --calibration-dir new");
    EXPECT_EQ(contentsOf("new").size(), sample.size() + 1);
    const std::string before = stateOf("new");
    EXPECT_THAT(run(setup).out, HasSubstr("nothing had to be changed"));
    EXPECT_EQ(stateOf("new"), before);
  }
}

TEST_F(ToolTest, AttachedCamera) {
  if (!usb::makeTree()) GTEST_SKIP() << "a USB tree of its own needs root, who may mount it";
  if (!usb::makeNodes()) GTEST_SKIP() << "device nodes of its own need overlays";
  usb::attach("1-1", {{"idVendor", "1d6b\n"}, {"idProduct", USB_PRODUCT_ID "\n"}});
  Commands on;
  on["attach"] = [](auto& a) {
    usb::attach("1-" + a[1].text, usb::camera(a[0].text, a[1].text, a.size() < 3));
    return "";
  };
  runTranscript("tools/kalvista/camera.txt", on);
}

TEST_F(ToolTest, DiskFull) {
  if (!mountTmpfs("new", "size=64k")) GTEST_SKIP() << "a small disk needs root";
  const std::string copy = "copy 12345678 repository --calibration-dir new";
  EXPECT_EQ(run(copy).exitCode, 3);
  expectWholeFilesOnly("new");
  std::ofstream("new/filler") << std::string(64 << 10, 'x');
  EXPECT_THAT(run(copy).err, HasSubstr("; make room there, or give another directory\n"));
  EXPECT_EQ(run("config 12345678 -o new/camera.xml --calibration-dir full").exitCode, 3);
  EXPECT_FALSE(fs::exists("new/camera.xml"));
  fs::remove("new/filler");
  ASSERT_EQ(mount("none", "new", nullptr, MS_REMOUNT, "size=0"), 0);
  EXPECT_EQ(run(copy).exitCode, 0);
  EXPECT_EQ(contentsOf("new"), sample);
}

// No program of this machine is needed, and the directory is one that no search path can name.
TEST_F(ToolTest, LinksDocuments) {
  const std::string download = "download 12345678 --calibration-dir n:w --timeout 5";
  fs::create_directory("n:w");
  EXPECT_THAT(run(download).err, HasSubstr("check the network"));
  publish("12345678", sample);
  const std::string elsewhere = "<string>http://127.0.0.1:9</string>";
  std::string foreign;  // more than the reader enters
  for (int i = 0; i < 300; ++i) foreign += "<string>me:secret@127.0.0.1/x</string>\n";
  const std::string head = "kalvista: the online repository cannot be used: its links document " +
                           kServer + "/downloadlinks.xml: ";
  const std::string tail = "; check the network and the proxy, or use \"kalvista copy\"\n";
  struct Row {
    std::string document;
    int exitCode;
    std::string part;
  };
  for (const Row& row : std::vector<Row>{
           {"<html>Sign in</html>", 3, head + "it is no links document" + tail},
           {nest({"DownloadLinks", "Imager"}, ""), 3, head + "it has no CaliData" + tail},
           {linksDocument(""), 3, head + "it names no repository" + tail},
           {linksDocument(foreign), 3, ": 127.0.0.1/x: it is no http or https address" + tail},
           {linksDocument(elsewhere), 3, "127.0.0.1:9"},
           {linksDocument(kLink), 0, ""},
           {"", 0, "the calibration is complete, and could not be compared: the online"}}) {
    serve(row.document);
    const ToolRun ended = run(download, "env PATH=/nowhere");
    EXPECT_EQ(ended.exitCode, row.exitCode) << row.document << ended.err;
    EXPECT_THAT(ended.err, HasSubstr(row.part));
    EXPECT_EQ(contentsOf("n:w").empty(), row.exitCode != 0);
  }
  EXPECT_EQ(contentsOf("n:w"), sample);
}

}  // namespace
