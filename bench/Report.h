// What was measured, as text for the terminal and as tables for the documentation.
#ifndef KALVISTA_BENCH_REPORT_H
#define KALVISTA_BENCH_REPORT_H

#include <map>
#include <string>
#include <vector>

#include "Contest.h"

namespace bench {

struct Table {
  std::string title;
  std::vector<std::string> header;
  std::vector<std::vector<std::string>> rows;
};

class Report {
 public:
  // Without `judging`, times mean nothing and are not held against the targets.
  explicit Report(bool judging) : judging_(judging) {}

  void add(const Table& table) { tables_.push_back(table); }

  // Tells the measured value of a target (see Targets.h); of several, the worst one counts.
  void measured(const std::string& target, double value);

  std::string text() const;
  std::string markdown(const std::string& machine) const;

 private:
  Table targetTable() const;

  bool judging_;
  std::vector<Table> tables_;
  std::map<std::string, double> measured_;
};

// Adds a row with one column for each contestant, named in the header.
void addTimings(Table& table, const std::string& workload, const Timings& timings);

std::string formatRatio(double value);
std::string formatSize(std::size_t bytes);  // in KB or MB

}  // namespace bench

#endif  // KALVISTA_BENCH_REPORT_H
