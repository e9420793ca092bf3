#include "acquisition/Wholeness.h"

#include <kalvista/SimpleXML.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <utility>

#include "camera/Calibration.h"
#include "machine/Files.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* kRoot = "CaliData";

// Servers answer with a page of their own when they have no such file, sometimes as a success.
bool looksLikeWebPage(std::string_view content) {
  const auto isBlank = [](unsigned char character) { return std::isspace(character) != 0; };
  const auto begin = std::find_if_not(content.begin(), content.end(), isBlank);
  std::string start(begin, begin + std::min<std::ptrdiff_t>(16, content.end() - begin));
  std::transform(start.begin(), start.end(), start.begin(), [](unsigned char character) {
    return static_cast<char>(std::tolower(character));
  });
  return start.rfind("<!doctype html", 0) == 0 || start.rfind("<html", 0) == 0;
}

// The number in the first element of that name in a piece of the text; 0 when there is none.
long numberIn(ardo::SimpleXML& document, const char* name, int from, int limit) {
  const int begin = document.getKey(name, from, limit, false);
  return begin < 0 ? 0 : std::strtol(document.buffer + begin, nullptr, 10);
}

// The camera's number stands beside the optics or ahead of them; optics have numbers of their own.
bool namesAnotherSerial(ardo::SimpleXML& document, unsigned long serial) {
  int opticsBegin = document.getKey("Temperature", 0, document.length, false);
  int opticsEnd = document.getKey("Temperature", 0, document.length, true);
  if (opticsBegin < 0 || opticsEnd < opticsBegin) opticsBegin = opticsEnd = document.length;
  for (const char* name : {"SerialNumber", "Serial"}) {
    for (const auto& [from, limit] : {std::pair(0, opticsBegin), {opticsEnd, document.length}}) {
      const long number = numberIn(document, name, from, limit);
      if (number != 0 && number != static_cast<long>(serial)) return true;
    }
  }
  return false;
}

std::string whatIsWrongWithXml(const std::string& path, unsigned long serial,
                               const std::string& content) {
  ardo::SimpleXML document;
  if (!document.open(path.c_str(), kRoot) || !document.hasRoot()) {
    return "is no calibration: it does not load";
  }
  if (content.find(std::string("</") + kRoot + ">") == std::string::npos) {
    return "breaks off before its end";
  }
  document.setNode();
  const bool hasOptics = document.setNode("Temperature") && document.setNode("Optics") &&
                         document.setNode("OpticsDef");
  if (!hasOptics) return "is no calibration: it has no optics";
  if (namesAnotherSerial(document, serial)) return "belongs to another camera";
  return "";
}

}  // namespace

std::string whatIsWrongWith(const std::string& path, unsigned long serial) {
  const std::string content = readFile(path);
  if (content.empty()) return "is empty";
  if (looksLikeWebPage(content)) return "is a web page instead of calibration data";
  if (fs::path(path).filename() != calibrationXmlName(serial)) return "";
  return whatIsWrongWithXml(path, serial, content);
}

}  // namespace tool
