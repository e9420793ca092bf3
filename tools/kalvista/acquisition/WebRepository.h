// Calibration files on web servers.
#ifndef KALVISTA_TOOL_WEB_REPOSITORY_H
#define KALVISTA_TOOL_WEB_REPOSITORY_H

#include "acquisition/Fetcher.h"
#include "acquisition/Repository.h"

namespace tool {

// The servers that the links document names, or one that is given. A file that one of them does not
// give is asked of the next.
class WebRepository : public Repository {
 public:
  // `mirror` is the base address of a repository; empty for those of the links document, which is
  // fetched when it is needed.
  WebRepository(const FetchLimits& limits, const std::string& mirror);

  std::string shownName() const override;
  std::vector<std::string> namesOf(unsigned long serial) override;
  std::vector<Delivery> bring(unsigned long serial, const std::vector<WantedFile>& wanted,
                              const WorkFolder& work) override;

 private:
  Fetcher fetcher_;
  std::vector<std::string> bases_;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_WEB_REPOSITORY_H
