// Calibration files in a folder and the folders in it.
#ifndef KALVISTA_TOOL_FOLDER_REPOSITORY_H
#define KALVISTA_TOOL_FOLDER_REPOSITORY_H

#include <map>

#include "acquisition/FileCopy.h"
#include "acquisition/Repository.h"

namespace tool {

class FolderRepository : public Repository {
 public:
  // Looks through the folder once; links to folders are not followed.
  explicit FolderRepository(const std::string& folder);

  std::string shownName() const override { return folder_; }
  std::vector<std::string> namesOf(unsigned long serial) override;
  std::vector<Delivery> bring(unsigned long serial, const std::vector<WantedFile>& wanted,
                              const WorkFolder& work) override;

 private:
  Delivery find(const WantedFile& wanted, SourceFile* source) const;
  std::uintmax_t bytesNeeded(const std::vector<WantedFile>& wanted) const;

  std::string folder_;
  std::string truePath_;
  std::map<std::string, std::vector<std::string>> paths_;  // of each name
};

}  // namespace tool

#endif  // KALVISTA_TOOL_FOLDER_REPOSITORY_H
