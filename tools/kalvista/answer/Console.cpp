#include "answer/Console.h"

#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace tool {
namespace {

bool isTalkative = true;
bool isProgressShown = false;
bool isProgressOnScreen = false;

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
  showProgress("");
  const bool coloured = colour != nullptr && isColourful();
  std::cerr << (coloured ? std::string("\033[") + colour + "m" : "")
            << "kalvista: " << printable(sentence) << (coloured ? "\033[0m\n" : "\n");
}

// The second byte of a control character that UTF-8 writes as two, behind 0xC2.
bool isSecondOfControl(unsigned char byte) { return byte >= 0x80 && byte <= 0x9F; }

std::string hexadecimal(unsigned char byte) {
  constexpr const char* kDigits = "0123456789abcdef";
  return {kDigits[byte / 16], kDigits[byte % 16]};
}

std::string replacingControls(std::string_view text, std::string (*replacement)(unsigned char)) {
  std::string result;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    const bool isBehindC2 = !result.empty() && result.back() == '\xC2';
    const bool isSecond = isBehindC2 && isSecondOfControl(byte);
    if (isSecond) result.pop_back();
    if (isSecond || std::iscntrl(byte) != 0) {
      result += replacement(byte);
    } else {
      result += character;
    }
  }
  return result;
}

// As a stream of the C library asks for it. What cannot be written is lost: nobody can be told.
ssize_t writeLines(void* /*cookie*/, const char* text, std::size_t size) {
  writeAll(STDERR_FILENO, printableLines({text, size}));
  return static_cast<ssize_t>(size);
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

void setProgressShown(bool shown) { isProgressShown = shown && isatty(STDERR_FILENO) != 0; }

void showProgress(const std::string& text) {
  if (!isProgressShown || (text.empty() && !isProgressOnScreen)) return;
  std::cerr << "\r\x1B[K" << text << std::flush;
  isProgressOnScreen = !text.empty();
}

bool writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(descriptor, content.data(), content.size());
    if (written == -1) return false;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::string printable(std::string_view text) {
  return replacingControls(text, [](unsigned char byte) { return "\\x" + hexadecimal(byte); });
}

std::string printableLines(std::string_view text) {
  return replacingControls(text, [](unsigned char byte) {
    return byte == '\n' ? std::string("\n") : "\\x" + hexadecimal(byte);
  });
}

std::string printableJson(std::string_view text) {
  return replacingControls(text, [](unsigned char byte) {
    return byte == '\n' ? std::string("\n") : "\\u00" + hexadecimal(byte);
  });
}

void keepLogPrintable() {
#ifdef __GLIBC__
  FILE* const stream = fopencookie(nullptr, "w", {nullptr, writeLines, nullptr, nullptr});
  if (stream == nullptr) return;
  std::setbuf(stream, nullptr);
  stderr = stream;
#endif
}

}  // namespace tool
