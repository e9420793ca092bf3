// Where the calibration files of cameras come from.
#ifndef KALVISTA_TOOL_REPOSITORY_H
#define KALVISTA_TOOL_REPOSITORY_H

#include <string>
#include <vector>

#include "acquisition/WorkFolder.h"
#include "answer/Failure.h"

namespace tool {

struct WantedFile {
  std::string name;
  std::string present;  // path of the file of this name that is there already; empty for none
};

struct Delivery {
  enum class State {
    Brought,  // lies in the work folder
    Same,     // as the file that is present
    Absent,   // the repository has none
    Failed
  };
  std::string name;
  State state = State::Failed;
  // Of what is absent or failed:
  ExitCode exitCode = ExitCode::Done;
  std::string problem;  // path or address, and the cause
  std::string remedy;
};

class Repository {
 public:
  Repository() = default;
  virtual ~Repository() = default;
  Repository(const Repository&) = delete;
  Repository& operator=(const Repository&) = delete;

  // For sentences about what it brought.
  virtual std::string shownName() const = 0;
  // The names that it has of a camera; empty when it cannot tell.
  virtual std::vector<std::string> namesOf(unsigned long serial) = 0;
  // Brings what is wanted and not the same as what is present. A delivery for each file, in their
  // order. A Failure when no space is left; an Interruption on a signal.
  virtual std::vector<Delivery> bring(unsigned long serial, const std::vector<WantedFile>& wanted,
                                      const WorkFolder& work) = 0;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_REPOSITORY_H
