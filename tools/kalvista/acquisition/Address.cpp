#include "acquisition/Address.h"

#include <strings.h>

#include <string_view>

namespace tool {
namespace {

constexpr std::string_view kSchemeEnd = "://";
constexpr std::string_view kUnreserved =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";

std::string percentEncoded(std::string_view text) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string result;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (kUnreserved.find(character) != std::string_view::npos) {
      result += character;
    } else {
      result += {'%', kDigits[byte / 16], kDigits[byte % 16]};
    }
  }
  return result;
}

// A blank in a base address is meant as one.
std::string withoutBlanks(std::string_view base) {
  std::string result;
  for (const char character : base) result += character == ' ' ? "%20" : std::string(1, character);
  return result;
}

}  // namespace

bool isWebAddress(const std::string& address) {
  const auto hasScheme = [&address](std::string_view scheme) {
    return strncasecmp(address.c_str(), scheme.data(), scheme.size()) == 0;
  };
  return hasScheme("http://") || hasScheme("https://");
}

std::string folderOf(unsigned long serial) {
  const std::string number = std::to_string(serial);
  return number.substr(0, 2) + "/" + number.substr(0, 4) + "/Califiles SN" + number;
}

std::string addressOf(const std::string& base, unsigned long serial, const std::string& name) {
  return withoutBlanks(base) + "/" + percentEncoded(folderOf(serial) + "/" + name);
}

std::string shownAddress(const std::string& address) {
  const std::size_t schemeEnd = address.find(kSchemeEnd);
  const std::size_t begin = schemeEnd == std::string::npos ? 0 : schemeEnd + kSchemeEnd.size();
  const std::size_t end = address.find_first_of("/?#", begin);
  std::string_view authority = std::string_view(address).substr(begin, end - begin);
  const std::size_t colon = authority.rfind(':');
  const bool isCutInPassword =
      authority.find('@') == std::string_view::npos && colon != std::string_view::npos &&
      authority.find_first_not_of("0123456789]", colon + 1) != std::string_view::npos;
  if (isCutInPassword) authority = std::string_view(address).substr(begin);
  // Without a "@" this is the place ahead of the first character.
  const std::size_t at = authority.rfind('@');
  return address.substr(0, begin) + address.substr(begin + at + 1);
}

std::string shownCause(std::string cause) {
  for (std::size_t at = 0; (at = cause.find('@')) != std::string::npos;) {
    const std::size_t begin = cause.find_last_of(" '\"/", at) + 1;
    cause.erase(begin, at + 1 - begin);
  }
  return cause;
}

}  // namespace tool
