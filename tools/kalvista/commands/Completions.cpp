#include "commands/Completions.h"

#include <algorithm>

#include "commands/Options.h"

namespace tool {
namespace {

using Texts = std::vector<std::string>;

// Each asks the tool for what it knows, with the words typed so far. What it answers comes from
// files and devices: no shell may expand it.
constexpr const char* kBashOffer = R"shell(_kalvista_offer() {
  local offered
  compopt +o filenames
  while IFS= read -r offered; do
    if [[ $offered == "$word"* ]]; then COMPREPLY+=("$(printf %q "$offered")"); fi
  done < <("${COMP_WORDS[0]}" offer "$1" -- "${COMP_WORDS[@]:1:COMP_CWORD-1}" 2>/dev/null)
}
)shell";
constexpr const char* kZshOffer = R"shell(_kalvista_offer() {
  local -a offered=("${(@f)$("$typed[1]" offer "$1" -- "${(@)typed[2,-1]}" 2>/dev/null)}")
  compadd -- "${(@)offered:#}"
}
)shell";
constexpr const char* kFishOffer = R"shell(function __kalvista_offer
  set -l typed (commandline -opc)
  $typed[1] offer $argv[1] -- $typed[2..-1] 2>/dev/null
end
)shell";

std::string joined(const Texts& texts, const std::string& between) {
  std::string result;
  for (const std::string& text : texts) result += (result.empty() ? "" : between) + text;
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

bool takesSerial(const CLI::App& command) {
  return command.get_option_no_throw("SERIAL") != nullptr;
}

// Types of values that the tool offers what is calibrated for.
bool isOffered(const std::string& type) {
  return type == "DEGREES" || type == "TEXT" || type == "RANGE" || type == "RATE";
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
  std::string reply;
  if (!words.empty()) reply = "mapfile -t COMPREPLY < <(compgen " + words + " -- \"$word\"); ";
  if (isOffered(type)) reply = "_kalvista_offer " + type + "; ";
  return "    " + joined(spellings(option), "|") + ") " + reply + "return ;;\n";
}

std::string zshOptions(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* option : namedOptions(app)) {
    const std::string type = option->get_type_name();
    const std::string head = ":" + type + ":";
    std::string value;
    if (takesValue(*option)) value = head + " ";
    if (type == "LEVEL") value = head + "(" + joined(verbosityNames(), " ") + ")";
    if (type == "FILE") value = head + "_files";
    if (isOffered(type)) value = head + "{_kalvista_offer " + type + "}";
    if (takesDirectory(*option)) value = head + "_files -/";
    for (const std::string& spelling : spellings(*option)) {
      const std::string description = quoted(option->get_description(), "[]:\\");
      text += " \\\n      " + quoted(spelling + "[") + description + quoted("]" + value);
    }
  }
  return text;
}

std::string fishOffer(const std::string& kind) { return "'(__kalvista_offer " + kind + ")'"; }

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
    } else if (isOffered(type)) {
      text += " -x -a " + fishOffer(type);
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

std::vector<std::string> spellings(const CLI::Option& option) {
  Texts result;
  for (const std::string& name : option.get_snames()) result.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) result.push_back("--" + name);
  return result;
}

std::string bashCompletion(const CLI::App& tool) {
  std::string values;
  std::string words;
  Texts withSerial;
  Texts withFile;
  std::vector<const CLI::App*> apps = listedCommands(tool);
  for (const CLI::App* command : apps) {
    words += "    " + command->get_name() + ") words+=' " + joined(allSpellings(*command), " ") +
             "' ;;\n";
    if (takesSerial(*command)) withSerial.push_back(command->get_name());
    if (takesFile(*command)) withFile.push_back(command->get_name());
  }
  apps.push_back(&tool);
  for (const CLI::App* app : apps) {
    for (const CLI::Option* option : namedOptions(*app)) {
      if (takesValue(*option)) values += bashValue(*option);
    }
  }
  return "# bash completion of kalvista, made of its own description\n" + std::string(kBashOffer) +
         "_kalvista() {\n  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - "
         "1]}"
         " command='' words='" +
         joined(allSpellings(tool), " ") + "' i\n" +
         "  if [[ $word == = ]]; then word=''; "
         "elif [[ $before == = ]]; then before=${COMP_WORDS[COMP_CWORD - 2]}; fi\n"
         "  case $before in\n" +
         values + "  esac\n" +
         "  for ((i = 1; i < COMP_CWORD; i++)); do\n    case ${COMP_WORDS[i]} in\n      " +
         joined(names(tool), "|") + ") command=${COMP_WORDS[i]}; break ;;\n    esac\n  done\n" +
         "  case $command in\n" + words + "    *) words+=' " + joined(names(tool), " ") +
         "' ;;\n  esac\n" + "  if [[ -z $command || $word == -* ]]; then\n" +
         "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n    return\n  fi\n" +
         "  case $command in\n    " + joined(withSerial, "|") + ") _kalvista_offer SERIAL ;;\n" +
         "  esac\n  if [[ ${#COMPREPLY[@]} -gt 0 ]]; then return; fi\n  case $command in\n    " +
         joined(withFile, "|") +
         ") mapfile -t COMPREPLY < <(compgen -f -- \"$word\") ;;\n  esac\n}\n" +
         "complete -o filenames -F _kalvista kalvista\n";
}

std::string zshCompletion(const CLI::App& tool) {
  std::string commands;
  std::string cases;
  for (const CLI::App* command : listedCommands(tool)) {
    commands += "\n    " + quoted(command->get_name() + ":" + command->get_description());
    cases += "      " + command->get_name() + ") _arguments $common" + zshOptions(*command) +
             (takesSerial(*command) ? " '1: :{_kalvista_offer SERIAL}'" : "") +
             (takesFile(*command) ? " '*:file:_files'" : "") + " ;;\n";
  }
  return "#compdef kalvista\n# Made of the tool's own description.\n" + std::string(kZshOffer) +
         "_kalvista() {\n"
         "  local state\n  local -a commands common typed=(\"${(@Q)words[1,CURRENT-1]}\")\n"
         "  commands=(" +
         commands + "\n  )\n  common=(" + zshOptions(tool) + "\n  )\n" +
         "  _arguments -C $common '(-): :->command' '(-)*:: :->argument'\n  case $state in\n" +
         "    command) _describe command commands ;;\n    argument) case $words[1] in\n" + cases +
         "    esac ;;\n  esac\n}\n_kalvista \"$@\"\n";
}

std::string fishCompletion(const CLI::App& tool) {
  std::string text = "# fish completion of kalvista, made of its own description\n";
  text += kFishOffer;
  const std::string isFirst =
      " -n 'not __fish_seen_subcommand_from " + joined(names(tool), " ") + "'";
  for (const CLI::App* command : listedCommands(tool)) {
    const std::string condition = " -n '__fish_seen_subcommand_from " + command->get_name() + "'";
    text += "complete -c kalvista -f" + isFirst + " -a " + command->get_name() + " -d " +
            quoted(command->get_description(), "\\") + "\n" + fishOptions(*command, condition);
    if (!takesFile(*command)) text += "complete -c kalvista -f" + condition + "\n";
    if (takesSerial(*command)) {
      text += "complete -c kalvista" + condition + " -a " + fishOffer("SERIAL") + "\n";
    }
  }
  return text + fishOptions(tool, "");
}

}  // namespace tool
