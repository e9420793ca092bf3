#include <atomic>
#include <thread>

#include "support/Transcript.h"

// Threads that read files, each with objects of its own, while the log takes what fails. Under the
// thread sanitizer this finds races; without it, torn and lost lines.
class Threads : public InFolder, public testing::WithParamInterface<int> {};

TEST_P(Threads, ReadFilesSideBySide) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 50;
  writeFile("good.xml", "<imager>\n<fov>33</fov>\n</imager>");
  writeFile("broken.xml", "<imager>\n" + std::string(3000, 'w') + "\n<!-- a\n</imager>");
  const auto sinks = static_cast<brivex::loggerConf_>(GetParam());
  std::string name;
  const std::string console = captured(STDERR_FILENO, [&] {
    if (sinks != 0) brivex::Logger::getInstance()->configure("log", sinks, 3, 3);
    std::atomic<int> wrong{0};
    const auto read = [&] {
      for (int i = 0; i < kRounds; ++i) {
        ardo::IRDeviceParams params{};
        ardo::SimpleXML xml;
        wrong += !ardo::IRDeviceParamsReader::readXML("good.xml", params) || params.fov != 33;
        wrong += xml.open("broken.xml", "imager") || xml.open("none.xml", "imager") ||
                 xml.open("folder", std::string("none").data(), "imager");
      }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(read);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    name = brivex::Logger::getInstance()->filename;
  });
  const std::regex whole("(DEBUG|ERROR) \\[[A-Za-z]+:[0-9]+\\] @ [^ ]+s :[^\\[]+");
  const std::size_t expected = std::size_t{kThreads} * kRounds * (19 + 2 + 2);
  for (const auto& [text, bit] : {std::pair(readFile(name), 1), std::pair(console, 4)}) {
    const auto lines = linesOf(text);
    EXPECT_EQ(lines.size(), (sinks & bit) != 0 ? expected : sinks == 0 && bit == 4 ? 1 : 0);
    for (const std::string& line : lines) {
      EXPECT_TRUE(sinks == 0 || std::regex_match(line, whole)) << line;
    }
  }
}
INSTANTIATE_TEST_SUITE_P(Sinks, Threads, testing::Values(0, 1, 4, 5, 10));
