// Command-line tool of libkalvista.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <string_view>

#include "answer/Console.h"
#include "answer/Failure.h"
#include "answer/Output.h"
#include "commands/CommandLine.h"

namespace {

using tool::Answer;
using tool::ExitCode;
using tool::Failure;

// A file that is opened later must not take the number of a standard stream. Writing to the
// substitute fails, as it does on a closed stream.
void occupyClosedStandardStreams() {
  while (true) {
    const int number = open("/dev/null", O_RDONLY);
    if (number < 0) return;
    if (number > STDERR_FILENO) {
      close(number);
      return;
    }
  }
}

Answer failedAnswer(ExitCode exitCode, const std::string& sentence) {
  Answer answer;
  answer.exitCode = exitCode;
  answer.problem = sentence;
  return answer;
}

Answer answerOf(const tool::CommandLine& commandLine) {
  try {
    tool::applyCommonOptions(commandLine.common());
    return commandLine.run();
  } catch (const Failure& failure) {
    return failedAnswer(failure.exitCode(), failure.what());
  } catch (const std::exception& exception) {
    return failedAnswer(ExitCode::CouldNot, exception.what());
  }
}

ExitCode deliver(const tool::CommandLine& commandLine, bool asJson, const Answer& answer) {
  if (!answer.problem.empty()) tool::complain(answer.problem);
  Answer complete = answer;
  complete.document = commandLine.membersOfDocument();
  complete.document.update(answer.document);
  tool::writeToStandardOutput(
      asJson ? tool::jsonText(tool::completeDocument(commandLine.commandName(), complete))
             : tool::printableLines(answer.text));
  return answer.exitCode;
}

// Also of a command line that is not understood.
bool asksForJson(int argumentCount, const char* const* arguments) {
  return std::any_of(arguments, arguments + argumentCount,
                     [](std::string_view argument) { return argument == "--json"; });
}

ExitCode runTool(int argumentCount, const char* const* arguments) {
  tool::CommandLine commandLine;
  const bool asJson = asksForJson(argumentCount, arguments);
  Answer asked;
  try {
    asked.text = commandLine.parse(argumentCount, arguments);
  } catch (const Failure& failure) {
    return deliver(commandLine, asJson, failedAnswer(failure.exitCode(), failure.what()));
  }
  if (asked.text.empty()) {
    return deliver(commandLine, commandLine.common().json, answerOf(commandLine));
  }
  asked.document["text"] = asked.text;
  return deliver(commandLine, asJson, asked);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  occupyClosedStandardStreams();
  tool::keepLogPrintable();
  try {
    return static_cast<int>(runTool(argumentCount, arguments));
  } catch (const Failure& failure) {
    tool::complain(failure.what());
    return static_cast<int>(failure.exitCode());
  } catch (const std::exception& exception) {
    tool::complain(exception.what());
    return static_cast<int>(ExitCode::CouldNot);
  }
}
