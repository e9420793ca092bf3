#include "acquisition/FileCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "answer/Console.h"
#include "machine/Interruption.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBlock = 1U << 16U;
constexpr std::size_t kPiece = 8U << 20U;  // between two looks for a signal

SourceFile problemWith(const std::string& path, const std::string& cause) {
  SourceFile none;
  none.problem = path + ": " + cause;
  return none;
}

bool liesInside(const std::string& folder, const std::string& path) {
  const std::string prefix = folder.back() == '/' ? folder : folder + "/";
  return path.compare(0, prefix.size(), prefix) == 0;
}

using Block = std::array<char, kBlock>;

// As much as comes at once; 0 at the end, -1 with errno set.
ssize_t readBlock(const SourceFile& file, Block* block, std::uintmax_t at) {
  return pread(file.descriptor.number(), block->data(), block->size(), static_cast<off_t>(at));
}

// By the kernel, as far as it can do it between these two; gives how much was copied, which may be
// more than the size when the file grows.
std::uintmax_t copyInKernel(const SourceFile& source, int target) {
  std::uintmax_t done = 0;
  while (done < source.size) {
    throwIfInterrupted();
    auto from = static_cast<off_t>(done);
    const ssize_t count =
        copy_file_range(source.descriptor.number(), &from, target, nullptr, kPiece, 0);
    if (count <= 0) break;
    done += static_cast<std::uintmax_t>(count);
  }
  return done;
}

// Beyond the size by a block at most: a file that grows is noticed, and an endless one ends.
bool copyByBlocks(const SourceFile& source, int target, std::uintmax_t* done) {
  Block block{};
  ssize_t count = 0;
  while ((count = readBlock(source, &block, *done)) > 0) {
    throwIfInterrupted();
    if (!writeAll(target, {block.data(), static_cast<std::size_t>(count)})) return false;
    *done += static_cast<std::uintmax_t>(count);
    if (*done > source.size) return true;
  }
  return count == 0;
}

}  // namespace

SourceFile openInside(const std::string& folder, const std::string& path) {
  const Descriptor place(open(path.c_str(), O_PATH | O_CLOEXEC));
  if (!place.isOpen()) return problemWith(path, std::strerror(errno));
  struct stat status {};
  fstat(place.number(), &status);
  if (!S_ISREG(status.st_mode)) return problemWith(path, "it is no regular file");
  std::error_code error;
  const std::string truePath = fs::read_symlink(pathOf(place), error).string();
  if (error) return problemWith(path, "its true place is not known without /proc");
  if (!liesInside(folder, truePath)) {
    return problemWith(path, "it is a link that leads out of " + folder);
  }
  SourceFile file{Descriptor(open(pathOf(place).c_str(), O_RDONLY | O_CLOEXEC)),
                  static_cast<std::uintmax_t>(status.st_size), ""};
  if (!file.descriptor.isOpen()) return problemWith(path, std::strerror(errno));
  return file;
}

bool haveSameContent(const SourceFile& one, const SourceFile& other) {
  const bool areOpen = one.descriptor.isOpen() && other.descriptor.isOpen();
  if (!areOpen || one.size != other.size) return false;
  Block left{};
  Block right{};
  for (std::uintmax_t at = 0; at < one.size;) {
    throwIfInterrupted();
    const ssize_t count = std::min(readBlock(one, &left, at), readBlock(other, &right, at));
    if (count <= 0) return false;
    const auto size = static_cast<std::size_t>(count);
    if (std::memcmp(left.data(), right.data(), size) != 0) return false;
    at += size;
  }
  return true;
}

bool haveSameContent(const std::string& onePath, const std::string& otherPath) {
  return haveSameContent(openInside("/", onePath), openInside("/", otherPath));
}

int copyContent(const SourceFile& source, const Descriptor& target) {
  std::uintmax_t done = copyInKernel(source, target.number());
  if (!copyByBlocks(source, target.number(), &done)) return errno;
  if (done != source.size) return kSizeChanged;
  struct stat status {};
  fstat(source.descriptor.number(), &status);
  const timespec times[] = {{0, UTIME_OMIT}, status.st_mtim};
  futimens(target.number(), times);
  return 0;
}

}  // namespace tool
