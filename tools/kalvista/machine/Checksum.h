// SHA-256 of files, as sha256sum tells it.
#ifndef KALVISTA_TOOL_CHECKSUM_H
#define KALVISTA_TOOL_CHECKSUM_H

#include <string>

namespace tool {

constexpr std::size_t kDigestLength = 64;  // in hexadecimal digits

// Read in blocks, whatever the file's size. Empty when it cannot be read or is no regular file.
std::string sha256Of(const std::string& path);

}  // namespace tool

#endif  // KALVISTA_TOOL_CHECKSUM_H
