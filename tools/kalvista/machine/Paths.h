// Paths from the command line.
#ifndef KALVISTA_TOOL_PATHS_H
#define KALVISTA_TOOL_PATHS_H

#include <string>

namespace tool {

// The path from the root, so that it keeps its meaning in any working directory. Links and ".." are
// left as they are.
std::string absolutePath(const std::string& path);

std::string parentOf(const std::string& path);

// Each requirement is a Failure when it is not met; `what` names the path's part in the sentence.
void requireDirectory(const std::string& path, const std::string& what);
void requireFileReadable(const std::string& path, const std::string& what);
bool mayWrite(const std::string& directory);  // create files in it, that is
// Where this user keeps configurations of this tool; empty for a user without a home. It may not
// exist yet.
std::string userConfigurationDir();

}  // namespace tool

#endif  // KALVISTA_TOOL_PATHS_H
