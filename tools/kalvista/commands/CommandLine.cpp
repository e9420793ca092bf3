#include "commands/CommandLine.h"

#include <algorithm>
#include <cctype>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

#include "answer/Failure.h"
#include "answer/Nearest.h"
#include "commands/Commands.h"

namespace tool {
namespace {

constexpr std::size_t kHelpColumn = 32;
constexpr const char* kPurpose =
    "Calibration files and configuration of USB infrared cameras: find the camera, make its "
    "calibration complete, write its configuration.";

std::string exampleText(const std::string& example) { return "Example:\n  " + example + "\n\n"; }

// The help of a command lists the options of the tool as well: they are accepted there.
std::string commonOptionsText(const CLI::App& app, const CLI::Formatter& formatter) {
  const auto options = app.get_options([](const CLI::Option* option) {
    return option->get_name() != "--help" && option->get_name() != "--version";
  });
  // The group brings an empty line ahead of it, as the footer does.
  return formatter.make_group("Options of every command", false, options).substr(1) + "\n";
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_snames()) names.push_back("-" + name);
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

}  // namespace

CommandLine::CommandLine() : app_(kPurpose, "kalvista") {
  const auto formatter = std::make_shared<CLI::Formatter>();
  formatter->column_width(kHelpColumn);
  formatter->label("SUBCOMMAND", "COMMAND");
  app_.formatter(formatter);
  app_.set_help_flag("-h,--help", "Show this help");
  app_.set_version_flag("--version", versionText(), "Show the version");
  app_.require_subcommand(1);
  app_.fallthrough();
  addCommonOptions(app_, common_);
  const std::string commonOptions = commonOptionsText(app_, *formatter);
  const std::vector<Command> commands = allCommands();
  for (const Command& command : commands) {
    CLI::App* subcommand = app_.add_subcommand(command.name, command.summary);
    subcommand->group("Commands");
    subcommand->footer(commonOptions + exampleText(command.example) + kExitCodes);
    runners_[command.name] = command.declare(*subcommand);
    members_[command.name] = command.members;
  }
  app_.footer(exampleText(commands.front().example) + kExitCodes +
              "\n\nHelp on one command: kalvista COMMAND --help");
}

std::string CommandLine::parse(int argumentCount, const char* const* arguments) {
  refuseUnknownOptions({arguments + std::min(argumentCount, 1), arguments + argumentCount});
  try {
    app_.parse(argumentCount, arguments);
  } catch (const CLI::ParseError& error) {
    std::ostringstream text;
    if (app_.exit(error, text, text) == 0) return text.str();
    throw Failure(ExitCode::WrongUsage, explain(error));
  }
  return "";
}

// Ahead of all else, since what follows a mistyped option would be taken for an argument.
void CommandLine::refuseUnknownOptions(const std::vector<std::string>& arguments) const {
  std::string command;
  for (const std::string& argument : arguments) {
    if (argument == "--") return;
    const bool isOption = argument.size() > 1 && argument.front() == '-';
    if (!isOption) {
      if (command.empty() && runners_.count(argument) != 0) command = argument;
    } else if (std::isdigit(static_cast<unsigned char>(argument[1])) == 0) {
      refuseUnknownOption(command, argument);
    }
  }
}

void CommandLine::refuseUnknownOption(const std::string& command,
                                      const std::string& argument) const {
  const bool isLong = argument.compare(0, 2, "--") == 0;
  const std::string name = argument.substr(0, isLong ? argument.find('=') : 2);
  std::vector<std::string> known = optionNames(app_);
  const CLI::App* subcommand = command.empty() ? nullptr : app_.get_subcommand(command);
  if (subcommand != nullptr) {
    for (std::string& option : optionNames(*subcommand)) known.push_back(std::move(option));
  }
  const std::string nearest(nearestOf(name, {known.begin(), known.end()}));
  if (nearest == name) return;
  throw Failure(ExitCode::WrongUsage,
                (command.empty() ? "" : command + ": ") + "there is no option " + name +
                    (nearest.empty() || !isLong ? "" : ", the nearest is " + nearest) +
                    "; see \"kalvista " + (command.empty() ? "" : command + " ") + "--help\"");
}

std::string CommandLine::commandName() const {
  const auto commands = app_.get_subcommands();
  return commands.empty() ? "" : commands.front()->get_name();
}

Json CommandLine::membersOfDocument() const {
  const auto members = members_.find(commandName());
  return members == members_.end() ? Json::object() : members->second;
}

std::string CommandLine::explain(const CLI::ParseError& error) const {
  const bool commandKnown = !app_.get_subcommands().empty();
  std::string reason = error.what();
  if (!commandKnown && reason == "A subcommand is required") {
    const std::vector<std::string> unknown = app_.remaining();
    reason = unknown.empty() ? "no command is given" : "there is no command " + unknown.front();
  }
  return (commandKnown ? commandName() + ": " : "") + reason + "; see \"kalvista " +
         (commandKnown ? commandName() + " " : "") + "--help\"";
}

}  // namespace tool
