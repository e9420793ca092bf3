// Making a camera's calibration complete, from a folder or from the online repository.
#ifndef KALVISTA_TOOL_ACQUISITION_H
#define KALVISTA_TOOL_ACQUISITION_H

#include <string>
#include <vector>

#include "answer/Output.h"
#include "camera/Calibration.h"
#include "machine/CommonOptions.h"

namespace tool {

constexpr unsigned kDefaultTimeoutSeconds = 60;

struct Acquisition {
  std::vector<std::string> installed;  // names of the files that are new or changed
  CalibrationStatus status;            // afterwards
};

Acquisition copyFromRepository(const CommonOptions& common, unsigned long serial,
                               const std::string& repository);
Acquisition downloadMissing(const CommonOptions& common, unsigned long serial,
                            unsigned timeoutSeconds);

Answer answerOf(const Acquisition& acquisition, const CommonOptions& common, unsigned long serial);

}  // namespace tool

#endif  // KALVISTA_TOOL_ACQUISITION_H
