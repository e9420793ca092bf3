// IRCalibrationManager: calibration files from the online repository.
#include <kalvista/IRCalibrationManager.h>
#include <kalvista/SimpleXML.h>
#include <kalvista/TextRoutines.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/log/LogMessage.h"
#include "sdk/text/NoThrow.h"

namespace ardo {

namespace {

constexpr const char* kRepositorySource = "IRCalibrationManager";
constexpr int kLineNotPermitted = 520;
constexpr int kLineWriteTestFailed = 524;
constexpr int kLineNoSerial = 538;
constexpr int kLineDownloadFailed = 551;
constexpr int kLineAllInstalled = 558;
constexpr int kLineLinksUnreadable = 654;
constexpr int kLineLinksIncomplete = 666;
constexpr int kLineFileFailed = 718;

constexpr const char* kLinksFile = "/tmp/downloadlinks.xml";
constexpr int kNotStarted = -1;

using Links = std::vector<std::string>;

bool mayStartDownloads(std::string_view link) {
  return link.find_first_of("\"`$\\\n\r") == std::string_view::npos && link.substr(0, 1) != "-";
}

bool isHonestFileName(std::string_view name) {
  if (name.find_first_of("\"`$\\\n\r';|&<>()/{*?[") != std::string_view::npos) return false;
  const auto beginsBadWord = [](char before, char character) {
    return (before == ' ' || before == '\t') &&
           std::string_view("-#~").find(character) != std::string_view::npos;
  };
  return std::adjacent_find(name.begin(), name.end(), beginsBadWord) == name.end();
}

// Links of further elements are looked for inside the element of the link before: among siblings
// only the first is a link.
Links collectLinks(SimpleXML& document) {
  Links links;
  char* text = nullptr;
  while (document.getString("string", &text)) {
    const std::unique_ptr<char[]> owned(text);
    document.setNode("string");
    links.emplace_back(brivex::W2C(text));
  }
  return links;
}

// Reads and removes the links document; one that cannot be read stays for a look at it.
bool readLinks(Links& links) {
  SimpleXML document;
  if (!document.open(kLinksFile, "DownloadLinks") || !document.hasRoot()) {
    logMessage(kLogError, kRepositorySource, kLineLinksUnreadable, "Error reading ", kLinksFile);
    return false;
  }
  document.setNode();
  bool complete = true;
  for (const char* level : {"Imager", "CaliData", "Links"}) complete &= document.setNode(level);
  if (complete) links = collectLinks(document);
  std::remove(kLinksFile);
  if (!complete) {
    logMessage(kLogError, kRepositorySource, kLineLinksIncomplete,
               "Error parsing download links file: ", kLinksFile);
  }
  return complete;
}

std::string addressOf(const std::string& link, const std::string& serial, const std::string& file) {
  return "\"" + link + "/" + serial.substr(0, 2) + "/" + serial.substr(0, 4) + "/Califiles SN" +
         serial + "/" + file + "\"";
}

// What came over the network reaches the command interpreter only when it cannot act on it.
int startDownload(const std::string& link, const std::string& address, const std::string& file,
                  const std::string& targetDir) {
  if (!mayStartDownloads(link) || !isHonestFileName(file)) return kNotStarted;
  return std::system(("wget " + address + " -O " + targetDir + "/" + file).c_str());
}

// True once the calibration directory was seen to be writable.
bool testWriting(const std::string& directory) {
  const std::string probe = directory + "/.kalvista_access";
  std::FILE* file = std::fopen(probe.c_str(), "we");
  if (file == nullptr) {
    const int error = errno;
    if (error == EACCES) {
      logMessage(kLogError, kRepositorySource, kLineNotPermitted, "No writing permissions to ",
                 directory);
    } else {
      logMessage(kLogError, kRepositorySource, kLineWriteTestFailed,
                 "Something went wrong: ", static_cast<const char*>(std::strerror(error)));
    }
    return false;
  }
  std::fclose(file);
  std::remove(probe.c_str());
  return true;
}

// Tells by `started` whether a download was started, also when an exception ends it.
void downloadFiles(const std::string& files, const std::string& serialText,
                   const std::string& targetDir, bool& started) {
  const int ignored = std::system("wget " KALVISTA_DOWNLOAD_LINKS_URL " -O /tmp/downloadlinks.xml");
  static_cast<void>(ignored);
  Links links;
  if (!readLinks(links)) return;
  for (std::size_t begin = 0, end = 0; begin < files.size(); begin = end + 1) {
    end = std::min(files.find(';', begin), files.size());
    const std::string file = files.substr(begin, end - begin);
    std::string address;
    const bool taken = std::any_of(links.begin(), links.end(), [&](const std::string& link) {
      address = addressOf(link, serialText, file);
      return startDownload(link, address, file, targetDir) != kNotStarted;
    });
    started |= taken;
    // Files that fail after one that was started are left to the next check.
    if (!started) {
      logMessage(kLogError, kRepositorySource, kLineFileFailed, "Error downloading ", address);
    }
  }
}

}  // namespace

bool IRCalibrationManager::downloadTarget(char* fileList, std::string serialText,
                                          std::string targetDir) {
  bool started = false;
  withoutThrowing(
      [&] { downloadFiles(fileList != nullptr ? fileList : "", serialText, targetDir, started); });
  return started;
}

bool IRCalibrationManager::downloadCalibration(unsigned long serial) {
  if (!withoutThrowing(false, [&] { return testWriting(_calibrationDir); })) return false;
  if (serial == 0) {
    logMessage(kLogError, kRepositorySource, kLineNoSerial, "No serial number specified.");
    return false;
  }
  constexpr int kPasses = 3;
  for (int pass = 0; pass < kPasses; ++pass) {
    errno = 0;
    const std::unique_ptr<char[]> missing(checkCalibration(serial));
    if (missing == nullptr && errno == 0) {
      logMessage(kLogInfo, kRepositorySource, kLineAllInstalled, "All files installed.");
      return true;
    }
    const bool started =
        missing != nullptr && withoutThrowing(false, [&] {
          return downloadTarget(missing.get(), std::to_string(serial), _calibrationDir);
        });
    if (!started) {
      logMessage(kLogInfo, kRepositorySource, kLineDownloadFailed, "Download failed.");
      return false;
    }
  }
  // Callers take the third pass for done, and ask checkCalibration() what is still missing.
  return true;
}

}  // namespace ardo
