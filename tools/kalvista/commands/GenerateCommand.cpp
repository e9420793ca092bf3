// The manual page and the completions, for the build of the package.
#include <functional>
#include <map>

#include "commands/CommandLine.h"
#include "commands/Commands.h"
#include "commands/Completions.h"

namespace tool {
namespace {

struct OwnOptions {
  const CLI::App* tool = nullptr;
  std::string kind;
};

// Text of a manual page: roff takes lines that begin with a dot or a quote for requests.
std::string roff(const std::string& text) {
  std::string result;
  for (const char character : text) {
    const bool atLineBegin = result.empty() || result.back() == '\n';
    if (atLineBegin && (character == '.' || character == '\'')) result += "\\&";
    if (character == '\\') {
      result += "\\e";
    } else {
      result += character == '-' ? "\\-" : std::string(1, character);
    }
  }
  return result;
}

std::string manualOptions(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* option : namedOptions(app)) {
    std::string heading = roff(option->get_name());
    if (takesValue(*option)) heading += " \\fI" + option->get_type_name() + "\\fR";
    text += ".TP\n\\fB" + heading + "\\fR\n" + roff(option->get_description()) + ".\n";
    if (!option->get_default_str().empty()) {
      text += "Default: " + roff(option->get_default_str()) + "\n";
    }
  }
  return text;
}

std::string manualCommand(const CLI::App& app, const std::string& example) {
  std::string text = ".SS \"" + app.get_name();
  for (const CLI::Option* option :
       app.get_options([](const CLI::Option* one) { return one->get_positional(); })) {
    const std::string name = option->get_name(true);
    text += option->get_required() ? " " + name : " [" + name + "]";
  }
  return text + "\"\n" + roff(app.get_description()) + ".\n" + manualOptions(app) +
         ".PP\nExample:\n.PP\n.RS 4\n.nf\n" + roff(example) + "\n.fi\n.RE\n";
}

std::string manualPage(const CLI::App& tool) {
  std::string text = ".\\\" Made of the tool's own description.\n.TH KALVISTA 1 \"\" \"" +
                     versionText() + "\" \"User Commands\"\n.SH NAME\nkalvista \\- " +
                     "make USB infrared cameras ready\n.SH SYNOPSIS\n\\fBkalvista\\fR " +
                     "\\fICOMMAND\\fR [\\fIARGUMENT\\fR...] [\\fIOPTION\\fR...]\n" +
                     ".SH DESCRIPTION\n" + roff(tool.get_description()) + "\n.SH COMMANDS\n";
  std::map<std::string, std::string> examples;
  for (const Command& command : allCommands()) examples[command.name] = command.example;
  for (const CLI::App* command : listedCommands(tool)) {
    text += manualCommand(*command, examples.at(command->get_name()));
  }
  return text + ".SH OPTIONS\nThey stand before or after the command.\n" + manualOptions(tool) +
         ".SH EXIT STATUS\n.nf\n" + roff(kExitCodes) + "\n.fi\n.SH SEE ALSO\n" +
         ".BR kalvista\\-device\\-configuration (5),\n.BR kalvista\\-calibration (5),\n" +
         ".BR libkalvista (3)\n";
}

using Generator = std::string (*)(const CLI::App&);

const std::map<std::string, Generator>& generators() {
  static const std::map<std::string, Generator> all = {{"man", manualPage},
                                                       {"bash", bashCompletion},
                                                       {"zsh", zshCompletion},
                                                       {"fish", fishCompletion}};
  return all;
}

void declare(CLI::App& app, OwnOptions& own) {
  app.group("");
  own.tool = app.get_parent();
  app.add_option("KIND", own.kind, "man, bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember(generators()));
}

Answer run(const CommonOptions&, const OwnOptions& own) {
  Answer answer;
  answer.text = generators().at(own.kind)(*own.tool);
  answer.document["text"] = answer.text;
  return answer;
}

}  // namespace

Command generateCommand() {
  return makeCommand("generate", "Write the manual page or a completion", "kalvista generate man",
                     declare, run);
}

}  // namespace tool
