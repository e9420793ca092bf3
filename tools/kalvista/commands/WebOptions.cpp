#include "commands/WebOptions.h"

#include <algorithm>

#include "acquisition/Address.h"
#include "camera/Calibration.h"

namespace tool {
namespace {

constexpr unsigned kLongestTimeout = 24 * 60 * 60;
constexpr unsigned kMostMegabytes = 1024 * 1024;
constexpr unsigned kTimeoutOfComparison = 10;
constexpr std::uintmax_t kMegabyte = 1000 * 1000;

std::string checkAddress(const std::string& text) {
  return isWebAddress(text)
             ? ""
             : "the address " + shownAddress(text) + " does not begin with http:// or https://";
}

}  // namespace

void addWebOptions(CLI::App& app, WebOptions& web) {
  app.add_option("--timeout", web.timeoutSeconds,
                 "Give a file up when it comes with less than 100 bytes a second for so long")
      ->type_name("SECONDS")
      ->check(CLI::Range(1U, kLongestTimeout).description(""))
      ->capture_default_str();
  app.add_option("--max-size", web.maxMegabytes, "Take no file that is larger")
      ->type_name("MB")
      ->check(CLI::Range(1U, kMostMegabytes).description(""))
      ->capture_default_str();
  app.add_option("--mirror", web.mirror,
                 "Fetch from the repository at this address, in place of the online ones")
      ->type_name("URL")
      ->check(CLI::Validator(checkAddress, ""));
}

void addUpdate(CLI::App& app, bool& update) {
  app.add_flag("--update", update,
               "Replace the files that are otherwise in the repository, all of them together");
}

FetchLimits limitsOf(const WebOptions& web) {
  FetchLimits limits;
  limits.timeoutSeconds = web.timeoutSeconds;
  limits.maxBytes = web.maxMegabytes * kMegabyte;
  return limits;
}

FetchLimits limitsFor(const WebOptions& web, const CommonOptions& common, unsigned long serial,
                      bool update) {
  FetchLimits limits = limitsOf(web);
  if (update || !lookAtCalibration(common.calibrationDir, serial).complete()) return limits;
  limits.timeoutSeconds = std::min(limits.timeoutSeconds, kTimeoutOfComparison);
  limits.tries = 1;
  return limits;
}

}  // namespace tool
