// What no reader of a file can do without.
#ifndef KALVISTA_BENCH_FLOORS_H
#define KALVISTA_BENCH_FLOORS_H

#include <cstddef>

#include "Files.h"

namespace bench {

// Finds all lines, in the C library's fastest way.
std::size_t countLines(const FileContent& file);

// Looks at every byte, one after the other. The sum means nothing.
std::size_t sumBytes(const FileContent& file);

}  // namespace bench

#endif  // KALVISTA_BENCH_FLOORS_H
