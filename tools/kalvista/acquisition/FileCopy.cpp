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
constexpr std::uintmax_t kPiece = 8U << 20U;  // between two looks for a signal

SourceFile problemWith(const std::string& path, const std::string& cause) {
  return {Descriptor(-1), 0, path + ": " + cause};
}

bool liesInside(const std::string& folder, const std::string& path) {
  const std::string prefix = folder.back() == '/' ? folder : folder + "/";
  return path.compare(0, prefix.size(), prefix) == 0;
}

// Reads until the block is full or the file ends; -1 with errno set.
ssize_t readBlock(int descriptor, char* block, std::uintmax_t at) {
  std::size_t count = 0;
  while (count < kBlock) {
    const ssize_t more =
        pread(descriptor, block + count, kBlock - count, static_cast<off_t>(at + count));
    if (more < 0 && errno == EINTR) continue;
    if (more < 0) return -1;
    if (more == 0) break;
    count += static_cast<std::size_t>(more);
  }
  return static_cast<ssize_t>(count);
}

// By the kernel, as far as it can do it between these two; gives how much was copied.
std::uintmax_t copyInKernel(const SourceFile& source, int target) {
  std::uintmax_t done = 0;
  while (done < source.size) {
    throwIfInterrupted();
    auto from = static_cast<off_t>(done);
    const ssize_t count =
        copy_file_range(source.descriptor.number(), &from, target, nullptr,
                        static_cast<std::size_t>(std::min(kPiece, source.size - done)), 0);
    if (count <= 0) break;
    done += static_cast<std::uintmax_t>(count);
  }
  return done;
}

// Up to one byte beyond the size, so that a file that grows is noticed and an endless one ends.
bool copyByBlocks(const SourceFile& source, int target, std::uintmax_t* done) {
  std::array<char, kBlock> block{};
  ssize_t count = 0;
  while ((count = readBlock(source.descriptor.number(), block.data(), *done)) > 0) {
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
  if (fstat(place.number(), &status) != 0) return problemWith(path, std::strerror(errno));
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
  if (one.size != other.size) return false;
  std::array<char, kBlock> left{};
  std::array<char, kBlock> right{};
  for (std::uintmax_t at = 0;; at += kBlock) {
    throwIfInterrupted();
    const ssize_t count = readBlock(one.descriptor.number(), left.data(), at);
    if (count < 0 || readBlock(other.descriptor.number(), right.data(), at) != count) return false;
    if (std::memcmp(left.data(), right.data(), static_cast<std::size_t>(count)) != 0) return false;
    if (static_cast<std::size_t>(count) < kBlock) return true;
  }
}

bool haveSameContent(const std::string& onePath, const std::string& otherPath) {
  const SourceFile one = openInside("/", onePath);
  const SourceFile other = openInside("/", otherPath);
  return one.problem.empty() && other.problem.empty() && haveSameContent(one, other);
}

std::string copyContent(const SourceFile& source, const Descriptor& target) {
  std::uintmax_t done = copyInKernel(source, target.number());
  if (!copyByBlocks(source, target.number(), &done)) return std::strerror(errno);
  errno = 0;
  if (done != source.size) return "it changed while it was copied";
  struct stat status {};
  fstat(source.descriptor.number(), &status);
  const timespec times[] = {{0, UTIME_OMIT}, status.st_mtim};
  futimens(target.number(), times);
  return "";
}

}  // namespace tool
