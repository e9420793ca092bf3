// The parser of the command line, made from the table of commands.
#ifndef KALVISTA_TOOL_COMMAND_LINE_H
#define KALVISTA_TOOL_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

#include "commands/Command.h"

namespace tool {

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0  done\n"
    "  1  the answer is no: files are missing, nothing was found\n"
    "  2  wrong usage\n"
    "  3  could not: unreadable, not permitted, out of time";

class CommandLine {
 public:
  CommandLine();
  ~CommandLine() = default;
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  // Gives the text that was asked for in place of a command, help or version; else empty. A Failure
  // when the command line is wrong.
  std::string parse(int argumentCount, const char* const* arguments);

  std::string commandName() const;  // empty when none was recognised
  // After a parse() that gave no text.
  const CommonOptions& common() const { return common_; }
  Json membersOfDocument() const;  // of the command that was recognised
  Answer run() const { return runners_.at(commandName())(common_); }

  // The description that help, completions and manual pages are made of.
  const CLI::App& description() const { return app_; }

 private:
  void refuseUnknownOptions(const std::vector<std::string>& arguments) const;
  void refuseUnknownOption(const std::string& command, const std::string& argument) const;
  std::string explain(const CLI::ParseError& error) const;

  CLI::App app_;
  CommonOptions common_;
  std::map<std::string, Runner> runners_;
  std::map<std::string, Json> members_;
};

}  // namespace tool

#endif  // KALVISTA_TOOL_COMMAND_LINE_H
