// Measurements that need a process of their own.
#ifndef KALVISTA_BENCH_CHILD_PROCESS_H
#define KALVISTA_BENCH_CHILD_PROCESS_H

#include <string>
#include <vector>

namespace bench {

// Runs a program with its arguments and gives the number that it prints.
double numberPrintedBy(const std::vector<std::string>& command);

std::string ownProgram();

}  // namespace bench

#endif  // KALVISTA_BENCH_CHILD_PROCESS_H
