// A folder that lives as long as its object.
#ifndef KALVISTA_TESTS_SUPPORT_TEMPORARY_FOLDER_H
#define KALVISTA_TESTS_SUPPORT_TEMPORARY_FOLDER_H

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace support {

// Open to every user, so that unprivileged children can work in it. The working directory is
// restored: the library moves it in places.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("cannot make " + path_);
    std::filesystem::permissions(path_, std::filesystem::perms::all);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::current_path(formerDirectory_, ignored);
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }
  // Path of an entry, whether or not it exists.
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::filesystem::path formerDirectory_ = std::filesystem::current_path();
  std::string path_ = std::filesystem::temp_directory_path() / "kalvista-test-XXXXXX";
};

}  // namespace support

#endif  // KALVISTA_TESTS_SUPPORT_TEMPORARY_FOLDER_H
