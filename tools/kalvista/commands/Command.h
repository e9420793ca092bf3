// The shape of a command. One table of commands (see Commands.h) makes the parser and the help.
#ifndef KALVISTA_TOOL_COMMAND_H
#define KALVISTA_TOOL_COMMAND_H

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "answer/Output.h"
#include "commands/Options.h"

namespace tool {

using Runner = std::function<Answer(const CommonOptions&)>;

struct Command {
  std::string name;
  std::string summary;
  std::string example;
  std::function<Runner(CLI::App&)> declare;  // declares its own options and says how to run it
  Json members = Json::object();  // of each of its documents, where the answer has no others
};

template <typename OwnOptions>
Command makeCommand(const std::string& name, const std::string& summary, const std::string& example,
                    void (*declare)(CLI::App&, OwnOptions&),
                    Answer (*run)(const CommonOptions&, const OwnOptions&)) {
  return {name, summary, example, [declare, run](CLI::App& app) -> Runner {
            auto own = std::make_shared<OwnOptions>();
            declare(app, *own);
            return [own, run](const CommonOptions& common) { return run(common, *own); };
          }};
}

// Of a command that brings files: its documents tell so also when it fails ahead of all work.
inline Command withFileLists(Command command) {
  command.members = {{"installed", Json::array()},
                     {"mended", Json::array()},
                     {"differing", Json::array()},
                     {"changed", false}};
  return command;
}

}  // namespace tool

#endif  // KALVISTA_TOOL_COMMAND_H
