#include "commands/Completions.h"

#include <algorithm>

#include "commands/Options.h"

namespace tool {
namespace {

using Texts = std::vector<std::string>;

std::string joined(const Texts& texts, const std::string& between) {
  std::string result;
  for (const std::string& text : texts) result += (result.empty() ? "" : between) + text;
  return result;
}

// "-v", "--verbosity"
Texts spellings(const CLI::Option& option) {
  Texts result;
  for (const std::string& name : option.get_snames()) result.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) result.push_back("--" + name);
  return result;
}

Texts allSpellings(const CLI::App& app) {
  Texts result;
  for (const CLI::Option* option : namedOptions(app)) {
    for (const std::string& spelling : spellings(*option)) result.push_back(spelling);
  }
  return result;
}

Texts names(const CLI::App& tool) {
  Texts result;
  for (const CLI::App* command : listedCommands(tool)) result.push_back(command->get_name());
  return result;
}

bool takesFile(const CLI::App& command) {
  const auto options = command.get_options([](const CLI::Option* option) {
    return option->get_positional() && !option->get_type_name().empty();
  });
  return !options.empty();
}

bool takesDirectory(const CLI::Option& option) {
  return option.get_type_name() == "DIR" || option.get_type_name() == "REPOSITORY";
}

// The shells agree on what stands in single quotes, but for the quote itself.
std::string quoted(const std::string& text, const std::string& special = "") {
  std::string result = "'";
  for (const char character : text) {
    if (character == '\'') {
      result += "'\\''";
      continue;
    }
    if (special.find(character) != std::string::npos) result += '\\';
    result += character;
  }
  return result + "'";
}

std::string bashValue(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  std::string words;
  if (type == "LEVEL") words = "-W '" + joined(verbosityNames(), " ") + "'";
  if (type == "FILE") words = "-f";
  if (takesDirectory(option)) words = "-d";
  const std::string reply =
      words.empty() ? "" : "mapfile -t COMPREPLY < <(compgen " + words + " -- \"$word\"); ";
  return "    " + joined(spellings(option), "|") + ") " + reply + "return ;;\n";
}

std::string zshOptions(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* option : namedOptions(app)) {
    const std::string type = option->get_type_name();
    std::string value;
    if (takesValue(*option)) value = ":" + type + ": ";
    if (type == "LEVEL") value += "(" + joined(verbosityNames(), " ") + ")";
    if (type == "FILE") value += "_files";
    if (takesDirectory(*option)) value += "_files -/";
    for (const std::string& spelling : spellings(*option)) {
      const std::string description = quoted(option->get_description(), "[]:\\");
      text += " \\\n      " + quoted(spelling + "[") + description + quoted("]" + value);
    }
  }
  return text;
}

std::string fishOptions(const CLI::App& app, const std::string& condition) {
  std::string text;
  for (const CLI::Option* option : namedOptions(app)) {
    text += "complete -c kalvista" + condition;
    for (const std::string& name : option->get_snames()) text += " -s " + name;
    for (const std::string& name : option->get_lnames()) text += " -l " + name;
    const std::string type = option->get_type_name();
    if (takesDirectory(*option)) {
      text += " -x -a '(__fish_complete_directories)'";
    } else if (type == "LEVEL") {
      text += " -x -a " + quoted(joined(verbosityNames(), " "));
    } else if (takesValue(*option)) {
      text += type == "FILE" ? " -r -F" : " -x";
    }
    text += " -d " + quoted(option->get_description(), "\\") + "\n";
  }
  return text;
}

}  // namespace

std::vector<const CLI::App*> listedCommands(const CLI::App& tool) {
  return tool.get_subcommands(
      [](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<const CLI::Option*> namedOptions(const CLI::App& app) {
  return app.get_options([&app](const CLI::Option* option) {
    const bool isInherited = option == app.get_help_ptr() && app.get_parent() != nullptr;
    return option->nonpositional() && !isInherited;
  });
}

bool takesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

std::string bashCompletion(const CLI::App& tool) {
  std::string values;
  std::string words;
  std::vector<const CLI::App*> apps = listedCommands(tool);
  for (const CLI::App* command : apps) {
    words += "    " + command->get_name() + ") words+=' " + joined(allSpellings(*command), " ") +
             "' ;;\n";
  }
  apps.push_back(&tool);
  for (const CLI::App* app : apps) {
    for (const CLI::Option* option : namedOptions(*app)) {
      if (takesValue(*option)) values += bashValue(*option);
    }
  }
  return "# bash completion of kalvista, made of its own description\n_kalvista() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} command='' words='" +
         joined(allSpellings(tool), " ") + "' i\n" + "  case ${COMP_WORDS[COMP_CWORD - 1]} in\n" +
         values + "  esac\n" +
         "  for ((i = 1; i < COMP_CWORD; i++)); do\n    case ${COMP_WORDS[i]} in\n      " +
         joined(names(tool), "|") + ") command=${COMP_WORDS[i]}; break ;;\n    esac\n  done\n" +
         "  case $command in\n" + words + "    *) words+=' " + joined(names(tool), " ") +
         "' ;;\n  esac\n" + "  if [[ -z $command || $word == -* ]]; then\n" +
         "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n" +
         "  else\n    mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n  fi\n}\n" +
         "complete -o filenames -F _kalvista kalvista\n";
}

std::string zshCompletion(const CLI::App& tool) {
  std::string commands;
  std::string cases;
  for (const CLI::App* command : listedCommands(tool)) {
    commands += "\n    " + quoted(command->get_name() + ":" + command->get_description());
    cases += "      " + command->get_name() + ") _arguments $common" + zshOptions(*command) +
             (takesFile(*command) ? " '*:file:_files'" : " '*: :'") + " ;;\n";
  }
  return "#compdef kalvista\n# Made of the tool's own description.\n_kalvista() {\n"
         "  local state\n  local -a commands common\n  commands=(" +
         commands + "\n  )\n  common=(" + zshOptions(tool) + "\n  )\n" +
         "  _arguments -C $common '1: :->command' '*:: :->argument'\n  case $state in\n" +
         "    command) _describe command commands ;;\n    argument) case $words[1] in\n" + cases +
         "    esac ;;\n  esac\n}\n_kalvista \"$@\"\n";
}

std::string fishCompletion(const CLI::App& tool) {
  std::string text = "# fish completion of kalvista, made of its own description\n";
  for (const CLI::App* command : listedCommands(tool)) {
    const std::string condition = " -n '__fish_seen_subcommand_from " + command->get_name() + "'";
    text += "complete -c kalvista -f -n __fish_use_subcommand -a " + command->get_name() + " -d " +
            quoted(command->get_description(), "\\") + "\n" + fishOptions(*command, condition);
    if (!takesFile(*command)) text += "complete -c kalvista -f" + condition + "\n";
  }
  return text + fishOptions(tool, "");
}

}  // namespace tool
