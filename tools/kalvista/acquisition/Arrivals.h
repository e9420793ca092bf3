// The files of one camera, as a repository delivers them beside what is present.
#ifndef KALVISTA_TOOL_ARRIVALS_H
#define KALVISTA_TOOL_ARRIVALS_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "acquisition/Repository.h"
#include "acquisition/WorkFolder.h"
#include "camera/Calibration.h"
#include "camera/Seal.h"

namespace tool {

class Arrivals {
 public:
  // Waits for other runs in the directory.
  Arrivals(const std::string& directory, unsigned long serial, Repository& repository);

  // How the calibration was when this run had its turn.
  const CalibrationStatus& statusBefore() const { return status_; }
  void bringAll();
  // A repository need not have what is present already, as long as the XML file is the same, nor a
  // seal.
  std::vector<const Delivery*> failures() const;
  std::vector<std::string> fresh() const { return brought(false); }
  std::vector<std::string> differing() const { return brought(true); }
  bool isRecalibrated() const;
  // The XML file goes last.
  std::vector<std::string> place(std::vector<std::string> names);
  // After files were replaced from a repository without a seal. False when there is nothing to do.
  bool removeFormerSeal() const;

 private:
  std::string xmlName() const { return calibrationXmlName(serial_); }
  void bring(const std::vector<std::string>& names);
  bool isUsable(const std::string& name) const;
  bool isPresent(const std::string& name) const { return present_.count(name) != 0; }
  void judge(Delivery* delivery) const;
  void holdAgainstSeal();
  std::string whatSealRefuses(const Seal& seal) const;
  Delivery* deliveryOf(const std::string& name);
  std::vector<std::string> brought(bool present) const;

  std::string directory_;
  unsigned long serial_;
  Repository& repository_;
  WorkFolder work_;
  CalibrationStatus status_;
  std::map<std::string, FileState> states_;  // by name, of all that is known
  std::set<std::string> present_;            // names of usable files, of those that were wanted
  std::vector<Delivery> deliveries_;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_ARRIVALS_H
