// The seal of a calibration: the checksums of its files, in the format of sha256sum, beside them.
#ifndef KALVISTA_TOOL_SEAL_H
#define KALVISTA_TOOL_SEAL_H

#include <map>
#include <string>
#include <vector>

namespace tool {

std::string sealName(unsigned long serial);

class Seal {
 public:
  // Of files in a directory. A Failure when one cannot be read.
  static Seal of(const std::string& directory, const std::vector<std::string>& names);
  // As it stands beside the files; none when there is no file of its name.
  static Seal read(const std::string& directory, unsigned long serial);

  // Of a seal that was read.
  bool exists() const { return exists_; }
  // Each line is one of a seal, and there are lines.
  bool isWhole() const { return isWhole_; }
  bool covers(const std::string& name) const { return digests_.count(name) != 0; }
  // False when the file has another content than at the time of the seal. A file that the seal
  // does not cover breaks nothing.
  bool holds(const std::string& directory, const std::string& name) const;

  std::string text() const;

 private:
  void readLine(const std::string& line);

  bool exists_ = false;
  bool isWhole_ = false;
  std::map<std::string, std::string> digests_;  // by the names of the files
};

}  // namespace tool

#endif  // KALVISTA_TOOL_SEAL_H
