#include "machine/Checksum.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <memory>

#include "machine/Files.h"

namespace tool {
namespace {

constexpr std::size_t kBlock = 256U << 10U;
constexpr const char* kDigits = "0123456789abcdef";

struct ContextRelease {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_MD_CTX, ContextRelease>;

bool feed(EVP_MD_CTX* context, const Descriptor& file) {
  const auto block = std::make_unique<std::array<char, kBlock>>();
  for (;;) {
    const ssize_t count = read(file.number(), block->data(), block->size());
    if (count <= 0) return count == 0;
    if (EVP_DigestUpdate(context, block->data(), static_cast<std::size_t>(count)) != 1) {
      return false;
    }
  }
}

}  // namespace

std::string sha256Of(const std::string& path) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return "";
  const Context context(EVP_MD_CTX_new());
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned length = 0;
  const bool whole = context && EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) == 1 &&
                     feed(context.get(), file) &&
                     EVP_DigestFinal_ex(context.get(), digest.data(), &length) == 1;
  std::string text;
  for (unsigned i = 0; whole && i < length; ++i) {
    text += kDigits[digest[i] >> 4U];
    text += kDigits[digest[i] & 0xFU];
  }
  return text;
}

}  // namespace tool
