#include "acquisition/Acquisition.h"

#include <unistd.h>

#include <algorithm>

#include "acquisition/Arrivals.h"
#include "acquisition/Mending.h"
#include "answer/Console.h"

namespace tool {
namespace {

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
    result->isSealGone = arrivals.removeFormerSeal();
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
  const std::string& directory = common.calibrationDir;
  Acquisition result;
  result.mended = letAllReadCalibration(directory, serial);
  const bool mayWrite = access(directory.c_str(), W_OK | R_OK) == 0;
  if (!mayWrite && differing == Differing::Keep) {
    result.status = inspectCalibration(directory, serial);
    if (result.status.complete()) return result;
  }
  try {
    Arrivals arrivals(directory, serial, repository);
    result.status = arrivals.statusBefore();
    arrivals.bringAll();
    takeOver(arrivals, differing, serial, repository, &result);
  } catch (const Failure& failure) {
    if (result.status.files.empty()) result.status = inspectCalibration(directory, serial);
    if (result.status.complete() && differing == Differing::Keep) {
      note(std::string("the calibration is complete, and could not be compared: ") +
           failure.what());
    } else {
      result.exitCode = failure.exitCode();
      result.problem = failure.what();
    }
  }
  if (!result.installed.empty()) result.status = inspectCalibration(directory, serial);
  return result;
}

}  // namespace tool
