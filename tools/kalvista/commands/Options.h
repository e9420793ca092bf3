// Options that all commands share, and the kinds of arguments that several take.
#ifndef KALVISTA_TOOL_OPTIONS_H
#define KALVISTA_TOOL_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "machine/CommonOptions.h"

namespace tool {

// Declares the options; they are accepted before and after the name of a command.
void addCommonOptions(CLI::App& app, CommonOptions& common);

std::vector<std::string> verbosityNames();

// Puts the options to work: directories and log of the library, and the working directory "/",
// since all paths are absolute by now.
void applyCommonOptions(const CommonOptions& common);

// Decimal digits, from 1 to the greatest number that names of calibration files can hold.
unsigned long parseSerial(const std::string& text);
// `serial` stays 0 when the argument is optional and not given.
CLI::Option* addSerial(CLI::App& app, unsigned long& serial);
CLI::Option* addPath(CLI::App& app, const std::string& name, std::string& path,
                     const std::string& description);
// A path, or kStandardStream.
CLI::Option* addPathOrStream(CLI::App& app, const std::string& name, std::string& path,
                             const std::string& description);

}  // namespace tool

#endif  // KALVISTA_TOOL_OPTIONS_H
