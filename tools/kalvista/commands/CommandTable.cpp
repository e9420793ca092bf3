#include "commands/Commands.h"

namespace tool {

std::vector<Command> allCommands() {
  return {setupCommand(),    doctorCommand(), camerasCommand(),  serialCommand(), opticsCommand(),
          checkCommand(),    copyCommand(),   downloadCommand(), sealCommand(),   mirrorCommand(),
          configCommand(),   paramsCommand(), lintCommand(),     reportCommand(), versionCommand(),
          generateCommand(), offerCommand()};
}

}  // namespace tool
