// What a call of the calibration manager gives, and what the manager logs meanwhile.
#ifndef KALVISTA_TESTS_SUPPORT_MANAGER_LOG_H
#define KALVISTA_TESTS_SUPPORT_MANAGER_LOG_H

#include <utility>

#include "support/Capture.h"

using Lines = std::vector<std::string>;
using Outcome = std::pair<bool, Lines>;

// The log in the short form "ERROR 391:text", without the lines of the XML reader and what started
// commands print.
template <typename Body>
Outcome outcomeOf(Body body) {
  const std::regex pattern("([A-Z]+) \\[IRCalibrationManager:([0-9]+)\\] (:.*)");
  Outcome outcome;
  std::smatch parts;
  for (const std::string& line : support::logOf([&] { outcome.first = body(); })) {
    if (std::regex_match(line, parts, pattern)) outcome.second.push_back(parts.format("$1 $2$3"));
  }
  return outcome;
}

#endif  // KALVISTA_TESTS_SUPPORT_MANAGER_LOG_H
