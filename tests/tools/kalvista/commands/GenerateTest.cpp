// The manual pages and the completions hold what the help does, and their readers accept them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "support/Capture.h"
#include "support/TemporaryFolder.h"

namespace {

using support::outputOf;

const std::string kTool = "'" TOOL_FILE "'";  // paths may have blanks

std::string generated(const std::string& kind) { return outputOf(kTool + " generate " + kind); }

TEST(GenerateTest, WhatTheHelpNamesStandsEverywhere) {
  const std::string manual = std::regex_replace(generated("man"), std::regex("\\\\-"), "-");
  const std::string texts[] = {manual, generated("bash"), generated("zsh"), generated("fish")};
  const std::string names = outputOf("for command in '' $(" + kTool +
                                     " --help | sed -n 's/^  \\([a-z]\\+\\)  .*/\\1/p'); do"
                                     " echo ${command:---help}; " +
                                     kTool + " $command --help | grep -o -e '--[a-z-]\\+'; done");
  int count = 0;
  for (const std::string& name : support::linesOf(names)) {
    const bool isOption = name.compare(0, 2, "--") == 0;
    const std::regex word("(^|[^a-z-])" + name + "([^a-z-]|$)");
    const std::regex fishWord(isOption ? " -l " + name.substr(2) + " " : " -a " + name + " ");
    for (const std::string& text : texts) {
      EXPECT_TRUE(std::regex_search(text, &text == &texts[3] ? fishWord : word))
          << name << " in " << text;
    }
    ++count;
  }
  EXPECT_GT(count, 50);
}

TEST(GenerateTest, ItsReadersAcceptEachText) {
  std::string missing;
  const auto expectAccepted = [&missing](const std::string& program, const std::string& command) {
    if (outputOf("command -v " + program).empty()) {
      missing += " " + program;
    } else {
      EXPECT_EQ(outputOf("exec 2>&1; " + command + " || echo refused"), "") << command;
    }
  };
  const support::TemporaryFolder folder;
  for (const std::string shell : {"bash", "zsh", "fish"}) {
    expectAccepted(
        shell, shell + " -n " + support::writeFile(folder.path() + "/" + shell, generated(shell)));
  }
  const std::string page = support::writeFile(folder.path() + "/kalvista.1", generated("man"));
  expectAccepted("groff", "groff -man -ww -z " + page + " '" MANUAL_PAGES "'/*");
  if (!missing.empty()) GTEST_SKIP() << "not installed:" << missing;
}

}  // namespace
