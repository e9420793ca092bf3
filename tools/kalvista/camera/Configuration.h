// Device configuration files: written with the library's default document, read by its reader.
#ifndef KALVISTA_TOOL_CONFIGURATION_H
#define KALVISTA_TOOL_CONFIGURATION_H

#include <kalvista/IRDeviceParams.h>

#include <memory>
#include <string>

#include "answer/Output.h"
#include "machine/CommonOptions.h"

namespace tool {

// The record with the texts that the reader gave it.
struct Configuration {
  Configuration() = default;
  ~Configuration();
  Configuration(const Configuration&) = delete;
  Configuration& operator=(const Configuration&) = delete;

  ardo::IRDeviceParams values{};
  std::string text;  // of the file
};

// Of a path or, for kStandardStream, of standard input. A Failure when that cannot be read or is no
// configuration.
std::unique_ptr<Configuration> readConfiguration(const std::string& path);

// In the order of the record, under the names of its fields.
// The camera that it names; 0 when it names none, or a number beyond the library's limit.
unsigned long cameraOf(const ardo::IRDeviceParams& values);
Json valuesDocument(const ardo::IRDeviceParams& values);

// Warns when there is no calibration to take the optics from.
std::string defaultDocument(const CommonOptions& common, unsigned long serial);

// Gives false when the file holds this document already. A file with another content is replaced
// with `force` only, else a Failure.
bool writeDocument(const std::string& path, const std::string& document, bool force);

}  // namespace tool

#endif  // KALVISTA_TOOL_CONFIGURATION_H
