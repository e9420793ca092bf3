// What a camera needs from this machine: one line for each thing, with what to do about it.
#ifndef KALVISTA_TOOL_CHECKS_H
#define KALVISTA_TOOL_CHECKS_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "answer/Output.h"
#include "camera/Calibration.h"
#include "diagnosis/ConfigurationCheck.h"
#include "machine/CommonOptions.h"

namespace tool {

enum class CheckStatus { Ok, Warn, Fail };
std::string statusText(CheckStatus status);

struct Check {
  std::string name;
  CheckStatus status = CheckStatus::Ok;
  std::string finding;
  std::string remedy;  // empty when all is well
};

struct Diagnosis {
  unsigned long serial = 0;  // of the camera that was looked at; 0 when none is known
  std::vector<Check> checks;
  // What was looked at, where it could be.
  std::optional<CalibrationStatus> calibration;
  std::optional<ConfigurationCheck> configuration;
  Json params;  // values of the configuration; null without one

  std::size_t count(CheckStatus status) const;
};

// `serial` is 0 for the camera that is attached, `configuration` empty for none.
Diagnosis diagnose(const CommonOptions& common, unsigned long serial,
                   const std::string& configuration);

Json documentsOf(const std::vector<Check>& checks);

}  // namespace tool

#endif  // KALVISTA_TOOL_CHECKS_H
