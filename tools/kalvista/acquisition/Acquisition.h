// Making a camera's calibration complete from a repository.
#ifndef KALVISTA_TOOL_ACQUISITION_H
#define KALVISTA_TOOL_ACQUISITION_H

#include <string>
#include <vector>

#include "acquisition/Repository.h"
#include "answer/Output.h"
#include "camera/Calibration.h"
#include "machine/CommonOptions.h"

namespace tool {

struct Acquisition {
  std::vector<std::string> installed;  // names of the files that are new or changed
  std::size_t replaced = 0;            // how many of them
  std::vector<std::string> mended;     // those that more users may read now
  std::vector<std::string> differing;  // those that the repository has otherwise, left as they are
  bool isSealGone = false;             // it was of files that were replaced
  CalibrationStatus status;            // afterwards
  ExitCode exitCode = ExitCode::Done;
  std::string problem;  // beside an exit code: one sentence
};

enum class Differing { Keep, Replace };  // what is present and not as in the repository

Acquisition acquire(const CommonOptions& common, unsigned long serial, Repository& repository,
                    Differing differing);

// "2 files added, 1 file replaced"; empty when nothing was changed.
std::string changesText(const Acquisition& acquisition);
Answer answerOf(const Acquisition& acquisition, const CommonOptions& common, unsigned long serial);

}  // namespace tool

#endif  // KALVISTA_TOOL_ACQUISITION_H
