#include "answer/Console.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <iostream>

namespace tool {
namespace {

bool isTalkative = true;

void say(const std::string& sentence) { std::cerr << "kalvista: " << printable(sentence) << '\n'; }

}  // namespace

void setTalkative(bool talkative) { isTalkative = talkative; }

void note(const std::string& sentence) {
  if (isTalkative) say(sentence);
}

void warn(const std::string& sentence) {
  if (isTalkative) say("warning: " + sentence);
}

void complain(const std::string& sentence) { say(sentence); }

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
