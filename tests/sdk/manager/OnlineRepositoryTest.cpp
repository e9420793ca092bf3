// Calibrations fetched from web servers on the loopback, with the real downloader.
#include <gtest/gtest.h>
#include <kalvista/Cali.h>
#include <kalvista/IRCalibrationManager.h>

#include <tuple>

#include "support/ChildProcess.h"
#include "support/ManagerLog.h"
#include "support/OnlineRepository.h"

namespace {

namespace fs = std::filesystem;

constexpr unsigned long kSerial = 12345678;
const std::string kLinksFile = "/tmp/downloadlinks.xml";
const std::string kRepository = kServer + "/repository";
const std::string kUnreadable = "ERROR 654:Error reading " + kLinksFile;
const std::string kIncomplete = "ERROR 666:Error parsing download links file: " + kLinksFile;
const std::string kLost = "ERROR 718:Error downloading ";
const std::string kFailed = "INFO 551:Download failed.";
const std::string kComplete = "INFO 558:All files installed.";

// Text that the file names of a calibration hold.
std::string calibrationWithText(const std::string& text) {
  return nest({"CaliData", "Temperature", "Optics", "OpticsDef"},
              nest({"FOV"}, "33") + nest({"Text"}, text) +
                  nest({"TempRanges", "TemperatureRange", "TempHi"}, "100"));
}

void useDirectory(const std::string& directory) {
  ardo::IRCalibrationManager::getInstance()->setCalibrationDir(directory.c_str());
}
Outcome download(unsigned long serial) {
  return outcomeOf(
      [&] { return ardo::IRCalibrationManager::getInstance()->downloadCalibration(serial); });
}

class OnlineRepositoryTest : public OnlineRepositoryFixture {
 protected:
  void SetUp() override {
    OnlineRepositoryFixture::SetUp();
    useDirectory(cali_);
    ConfigCali::getInstance()->loaded = false;  // should another case have run in this process
    // What a hostile text makes run leaves a mark.
    for (const char* name : {"program", "program-0-100.dat"}) {
      fs::permissions(support::writeFile(name, "#!/bin/sh\ntouch mark\n"), fs::perms::all);
    }
    setenv("PATH", (folder_.path() + ":" + getenv("PATH")).c_str(), 1);
  }
  Outcome fetch(std::string files, const std::string& serial) const {
    return outcomeOf(
        [&] { return ardo::IRCalibrationManager::downloadTarget(files.data(), serial, cali_); });
  }
};

TEST_F(OnlineRepositoryTest, FirstPassFetchesTheXmlAndTheSecondTheRest) {
  publish("12345678", sample);
  serve(linksDocument(kLink));
  EXPECT_EQ(download(kSerial), Outcome(true, {kComplete}));
  EXPECT_EQ(contentsOf(cali_), sample);
  EXPECT_FALSE(fs::exists(kLinksFile));
  Lines first = requests();
  ASSERT_EQ(first.size(), 2 + sample.size());
  first.resize(3);
  EXPECT_EQ(first, Lines({"/downloadlinks.xml",
                          "/repository/12/1234/Califiles%20SN12345678/Cali-12345678.xml",
                          "/downloadlinks.xml"}));
}

// The downloader leaves an empty file for each that the server does not have. An empty XML file
// counts as missing, an empty data file does not.
TEST_F(OnlineRepositoryTest, FilesThatTheServerLacksCountAsStarted) {
  serve(linksDocument(kLink));
  EXPECT_EQ(download(kSerial), Outcome(true, {}));
  EXPECT_EQ(contentsOf(cali_), Contents({{"Cali-12345678.xml", ""}}));
  publish("12345678", {*sample.find("Cali-12345678.xml")});
  EXPECT_EQ(download(kSerial), Outcome(true, {kComplete}));
  EXPECT_EQ(contentsOf(cali_).size(), sample.size());
  EXPECT_EQ(requests().size(), 3 * 2 + 2 + sample.size());  // three passes, and then two
}

// The half file stays, and the next pass finds no server.
TEST_F(OnlineRepositoryTest, ServerThatBreaksOffAndThenIsGone) {
  const std::string xml = sample.at("Cali-12345678.xml");
  const std::string half = xml.substr(0, xml.find("</OpticsDef>") + 12);
  answerAndBreakOff({"HTTP/1.1 200 OK\r\n\r\n" + linksDocument(kLink),
                     "HTTP/1.1 200 OK\r\nContent-Length: 20000\r\n\r\n" + half},
                    [] {});
  EXPECT_EQ(download(kSerial), Outcome(false, {kUnreadable, kFailed}));
  EXPECT_EQ(contentsOf(cali_), Contents({{"Cali-12345678.xml", half}}));
}

TEST_F(OnlineRepositoryTest, LinksDocuments) {
  const std::string path = "/12/1234/Califiles SN12345678/a\"";
  const std::vector<std::tuple<std::string, Outcome, bool>> rows = {
      {"", {false, {kUnreadable}}, true},
      {nest({"Links"}, kLink), {false, {kUnreadable}}, true},
      {nest({"DownloadLinks"}, ""), {false, {kIncomplete}}, false},
      {nest({"DownloadLinks", "Imager"}, ""), {false, {kIncomplete}}, false},
      {nest({"DownloadLinks", "Imager", "CaliData"}, kLink), {false, {kIncomplete}}, false},
      {linksDocument(""), {false, {kLost}}, false},
      {linksDocument("<string>-</string>" + kLink), {false, {kLost + "\"-" + path}}, false},
      {linksDocument("<string>-" + kLink + "</string>"),
       {false, {kLost + "\"-<string>" + kRepository + path}},
       false},
  };
  for (const auto& [document, outcome, stays] : rows) {
    serve(document);
    EXPECT_EQ(fetch("a;", "12345678"), outcome) << document;
    EXPECT_EQ(fs::exists(kLinksFile), stays) << document;
  }
  fs::remove("web/downloadlinks.xml");
  EXPECT_EQ(fetch("a;", "12345678"), Outcome(false, {kUnreadable}));
  EXPECT_TRUE(fs::exists(kLinksFile));
}

// Of the files that cannot be asked for, those after a started one are not reported.
TEST_F(OnlineRepositoryTest, AddressesOfShortSerials) {
  serve(linksDocument(kLink));
  const std::string refused = kLost + "\"" + kRepository + "/7/7/Califiles SN7/(a)\"";
  EXPECT_EQ(fetch("(a);b;(c);", "7"), Outcome(true, {refused}));
  EXPECT_EQ(fetch("a", "123"), Outcome(true, {}));
  EXPECT_EQ(requests(), Lines({"/downloadlinks.xml", "/repository/7/7/Califiles%20SN7/b",
                               "/downloadlinks.xml", "/repository/12/123/Califiles%20SN123/a"}));
}

TEST_F(OnlineRepositoryTest, WriteTestComesFirst) {
  const std::string open = folder_ / "open";
  const std::string closed = folder_ / "closed";
  for (const auto& folder : {open, closed}) writeAll(folder, sample);
  fs::permissions(open, fs::perms::all);
  fs::permissions(closed, fs::perms(0555));
  const std::string notPermitted = "ERROR 520:No writing permissions to " + closed;
  const std::vector<std::tuple<std::string, unsigned long, Outcome>> rows = {
      {closed, kSerial, {false, {notPermitted}}},
      {closed, 0, {false, {notPermitted}}},
      {"/no", kSerial, {false, {"ERROR 524:Something went wrong: No such file or directory"}}},
      {open, 0, {false, {"ERROR 538:No serial number specified."}}},
      {open, kSerial, {true, {kComplete}}},
  };
  const int failed = support::asUnprivilegedUser([&rows] {
    for (const auto& [directory, serial, outcome] : rows) {
      useDirectory(directory);
      EXPECT_EQ(download(serial), outcome) << directory << " " << serial;
    }
    return HasFailure();
  });
  EXPECT_EQ(failed, 0);
  EXPECT_EQ(contentsOf(open), sample);
  fs::permissions(closed, fs::perms::all);
}

// The command interpreter runs, but how it ended is lost: each try reports -1.
TEST_F(OnlineRepositoryTest, ApplicationThatIgnoresItsChildren) {
  serve(linksDocument(kLink));
  signal(SIGCHLD, SIG_IGN);
  const Outcome outcome = download(kSerial);
  signal(SIGCHLD, SIG_DFL);
  const std::string address =
      "\"" + kRepository + "/12/1234/Califiles SN12345678/Cali-12345678.xml\"";
  EXPECT_EQ(outcome, Outcome(false, {kLost + address, kFailed}));
}

TEST_F(OnlineRepositoryTest, LinksThatTheShellOrTheDownloaderWouldActOn) {
  for (const char* link :
       {"http://$(touch mark)", "http://`touch mark`", "http://x\"; touch mark; \"",
        "http://x\rtouch mark\r", "http://x\\", "--use-askpass=program"}) {
    serve(linksDocument(nest({"string"}, link)));
    EXPECT_FALSE(fetch("a;", "12345678").first) << link;
    EXPECT_FALSE(fs::exists("mark")) << link;
  }
}

TEST_F(OnlineRepositoryTest, OpticsTextsThatTheShellOrTheDownloaderWouldActOn) {
  serve(linksDocument(kLink));
  unsigned long serial = 1000;
  const auto isStarted = [&](const std::string& text) {
    const std::string name = "Cali-" + std::to_string(++serial);
    publish(name.substr(5), {{name + ".xml", calibrationWithText(text)},
                             {name + "-33-wide lens-0-100.dat", "data"}});
    return download(serial).first;
  };
  for (const char* text :
       {"$(touch mark)", "`touch mark`", "x|touch mark|", "x&touch mark&", "x\rtouch mark\r", "(x)",
        "x>mark", "<x", "'x'", "\"x\"", "\\", "../x", "x --use-askpass=program",
        "x\t--use-askpass=program", "x -e use_askpass=program", "x {-euse_askpass=program,y}", "x*",
        "x #"}) {
    EXPECT_FALSE(isStarted(text)) << text;
    EXPECT_FALSE(fs::exists("mark")) << text;
  }
  EXPECT_TRUE(isStarted("x;touch mark"));
  EXPECT_TRUE(isStarted("No#2~!"));
  EXPECT_FALSE(fs::exists("mark"));
  // A blank ends the name that a file is stored under, not the one that the server is asked for.
  EXPECT_TRUE(isStarted("wide lens"));
  EXPECT_EQ(support::readFile(cali_ + "/Cali-1021-33-wide"), "data");
}

}  // namespace
