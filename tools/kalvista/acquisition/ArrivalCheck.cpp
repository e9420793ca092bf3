#include "acquisition/ArrivalCheck.h"

#include <kalvista/SimpleXML.h>
#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>

#include "camera/Calibration.h"
#include "machine/Files.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRoot = "CaliData";

constexpr std::size_t kBeginning = 4096;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kCompressed = "\x1F\x8B";

std::string beginningOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(kBeginning, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  return text;
}

bool beginsWith(std::string_view text, std::string_view beginning) {
  return text.size() >= beginning.size() &&
         strncasecmp(text.data(), beginning.data(), beginning.size()) == 0;
}

// What stands behind byte-order mark, blanks, XML declaration and comments.
std::string_view withoutPreamble(std::string_view text) {
  if (beginsWith(text, kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  for (;;) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    std::string_view end;
    if (beginsWith(text, "<?")) end = "?>";
    if (beginsWith(text, "<!--")) end = "-->";
    const std::size_t at = end.empty() ? std::string_view::npos : text.find(end);
    if (at == std::string_view::npos) return text;
    text.remove_prefix(at + end.size());
  }
}

// Servers answer with a page of their own when they have no such file, sometimes as a success.
bool looksLikeWebPage(std::string_view content) {
  const std::string_view text = withoutPreamble(content);
  return beginsWith(text, "<!doctype html") || beginsWith(text, "<html");
}

// The number in the first element of that name in a piece of the text; 0 when there is none.
long numberIn(ardo::SimpleXML& document, const char* name, int from, int limit) {
  const int begin = document.getKey(name, from, limit, false);
  return begin < 0 ? 0 : std::strtol(document.buffer + begin, nullptr, 10);
}

// Of a document with optics: the camera's number stands ahead of them or behind, and optics have
// numbers of their own.
bool namesAnotherSerial(ardo::SimpleXML& document, unsigned long serial) {
  const int opticsBegin = document.getKey("Temperature", 0, document.length, false);
  const int opticsEnd = document.getKey("Temperature", opticsBegin, document.length, true);
  for (const char* name : {"SerialNumber", "Serial"}) {
    for (const auto& [from, limit] : {std::pair(0, opticsBegin), {opticsEnd, document.length}}) {
      const long number = numberIn(document, name, from, limit);
      if (number != 0 && number != static_cast<long>(serial)) return true;
    }
  }
  return false;
}

// The reader makes do without the closing tag.
bool reachesItsEnd(const std::string& path) {
  return readFile(path).find(std::string("</") + kRoot + ">") != std::string::npos;
}

std::string whatIsWrongWithXml(const std::string& path, unsigned long serial) {
  ardo::SimpleXML document;
  if (!document.open(path.c_str(), kRoot) || !document.hasRoot()) {
    return "is no calibration: it does not load";
  }
  if (!reachesItsEnd(path)) return "breaks off before its end";
  document.setNode();
  const bool hasOptics = document.setNode("Temperature") && document.setNode("Optics") &&
                         document.setNode("OpticsDef");
  if (!hasOptics) return "is no calibration: it has no optics";
  if (namesAnotherSerial(document, serial)) return "belongs to another camera";
  return "";
}

}  // namespace

std::string whatIsWrongWith(const std::string& path, unsigned long serial) {
  const std::string content = beginningOf(path);
  if (content.empty()) return "is empty";
  if (looksLikeWebPage(content)) return "is a web page instead of calibration data";
  if (beginsWith(content, kCompressed)) return "is compressed";
  if (fs::path(path).filename() != calibrationXmlName(serial)) return "";
  return whatIsWrongWithXml(path, serial);
}

}  // namespace tool
