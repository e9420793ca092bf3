// A repository of many cameras in the online layout, for any web server that serves files.
#ifndef KALVISTA_TOOL_MIRROR_H
#define KALVISTA_TOOL_MIRROR_H

#include <memory>
#include <string>
#include <vector>

#include "acquisition/Repository.h"
#include "machine/CommonOptions.h"

namespace tool {

struct MirrorFailure {
  unsigned long serial;
  ExitCode exitCode;
  std::string problem;
};

class Mirror {
 public:
  // Of a camera that several sources have, the first one counts.
  Mirror(CommonOptions common, std::string directory,
         std::vector<std::unique_ptr<Repository>> sources);

  // Makes the calibration of a camera what its source has, and seals it. What was brought stays
  // when a later camera fails, so that another run goes on from there.
  void bring(unsigned long serial);
  // The links document that leads to the directory, served at this address. Gives its path.
  std::string provideLinks(const std::string& address);

  // Too many cameras in a row could not be had: so it will be with the rest.
  bool isHopeless() const;
  std::size_t complete() const { return complete_; }  // cameras
  std::size_t files() const { return files_; }        // of these cameras
  std::size_t changed() const { return changed_; }    // files that are new or have a new content
  const std::vector<MirrorFailure>& failures() const { return failures_; }

 private:
  Repository& sourceOf(unsigned long serial);
  void bringInto(const std::string& folder, unsigned long serial);
  void seal(const std::string& folder, unsigned long serial, const std::vector<std::string>& names);

  CommonOptions common_;
  std::string directory_;
  std::vector<std::unique_ptr<Repository>> sources_;
  std::size_t complete_ = 0;
  std::size_t files_ = 0;
  std::size_t changed_ = 0;
  unsigned inVain_ = 0;  // in a row
  std::vector<MirrorFailure> failures_;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_MIRROR_H
