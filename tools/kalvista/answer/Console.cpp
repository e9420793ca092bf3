#include "answer/Console.h"

#include <algorithm>
#include <cctype>
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

std::string printable(std::string_view text) {
  std::string result(text);
  std::replace_if(
      result.begin(), result.end(),
      [](char character) { return std::iscntrl(static_cast<unsigned char>(character)) != 0; }, '?');
  return result;
}

}  // namespace tool
