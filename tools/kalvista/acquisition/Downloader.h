// The tool in the role of the downloader.
//
// The library starts "wget" by name, does not ask how it ended, and lets it write under the final
// name, so that a file cut short looks like a whole one. The tool therefore puts itself in front,
// under that name, in the search path of the commands that the library starts: it runs the real
// downloader and gives a file its name only after a success.
#ifndef KALVISTA_TOOL_DOWNLOADER_H
#define KALVISTA_TOOL_DOWNLOADER_H

#include <string>

namespace tool {

// The folder that makes the stand-in. It lies outside of the calibration directory, whose path may
// hold what a search path cannot, and whose file system may know no links.
class DownloaderStandIn {
 public:
  explicit DownloaderStandIn(const std::string& stagingFolder);
  ~DownloaderStandIn();
  DownloaderStandIn(const DownloaderStandIn&) = delete;
  DownloaderStandIn& operator=(const DownloaderStandIn&) = delete;

  // Puts the tool in front of the real downloader, for this process and those that it starts.
  void takeOver() const;

 private:
  std::string folder_;
};

bool isCalledAsDownloader(const char* programName);
// Gives the exit status of the real downloader.
int runDownloader(char** arguments);

}  // namespace tool

#endif  // KALVISTA_TOOL_DOWNLOADER_H
