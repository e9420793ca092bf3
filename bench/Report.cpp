#include "Report.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "Targets.h"

namespace bench {
namespace {

std::string format(const char* pattern, double value) {
  char text[64];
  std::snprintf(text, sizeof text, pattern, value);
  return text;
}

struct Unit {
  double seconds;
  const char* name;
};
constexpr Unit kUnits[] = {{1e-3, "ms"}, {1e-6, "µs"}, {1e-9, "ns"}};

// Median and, in brackets, minimum, in the unit that fits the median.
std::string formatTiming(const Timing& timing) {
  const Unit* unit = std::find_if(std::begin(kUnits), std::end(kUnits) - 1,
                                  [&](const Unit& each) { return timing.median >= each.seconds; });
  const double median = timing.median / unit->seconds;
  const char* pattern = median < 10 ? "%.2f" : median < 100 ? "%.1f" : "%.0f";
  return format(pattern, median) + " (" + format(pattern, timing.minimum / unit->seconds) + ") " +
         unit->name;
}

// Columns on the screen: bytes that continue a character of UTF-8 take none.
std::size_t width(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

void writeText(std::ostream& out, const Table& table) {
  std::vector<std::vector<std::string>> rows = table.rows;
  rows.insert(rows.begin(), table.header);
  std::vector<std::size_t> widths(table.header.size());
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], width(row[i]));
  }
  out << '\n' << table.title << '\n';
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      out << "  " << row[i] << std::string(widths[i] - width(row[i]), ' ');
    }
    out << '\n';
  }
}

void writeMarkdownRow(std::ostream& out, const std::vector<std::string>& row) {
  for (const std::string& cell : row) out << "| " << cell << ' ';
  out << "|\n";
}

void writeMarkdown(std::ostream& out, const Table& table) {
  out << "\n### " << table.title << "\n\n";
  writeMarkdownRow(out, table.header);
  writeMarkdownRow(out, std::vector<std::string>(table.header.size(), "---"));
  for (const auto& row : table.rows) writeMarkdownRow(out, row);
}

std::string verdict(const Target& target, double value) {
  if (value > target.atMost) return "missed";
  return target.aim > 0 && value <= target.aim ? "aim reached" : "reached";
}

}  // namespace

void Report::measured(const std::string& target, double value) {
  const auto [entry, isNew] = measured_.emplace(target, value);
  if (!isNew) entry->second = std::max(entry->second, value);
}

Table Report::targetTable() const {
  Table table{"Targets", {"workload", "against", "at most", "aim", "measured", "verdict"}, {}};
  for (const Target& target : kTargets) {
    const auto found = measured_.find(target.key);
    if (found == measured_.end()) continue;
    table.rows.push_back({target.workload, target.against, formatRatio(target.atMost),
                          target.aim > 0 ? formatRatio(target.aim) : "",
                          format("%.3f", found->second), verdict(target, found->second)});
  }
  return table;
}

std::string Report::text() const {
  std::ostringstream out;
  for (const Table& table : tables_) writeText(out, table);
  if (judging_) writeText(out, targetTable());
  return out.str();
}

std::string Report::markdown(const std::string& machine) const {
  std::ostringstream out;
  out << '\n' << machine;
  writeMarkdown(out, targetTable());
  for (const Table& table : tables_) writeMarkdown(out, table);
  out << '\n';
  return out.str();
}

void addTimings(Table& table, const std::string& workload, const Timings& timings) {
  table.header = {"median (minimum) of"};
  std::vector<std::string> row{workload};
  for (const Timing& timing : timings) {
    table.header.push_back(timing.name);
    row.push_back(formatTiming(timing));
  }
  table.rows.push_back(row);
}

std::string formatRatio(double value) { return format("%.2f", value); }

std::string formatSize(std::size_t bytes) {
  const double kilobytes = static_cast<double>(bytes) / 1024;
  return kilobytes < 1000 ? format("%.1f KB", kilobytes) : format("%.1f MB", kilobytes / 1024);
}

}  // namespace bench
