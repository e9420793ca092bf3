#include "camera/Seal.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "answer/Failure.h"
#include "machine/Checksum.h"
#include "machine/Files.h"

namespace tool {
namespace {

constexpr std::uintmax_t kLargest = 16U << 20U;
constexpr std::string_view kHexadecimalDigits = "0123456789abcdef";
// A backslash ahead of a line says that its name is written with escapes.
constexpr char kEscape = '\\';

std::string lineOf(const std::string& name, const std::string& digest) {
  std::string escaped;
  for (const char character : name) {
    if (character == kEscape) escaped += kEscape;
    escaped += character == '\n' ? "\\n" : std::string(1, character);
  }
  return (escaped == name ? "" : std::string(1, kEscape)) + digest + "  " + escaped + "\n";
}

std::string withoutEscapes(const std::string& escaped) {
  std::string name;
  for (std::size_t i = 0; i < escaped.size(); ++i) {
    const bool isEscape = escaped[i] == kEscape;
    if (isEscape) ++i;
    name += isEscape && escaped[i] == 'n' ? '\n' : escaped[i];
  }
  return name;
}

}  // namespace

std::string sealName(unsigned long serial) { return "Cali-" + std::to_string(serial) + ".sha256"; }

Seal Seal::of(const std::string& directory, const std::vector<std::string>& names) {
  Seal seal;
  for (const std::string& name : names) {
    const std::string digest = sha256Of(directory + "/" + name);
    if (digest.empty()) {
      throw Failure(ExitCode::CouldNot, "the file " + directory + "/" + name +
                                            " cannot be read; check its permissions");
    }
    seal.digests_[name] = digest;
  }
  return seal;
}

Seal Seal::read(const std::string& directory, unsigned long serial) {
  Seal seal;
  const std::string path = directory + "/" + sealName(serial);
  seal.exists_ = seal.isWhole_ = access(path.c_str(), F_OK) == 0;
  // A device or a pipe is no seal, and could be read without end; nor is a file that memory should
  // not hold.
  std::error_code error;
  const bool isReadable = std::filesystem::is_regular_file(path, error) &&
                          std::filesystem::file_size(path, error) <= kLargest;
  std::ifstream stream(isReadable ? path : "");
  for (std::string line; seal.isWhole_ && std::getline(stream, line);) {
    seal.readLine(stream.eof() ? "" : line);  // the last one was cut short
  }
  seal.isWhole_ = seal.isWhole_ && !seal.digests_.empty();
  return seal;
}

// "<digest>  <name>", with "*" in place of the second blank for the same.
void Seal::readLine(const std::string& line) {
  const bool isEscaped = line[0] == kEscape;
  const std::string digest = line.substr(isEscaped ? 1 : 0, kDigestLength);
  const std::size_t nameBegin = (isEscaped ? 1 : 0) + kDigestLength + 2;
  const bool fits = line.size() > nameBegin &&
                    digest.find_first_not_of(kHexadecimalDigits) == std::string::npos &&
                    line[nameBegin - 2] == ' ' &&
                    (line[nameBegin - 1] == ' ' || line[nameBegin - 1] == '*');
  if (!fits) {
    isWhole_ = false;
    return;
  }
  const std::string name = line.substr(nameBegin);
  digests_[isEscaped ? withoutEscapes(name) : name] = digest;
}

bool Seal::holds(const std::string& directory, const std::string& name) const {
  const auto digest = digests_.find(name);
  return digest == digests_.end() || sha256Of(directory + "/" + name) == digest->second;
}

std::string Seal::text() const {
  std::string text;
  for (const auto& [name, digest] : digests_) text += lineOf(name, digest);
  return text;
}

}  // namespace tool
