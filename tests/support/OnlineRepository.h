// An online repository on the loopback, and a calibration directory to fill from it.
#ifndef KALVISTA_TESTS_SUPPORT_ONLINE_REPOSITORY_H
#define KALVISTA_TESTS_SUPPORT_ONLINE_REPOSITORY_H

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>

#include "support/OwnNamespaces.h"
#include "support/TemporaryFolder.h"
#include "support/WebServer.h"

using Contents = std::map<std::string, std::string>;  // of files, by name

inline Contents contentsOf(const std::string& folder) {
  Contents contents;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    contents[entry.path().filename()] = support::readFile(entry.path());
  }
  return contents;
}
inline void writeAll(const std::string& folder, const Contents& contents) {
  std::filesystem::create_directories(folder);
  for (const auto& [name, content] : contents) support::writeFile(folder + "/" + name, content);
}

const Contents sample = contentsOf(SAMPLE_REPOSITORY "/12/1234/Califiles SN12345678");
const std::string kServer = "http://127.0.0.1:" + std::to_string(LOOPBACK_PORT);
const std::string kLink = "<string>" + kServer + "/repository</string>";

// Puts elements around a content, the outermost first. What stands on a line of the root's tags is
// not read.
inline std::string nest(const std::vector<std::string>& names, std::string content) {
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    content = "<" + *name + ">\n" + content + "</" + *name + ">\n";
  }
  return content;
}
inline std::string linksDocument(const std::string& links) {
  return nest({"DownloadLinks", "Imager", "CaliData", "Links"}, links);
}

// A loopback and a folder /tmp of the test's own where that is allowed: the port and the place of
// the links document belong to everybody.
struct OwnMachine {
  OwnMachine() {
    std::filesystem::current_path("/");
    if (!enterOwnNamespaces(CLONE_NEWNS | CLONE_NEWNET)) return;
    const int source = open(SOURCE_FOLDER, O_PATH | O_CLOEXEC);
    const int build = open(BUILD_FOLDER, O_PATH | O_CLOEXEC);
    isOwn = mountTmpfs("/tmp") && std::system("ip link set lo up") == 0;
    if (!isOwn) return;
    keepInSight(SOURCE_FOLDER, source);
    keepInSight(BUILD_FOLDER, build);
  }
  ~OwnMachine() {
    if (isOwn) umount2("/tmp", MNT_DETACH);
  }
  bool isOwn = false;

 private:
  // What is read and started may itself lie in /tmp.
  static void keepInSight(const char* folder, int opened) {
    std::error_code error;
    if (!std::filesystem::create_directories(folder, error)) return;
    const std::string from = "/proc/self/fd/" + std::to_string(opened);
    mount(from.c_str(), folder, nullptr, MS_BIND | MS_REC, nullptr);
  }
};

class OnlineRepositoryFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("no_proxy", "127.0.0.1", 1);
    std::filesystem::current_path(folder_.path());
    std::filesystem::create_directories("web");
    std::filesystem::create_directory("cali");
    std::filesystem::remove("/tmp/downloadlinks.xml");
    for (const char* program : {WebServer::kProgram, "/usr/bin/wget"}) {
      if (access(program, X_OK) != 0) GTEST_SKIP() << program << " is missing";
    }
  }
  void serve(const std::string& document) {
    support::writeFile("web/downloadlinks.xml", document);
    if (server_ == nullptr) server_ = std::make_unique<WebServer>(folder_.path());
  }
  void publish(const std::string& serial, const Contents& contents) const {
    writeAll("web/repository/" + serial.substr(0, 2) + "/" + serial.substr(0, 4) + "/Califiles SN" +
                 serial,
             contents);
  }
  // Ends the server, so that every request is on record.
  std::vector<std::string> requests() {
    server_.reset();
    return support::linesOf(support::readFile("requests"));
  }
  OwnMachine machine_;
  support::TemporaryFolder folder_;
  const std::string cali_ = folder_ / "cali";
  std::unique_ptr<WebServer> server_;
};

#endif  // KALVISTA_TESTS_SUPPORT_ONLINE_REPOSITORY_H
