#include "acquisition/Acquisition.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <set>

#include "acquisition/ArrivalCheck.h"
#include "acquisition/FileCopy.h"
#include "acquisition/Mending.h"
#include "acquisition/WorkFolder.h"
#include "answer/Console.h"

namespace tool {
namespace {

using State = Delivery::State;

// The files of one camera, as a repository delivers them beside what is present.
class Arrivals {
 public:
  Arrivals(const CommonOptions& common, unsigned long serial, Repository& repository)
      : directory_(common.calibrationDir),
        serial_(serial),
        repository_(repository),
        work_(common.calibrationDir) {
    // Another run may have ended while this one waited for the directory.
    for (const CalibrationFile& file : inspectCalibration(directory_, serial).files) {
      if (file.state == FileState::Present) present_[file.name] = file.path;
    }
  }

  void bringAll();
  // A repository need not have what is present already, as long as the XML file is the same.
  std::vector<const Delivery*> failures() const;
  std::vector<std::string> fresh() const { return brought(false); }
  std::vector<std::string> differing() const { return brought(true); }
  // The XML file goes last.
  std::vector<std::string> place(std::vector<std::string> names);
  bool isRecalibrated() const;

 private:
  std::string xmlName() const { return calibrationXmlName(serial_); }
  void bring(const std::vector<std::string>& names);
  void judge(Delivery* delivery) const;
  std::vector<std::string> brought(bool present) const;

