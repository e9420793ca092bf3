#include "support/Transcript.h"

namespace {

std::string unescaped(const std::string& text) {
  const std::string names = "nr0\\eBLU";
  const std::string meanings[] = {"\n",
                                  "\r",
                                  "\0"s,
                                  "\\",
                                  "",
                                  "\xEF\xBB\xBF",
                                  std::string(4095, 'L'),
                                  KALVISTA_DOCUMENTATION_URL};
  std::string result;
  for (auto at = text.begin(); at != text.end(); ++at) {
    result += *at == '\\' ? meanings[names.find(*++at)] : std::string(1, *at);
  }
  return result;
}

// Cuts off what stands before the separator, and the separator.
std::string cutOff(std::string& text, const std::string& separator) {
  const std::size_t end = text.find(separator);
  std::string piece = text.substr(0, end);
  text.erase(0, end == std::string::npos ? end : end + separator.size());
  return piece;
}

}  // namespace

void runTranscript(const std::string& name, const Commands& commands) {
  const std::string transcript = readFile(TRANSCRIPTS "/" + name);
  ASSERT_NE(transcript, "");
  for (std::string line : linesOf(std::regex_replace(transcript, std::regex("\n>"), "\\n"))) {
    if (line.empty() || line.front() == '#') continue;
    std::string call = cutOff(line, " => ");
    SCOPED_TRACE(name + ": " + call);
    const bool isLogShown = call.front() != '~';
    call.erase(0, isLogShown ? 0 : 1);
    const std::string command = cutOff(call, " ");
    std::vector<Argument> arguments;
    while (!call.empty()) arguments.emplace_back().text = unescaped(cutOff(call, " | "));
    std::string result;
    const auto log = logOf([&] {
      result = command == "run" ? outputOf(arguments[0].text) : commands.at(command)(arguments);
    });
    for (const std::string& message : log) result += isLogShown ? "\n" + message : "";
    EXPECT_EQ(result, unescaped(line));
  }
}
