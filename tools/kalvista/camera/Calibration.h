// The calibration of one camera as it stands in a directory.
#ifndef KALVISTA_TOOL_CALIBRATION_H
#define KALVISTA_TOOL_CALIBRATION_H

#include <kalvista/Cali.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "answer/Output.h"

namespace tool {

// Unreadable is also an XML file that holds no calibration; damaged is a file with another content
// than it was sealed with, and a seal that is none.
enum class FileState { Present, Missing, Empty, Unreadable, Damaged };
std::string stateText(FileState state);

struct CalibrationFile {
  std::string name;
  std::string path;
  FileState state = FileState::Missing;
  std::uintmax_t size = 0;
};

struct CalibrationStatus {
  std::vector<CalibrationFile> files;  // all that the calibration needs, as far as it is known;
                                       // and the seal, where that is damaged
  std::vector<CalibrationFile> lacking() const;  // those of them that are not present
  bool complete() const { return lacking().empty(); }
};

std::string calibrationXmlName(unsigned long serial);
std::string calibrationXmlPath(const std::string& directory, unsigned long serial);
// Of the calibration XML files in a directory, in rising order.
std::vector<unsigned long> calibratedSerials(const std::string& directory);

// A model of its own, read anew each time: the library's one instance keeps what it has once
// loaded, even when the file was replaced. Null when the file cannot be loaded.
std::unique_ptr<ConfigCali> loadCalibration(const std::string& directory, unsigned long serial);

// The files by themselves, whatever a seal says of them.
CalibrationStatus lookAtCalibration(const std::string& directory, unsigned long serial);
// Held against its seal, where there is one; reads all of it then.
CalibrationStatus inspectCalibration(const std::string& directory, unsigned long serial);

// The names of all files that the calibration in this directory asks for, the XML file first;
// empty when that does not load.
std::vector<std::string> requiredNames(const std::string& directory, unsigned long serial);

std::vector<std::string> namesOf(const std::vector<CalibrationFile>& files);
Json documentsOf(const std::vector<CalibrationFile>& files);

// One sentence: how much is lacking, and what to do; empty when the calibration is complete.
std::string lackText(const CalibrationStatus& status, const std::string& directory,
                     unsigned long serial);
// The names of the files that are lacking, one a line, and what is not plainly missing with its
// state; a no when there are any.
Answer answerOf(const CalibrationStatus& status, const std::string& directory,
                unsigned long serial);

// The optics with their ranges and frame rates, and the same as a table.
Json opticsDocument(const ConfigCali& calibration);
// Of one of the ranges: "27, 32, 80"; "any" where it lists none.
std::string frameratesText(const Json& range);
struct OpticsRow {
  std::string fov;
  std::string text;
  std::string range;
  std::string extended;
  std::string decimals;
  std::string framerates;
};
std::vector<OpticsRow> opticsRows(const Json& optics);
std::string opticsTable(const Json& optics);

}  // namespace tool

#endif  // KALVISTA_TOOL_CALIBRATION_H
