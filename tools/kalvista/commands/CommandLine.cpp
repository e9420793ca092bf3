#include "commands/CommandLine.h"

#include <memory>
#include <sstream>
#include <vector>

#include "answer/Failure.h"
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
  }
  app_.footer(exampleText(commands.front().example) + kExitCodes +
              "\n\nHelp on one command: kalvista COMMAND --help");
}

std::string CommandLine::parse(int argumentCount, const char* const* arguments) {
  try {
    app_.parse(argumentCount, arguments);
  } catch (const CLI::ParseError& error) {
    std::ostringstream text;
    if (app_.exit(error, text, text) == 0) return text.str();
    throw Failure(ExitCode::WrongUsage, explain(error));
  }
  return "";
}

std::string CommandLine::commandName() const {
  const auto commands = app_.get_subcommands();
  return commands.empty() ? "" : commands.front()->get_name();
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
