// Files of folders: opened only where they are what they should be, compared and copied in fixed
// memory.
#ifndef KALVISTA_TOOL_FILE_COPY_H
#define KALVISTA_TOOL_FILE_COPY_H

#include <cstdint>
#include <string>

#include "machine/Files.h"

namespace tool {

// A regular file that was opened for reading.
struct SourceFile {
  Descriptor descriptor{-1};  // none with a problem
  std::uintmax_t size = 0;
  std::string problem;  // "<path>: <cause>"
};

// Opens a file of a folder, given by its true path. A link is followed only to a file inside the
// folder, and nothing but a regular file is ever opened: opening alone sets some devices off.
SourceFile openInside(const std::string& folder, const std::string& path);

// False also when one of them cannot be read.
bool haveSameContent(const SourceFile& one, const SourceFile& other);
bool haveSameContent(const std::string& onePath, const std::string& otherPath);

// Copies content and time. Gives 0, or the number of what failed, which is this one when the source
// changed its size meanwhile. An Interruption on a signal.
constexpr int kSizeChanged = -1;
int copyContent(const SourceFile& source, const Descriptor& target);

}  // namespace tool

#endif  // KALVISTA_TOOL_FILE_COPY_H