  std::string directory_;
  unsigned long serial_;
  Repository& repository_;
  WorkFolder work_;
  std::map<std::string, std::string> present_;  // paths of the usable files, by name
  std::vector<Delivery> deliveries_;
};

// The XML file comes first, since it names the others.
void Arrivals::bringAll() {
  bring({xmlName()});
  const Delivery xml = deliveries_.front();
  // Without an answer about this one, there is none about others.
  if (xml.exitCode == ExitCode::CouldNot) return;
  std::set<std::string> seen = {xmlName()};
  std::vector<std::string> names;
  const auto add = [&](const std::vector<std::string>& added) {
    for (const std::string& name : added) {
      if (seen.insert(name).second) names.push_back(name);
    }
  };
  add(requiredNames(xml.state == State::Brought ? work_.path() : directory_, serial_));
  add(repository_.namesOf(serial_));
  bring(names);
}

void Arrivals::bring(const std::vector<std::string>& names) {
  std::vector<WantedFile> wanted;
  for (const std::string& name : names) {
    // A file that the calibration does not ask for may be present as well.
    const std::string path = directory_ + "/" + name;
    const auto known = present_.find(name);
    const bool isPresent = known != present_.end() || access(path.c_str(), R_OK) == 0;
    if (name.find('/') == std::string::npos) wanted.push_back({name, isPresent ? path : ""});
  }
  for (Delivery& delivery : repository_.bring(serial_, wanted, work_)) {
    judge(&delivery);
    deliveries_.push_back(delivery);
  }
}

void Arrivals::judge(Delivery* delivery) const {
  if (delivery->state != State::Brought) return;
  const std::string fault = whatIsWrongWith(work_.pathOf(delivery->name), serial_);
  if (!fault.empty()) {
    *delivery = {delivery->name, State::Failed, ExitCode::AnswerIsNo,
                 repository_.shownName() + ": the file that came " + fault,
                 "get a whole one from elsewhere"};
  } else if (haveSameContent(work_.pathOf(delivery->name), directory_ + "/" + delivery->name)) {
    delivery->state = State::Same;
  }
}

std::vector<const Delivery*> Arrivals::failures() const {
  std::vector<const Delivery*> result;
  const bool isWholeSetNeeded = isRecalibrated();
  for (const Delivery& delivery : deliveries_) {
    const bool isNeeded = isWholeSetNeeded || present_.count(delivery.name) == 0;
    if (delivery.state == State::Failed || (delivery.state == State::Absent && isNeeded)) {
      result.push_back(&delivery);
    }
  }
  return result;
}

std::vector<std::string> Arrivals::brought(bool present) const {
  std::vector<std::string> names;
  for (const Delivery& delivery : deliveries_) {
    const bool isPresent = present_.count(delivery.name) != 0;
    if (delivery.state == State::Brought && isPresent == present) names.push_back(delivery.name);
  }
  return names;
}

bool Arrivals::isRecalibrated() const {
  const std::vector<std::string> names = differing();
  return std::find(names.begin(), names.end(), xmlName()) != names.end();
}

std::vector<std::string> Arrivals::place(std::vector<std::string> names) {
  std::stable_partition(names.begin(), names.end(),
                        [this](const std::string& name) { return name != xmlName(); });
  if (!names.empty()) work_.place(names);
  return names;
}

std::string subjectText(std::size_t count, unsigned long serial) {
  return countText(count, "file") + " of camera " + std::to_string(serial);
}

// One sentence for all that failed: the first of them speaks for the others.
void report(const std::vector<const Delivery*>& failures, unsigned long serial,
            Acquisition* result) {
  const auto worst = std::max_element(
      failures.begin(), failures.end(),
      [](const auto* one, const auto* other) { return one->exitCode < other->exitCode; });
  result->exitCode = (*worst)->exitCode;
  result->problem =
      (failures.size() == 1
           ? "the file " + (*worst)->name + " of camera " + std::to_string(serial)
           : subjectText(failures.size(), serial) + ", such as " + (*worst)->name + ",") +
      " could not be had: " + (*worst)->problem + "; " + (*worst)->remedy;
}

void reportDiffering(unsigned long serial, const Repository& repository, Acquisition* result) {
  const std::size_t count = result->differing.size();
  const std::string sentence = subjectText(count, serial) + (count == 1 ? " differs" : " differ") +
                               " from " + repository.shownName() + ", such as " +
                               result->differing.front() + "; replace all of them with --update";
  warn(sentence);
  if (result->status.complete()) return;
  result->exitCode = ExitCode::AnswerIsNo;
  result->problem = sentence + ", as files of two calibrations do not go together";
}

// What fits to what is present, or replaces all of it.
void takeOver(Arrivals& arrivals, Differing differing, unsigned long serial,
              const Repository& repository, Acquisition* result) {
  const std::vector<const Delivery*> failures = arrivals.failures();
  const bool wasComplete = result->status.complete();
  const std::vector<std::string> others = arrivals.differing();
  const bool isKept = !others.empty() && differing == Differing::Keep;
  const bool isPart = arrivals.isRecalibrated() && !failures.empty();
  if (isKept) result->differing = others;
  if (!isKept && !isPart) {
    std::vector<std::string> names = arrivals.fresh();
    names.insert(names.end(), others.begin(), others.end());
    result->installed = arrivals.place(names);
    result->replaced = others.size();
  }
  if (wasComplete && differing == Differing::Keep) {
    if (!failures.empty()) {
      Acquisition told;
      report(failures, serial, &told);
      note("the calibration is complete, and could not be compared: " + told.problem);
    }
  } else if (!failures.empty()) {
    report(failures, serial, result);
  }
  if (isKept) reportDiffering(serial, repository, result);
}

}  // namespace

Acquisition acquire(const CommonOptions& common, unsigned long serial, Repository& repository,
                    Differing differing) {
  Acquisition result;
  result.mended = letAllReadCalibration(common.calibrationDir, serial);
  result.status = inspectCalibration(common.calibrationDir, serial);
  const bool mayWrite = access(common.calibrationDir.c_str(), W_OK | R_OK) == 0;
  if (result.status.complete() && differing == Differing::Keep && !mayWrite) return result;
  try {
    Arrivals arrivals(common, serial, repository);
    result.status = inspectCalibration(common.calibrationDir, serial);
    arrivals.bringAll();
    takeOver(arrivals, differing, serial, repository, &result);
  } catch (const Failure& failure) {
    if (result.status.complete() && differing == Differing::Keep) {
      note(std::string("the calibration is complete, and could not be compared: ") +
           failure.what());
    } else {
      result.exitCode = failure.exitCode();
      result.problem = failure.what();
    }
  }
  result.status = inspectCalibration(common.calibrationDir, serial);
  return result;
}

}  // namespace tool
