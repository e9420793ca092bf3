#include "answer/Console.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <iostream>

namespace tool {
namespace {

bool isTalkative = true;

constexpr const char* kRed = "31";
constexpr const char* kYellow = "33";

// On a terminal only, and where the user has not said no (https://no-color.org).
bool isColourful() {
  const char* no = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) != 0 && (no == nullptr || *no == '\0') &&
         (terminal == nullptr || std::string_view(terminal) != "dumb");
}

void say(const std::string& sentence, const char* colour = nullptr) {
  const bool coloured = colour != nullptr && isColourful();
  std::cerr << (coloured ? std::string("\033[") + colour + "m" : "")
            << "kalvista: " << printable(sentence) << (coloured ? "\033[0m\n" : "\n");
}

}  // namespace

void setTalkative(bool talkative) { isTalkative = talkative; }

void note(const std::string& sentence) {
  if (isTalkative) say(sentence);
}

void warn(const std::string& sentence) {
  if (isTalkative) say("warning: " + sentence, kYellow);
}

void complain(const std::string& sentence) { say(sentence, kRed); }

void quote(std::string_view output) { std::cerr << output << std::flush; }

bool writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(descriptor, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::string printable(std::string_view text) {
  std::string result(text);
  std::replace_if(
      result.begin(), result.end(),
      [](char character) { return std::iscntrl(static_cast<unsigned char>(character)) != 0; }, '?');
  return result;
}

}  // namespace tool
