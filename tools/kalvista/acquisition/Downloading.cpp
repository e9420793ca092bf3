// The way from the online repository, by passes of the library's download.
#include <kalvista/IRCalibrationManager.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "acquisition/Acquisition.h"
#include "acquisition/ChildProcess.h"
#include "acquisition/Downloader.h"
#include "acquisition/Staging.h"
#include "answer/Console.h"
#include "machine/Files.h"
#include "machine/Machine.h"
#include "machine/Paths.h"

namespace tool {
namespace {

// The first brings the XML file, which names the others; the third is for what failed once.
constexpr int kPasses = 3;

// Where the library keeps the links document, for all users of the machine.
constexpr const char* kLinksDocument = "/tmp/downloadlinks.xml";

// A document of another user cannot be replaced, and would decide where files come from.
void refuseForeignLinksDocument() {
  struct stat status {};
  if (lstat(kLinksDocument, &status) != 0) return;
  if (S_ISREG(status.st_mode) && status.st_uid == geteuid()) return;
  throw Failure(ExitCode::CouldNot, std::string("the file ") + kLinksDocument +
                                        " belongs to someone else; remove it, or wait until the "
                                        "other download has ended");
}

void warnWithoutRoute() {
  if (countDefaultRoutes() > 0) return;
  warn("there is no default route to a network; trying all the same, since a proxy may serve");
}

std::string joinNames(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += name + ";";
  return list;
}

ChildResult runPass(const Staging& staging, const CommonOptions& common, unsigned long serial,
                    const std::vector<std::string>& names, unsigned timeoutSeconds) {
  ChildLimits limits;
  limits.silence = std::chrono::seconds(timeoutSeconds);
  limits.progress = [&] { return staging.bytes(); };
  limits.showOutput = common.isDebug();
  const DownloaderStandIn standIn(staging.path());
  ChildResult result = callInChild(
      [&] {
        standIn.takeOver();
        std::string list = joinNames(names);
        return ardo::IRCalibrationManager::downloadTarget(list.data(), std::to_string(serial),
                                                          staging.path());
      },
      limits);
  std::remove(kLinksDocument);  // the library leaves one that it cannot read
  return result;
}

void refuseFailedPass(const ChildResult& pass, unsigned timeoutSeconds) {
  if (pass.timedOut) {
    throw Failure(ExitCode::CouldNot, "nothing arrived for " + countText(timeoutSeconds, "second") +
                                          ", the time limit, and the download was given up; try "
                                          "again, or allow more with --timeout SECONDS");
  }
  if (!pass.succeeded) {
    throw Failure(ExitCode::CouldNot,
                  std::string("the online repository cannot be used: its links document ") +
                      KALVISTA_DOWNLOAD_LINKS_URL +
                      " did not arrive or names no repository; check the network and the proxy, or "
                      "use \"kalvista copy\"");
  }
}

void announcePass(int pass, const CalibrationStatus& status) {
  const std::size_t count = status.lacking().size();
  note("pass " + std::to_string(pass) + ": " + countText(count, "file") +
       (count == 1 ? " is" : " are") + " missing, fetching from the online repository");
}

}  // namespace

Acquisition downloadMissing(const CommonOptions& common, unsigned long serial,
                            unsigned timeoutSeconds) {
  requireWorkableCalibrationDir(common);
  clearLeftovers(common.calibrationDir);
  Acquisition result;
  result.status = inspectCalibration(common.calibrationDir, serial);
  if (result.status.complete()) return result;
  requireProgram("wget");
  refuseForeignLinksDocument();
  warnWithoutRoute();
  for (int pass = 1; pass <= kPasses && !result.status.complete(); ++pass) {
    announcePass(pass, result.status);
    const std::vector<std::string> wanted = namesOf(result.status.lacking());
    Staging staging(common.calibrationDir, serial);
    const ChildResult child = runPass(staging, common, serial, wanted, timeoutSeconds);
    const std::vector<std::string> installed = staging.install(wanted);
    if (installed.size() < wanted.size() && !common.isDebug()) quote(child.output);
    refuseFailedPass(child, timeoutSeconds);
    result.installed.insert(result.installed.end(), installed.begin(), installed.end());
    result.status = inspectCalibration(common.calibrationDir, serial);
    if (installed.empty()) break;
  }
  return result;
}

}  // namespace tool
