// Options of the commands that fetch from web servers.
#ifndef KALVISTA_TOOL_WEB_OPTIONS_H
#define KALVISTA_TOOL_WEB_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>

#include "acquisition/Fetcher.h"
#include "machine/CommonOptions.h"

namespace tool {

struct WebOptions {
  unsigned timeoutSeconds = kDefaultTimeoutSeconds;
  unsigned maxMegabytes = 256;
  std::string mirror;  // empty for the repositories of the links document
};

void addWebOptions(CLI::App& app, WebOptions& web);
// Replacing what differs from the repository.
void addUpdate(CLI::App& app, bool& update);

FetchLimits limitsOf(const WebOptions& web);
// Short for a calibration that is complete: the servers are only asked whether it is still theirs.
FetchLimits limitsFor(const WebOptions& web, const CommonOptions& common, unsigned long serial,
                      bool update);

}  // namespace tool

#endif  // KALVISTA_TOOL_WEB_OPTIONS_H
