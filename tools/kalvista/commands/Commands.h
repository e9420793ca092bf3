// The table of commands.
#ifndef KALVISTA_TOOL_COMMANDS_H
#define KALVISTA_TOOL_COMMANDS_H

#include <string>
#include <vector>

#include "commands/Command.h"

namespace tool {

// In the order of the help.
std::vector<Command> allCommands();

std::string versionText();

Command setupCommand();
Command doctorCommand();
Command camerasCommand();
Command serialCommand();
Command opticsCommand();
Command checkCommand();
Command copyCommand();
Command downloadCommand();
Command sealCommand();
Command mirrorCommand();
Command configCommand();
Command paramsCommand();
Command lintCommand();
Command reportCommand();
Command versionCommand();
// Not in the help:
Command generateCommand();
Command offerCommand();

}  // namespace tool

#endif  // KALVISTA_TOOL_COMMANDS_H
