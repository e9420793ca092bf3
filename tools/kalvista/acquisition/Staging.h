// The folder in which files arrive before they are known to be whole.
#ifndef KALVISTA_TOOL_STAGING_H
#define KALVISTA_TOOL_STAGING_H

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

// A hidden folder inside the calibration directory, so that a file gets into place by renaming
// alone. It goes with the object; what a killed run left goes with the next run.
class Staging {
 public:
  Staging(const std::string& calibrationDir, unsigned long serial);
  ~Staging();
  Staging(const Staging&) = delete;
  Staging& operator=(const Staging&) = delete;

  const std::string& path() const { return path_; }
  std::string pathOf(const std::string& name) const { return path_ + "/" + name; }
  std::uintmax_t bytes() const;

  // Moves those of the named files that are here and whole into the calibration directory and
  // throws the rest of them away, with a warning each. Gives the names of the files that are new
  // there or changed.
  std::vector<std::string> install(const std::vector<std::string>& names);

 private:
  bool installOne(const std::string& name);

  std::string calibrationDir_;
  unsigned long serial_;
  std::string path_;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_STAGING_H
