// Text files, whole and by lines.
#ifndef KALVISTA_TESTS_SUPPORT_FILES_H
#define KALVISTA_TESTS_SUPPORT_FILES_H

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace support {

// Gives the path back, so that a file can be written where its path is wanted.
inline std::string writeFile(const std::string& path, std::string_view text) {
  std::ofstream file(path, std::ios::binary);
  if (!(file << text << std::flush)) throw std::runtime_error("cannot write " + path);
  return path;
}

// Empty when the file cannot be read.
inline std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace support

#endif  // KALVISTA_TESTS_SUPPORT_FILES_H
