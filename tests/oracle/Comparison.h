// Holds the library against the plain reader and loader on one document.
#ifndef KALVISTA_TESTS_ORACLE_COMPARISON_H
#define KALVISTA_TESTS_ORACLE_COMPARISON_H

#include <functional>
#include <string>

#include "ByteSource.h"

namespace oracle {

/// Writes a file into a folder of this process, over the former one of that name.
/// @return its path
std::string writeScratchFile(const std::string& name, const std::string& bytes);
/// That folder; it is removed when the process ends.
const std::string& scratchFolder();

/// Takes one walk with both readers.
/// @return where they part; empty when they do not
std::string compareReaders(const std::string& document, const std::string& root,
                           const ByteSource& walk);

/// Loads a calibration with both loaders.
/// @return where the models part; empty when they do not
std::string compareLoaders(const std::string& document);

/// Cuts a document down as long as the comparison still tells a difference.
/// @return the difference on the shortest document, and that document with escapes
std::string explain(std::string document,
                    const std::function<std::string(const std::string&)>& compare);

}  // namespace oracle

#endif  // KALVISTA_TESTS_ORACLE_COMPARISON_H
