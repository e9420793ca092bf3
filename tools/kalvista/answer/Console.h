// Sentences for the person at the terminal, on standard error.
#ifndef KALVISTA_TOOL_CONSOLE_H
#define KALVISTA_TOOL_CONSOLE_H

#include <string>
#include <string_view>

namespace tool {

// With false only complaints are shown, no notes and no warnings.
void setTalkative(bool talkative);

// Progress.
void note(const std::string& sentence);
// Something that the user should know, though the command goes on.
void warn(const std::string& sentence);
// The reason why the command failed, or why its answer is no.
void complain(const std::string& sentence);
// A line that each call writes over, and that an empty text clears; only where it was asked for and
// standard error is a terminal.
void setProgressShown(bool shown);
void showProgress(const std::string& text);

// False with errno set when not all could be written. No handler of a signal runs in this process,
// so that nothing interrupts a call in between.
bool writeAll(int descriptor, std::string_view content);

// Control characters are written as "\x1b": names and texts come from documents and servers, and a
// terminal acts on them.
std::string printable(std::string_view text);
// The same of a text whose line feeds stay, and of a JSON document, whose strings stay what they
// are.
std::string printableLines(std::string_view text);
std::string printableJson(std::string_view text);

// The same for what the library's log writes to standard error. For the rest of the process.
void keepLogPrintable();

}  // namespace tool

#endif  // KALVISTA_TOOL_CONSOLE_H
