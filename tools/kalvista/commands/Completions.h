// What is made of the description of the command line besides the help.
#ifndef KALVISTA_TOOL_COMPLETIONS_H
#define KALVISTA_TOOL_COMPLETIONS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tool {

// Without those that the help does not list.
std::vector<const CLI::App*> listedCommands(const CLI::App& tool);
// Without the arguments that have no name, and the help of commands, which is the tool's.
std::vector<const CLI::Option*> namedOptions(const CLI::App& app);
bool takesValue(const CLI::Option& option);
std::vector<std::string> spellings(const CLI::Option& option);  // "-v", "--verbosity"

std::string bashCompletion(const CLI::App& tool);
std::string zshCompletion(const CLI::App& tool);
std::string fishCompletion(const CLI::App& tool);

}  // namespace tool

#endif  // KALVISTA_TOOL_COMPLETIONS_H
