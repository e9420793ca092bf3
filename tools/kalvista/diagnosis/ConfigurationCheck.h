// A device configuration, held against the calibration that is there and against what its reader
// makes of it.
#ifndef KALVISTA_TOOL_CONFIGURATION_CHECK_H
#define KALVISTA_TOOL_CONFIGURATION_CHECK_H

#include <cstddef>
#include <string>
#include <vector>

#include "answer/Output.h"
#include "camera/Configuration.h"

namespace tool {

struct ConfigurationFinding {
  std::string path;     // of elements: imager/temperature/min
  std::string message;  // what it is, and what is possible instead
  std::string remedy;   // the command that writes it right, or what to do by hand
  bool isFault = true;  // else worth a look, though an application can work with it
  std::size_t line = 1;
  std::size_t column = 1;  // in characters
};

struct ConfigurationCheck {
  std::string file;
  std::string document;      // its text
  unsigned long serial = 0;  // of the calibration that it was held against; 0 when there is none
  std::vector<ConfigurationFinding> findings;  // in the order of their places

  std::size_t faultCount() const;
};

// `serial` is the camera that the file is for; with 0, the one that the file names.
ConfigurationCheck checkConfiguration(const CommonOptions& common, unsigned long serial,
                                      const std::string& path, const Configuration& configuration);

// "camera.xml:13:8: imager/fov: ..."
std::string sentenceOf(const ConfigurationCheck& check, const ConfigurationFinding& finding);
Json documentOf(const ConfigurationCheck& check);
// For a camera that is not ready because of it; empty when there is no fault.
std::string problemOf(const ConfigurationCheck& check);

}  // namespace tool

#endif  // KALVISTA_TOOL_CONFIGURATION_CHECK_H
