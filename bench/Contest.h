// Contests between ways to do the same work, measured in processor time.
#ifndef KALVISTA_BENCH_CONTEST_H
#define KALVISTA_BENCH_CONTEST_H

#include <functional>
#include <string>
#include <vector>

namespace bench {

struct Contestant {
  std::string name;
  std::function<void()> run;
  int operationsPerRun = 1;
  std::function<void()> prepare = nullptr;  // ahead of each sample, and not part of it
};

struct Effort {
  int rounds;
  double secondsPerSample;  // short work is repeated until a sample lasts this long
};

// Processor seconds of one operation.
struct Timing {
  std::string name;
  double median;
  double minimum;
};

using Timings = std::vector<Timing>;

// Processor seconds of this process so far, system calls included.
double processorSeconds();

// Lets all contestants run once in turn, round after round, so that a slow phase of the machine
// meets all of them. What each left on the heap is given back before the next one's turn.
Timings compete(const std::vector<Contestant>& contestants, const Effort& effort);

Timing summarize(const std::string& name, std::vector<double> samples);

// Ratio of the medians of two contestants.
double ratio(const Timings& timings, const std::string& name, const std::string& against);

// Keeps the compiler from leaving out work whose result nobody uses.
void keep(std::size_t value);

}  // namespace bench

#endif  // KALVISTA_BENCH_CONTEST_H
