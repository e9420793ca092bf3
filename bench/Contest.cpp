#include "Contest.h"

#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <stdexcept>

namespace bench {
namespace {

constexpr double kMostRepeats = 1e7;

// The allocator adapts what it gives back to the system to what was freed before, and to the size
// of a piece, so that a contestant would depend on the others, and a file on more than its size.
// Held like this, it gives back nothing but between two turns.
void holdAllocator() {
  constexpr int kGigabyte = 1 << 30;
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, kGigabyte);
}

double sample(const Contestant& contestant, int repeats) {
  if (contestant.prepare) contestant.prepare();
  malloc_trim(0);
  const double start = processorSeconds();
  for (int i = 0; i < repeats; ++i) contestant.run();
  return (processorSeconds() - start) / repeats / contestant.operationsPerRun;
}

// The first run warms caches up and is no sample; the second tells how many runs fill a sample.
int findRepeats(const Contestant& contestant, double secondsPerSample) {
  contestant.run();
  if (secondsPerSample <= 0) return 1;
  const double once = std::max(sample(contestant, 1) * contestant.operationsPerRun, 1e-9);
  return static_cast<int>(std::clamp(std::ceil(secondsPerSample / once), 1.0, kMostRepeats));
}

const Timing& find(const Timings& timings, const std::string& name) {
  for (const Timing& timing : timings) {
    if (timing.name == name) return timing;
  }
  throw std::logic_error("no contestant is called " + name);
}

}  // namespace

double processorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

Timings compete(const std::vector<Contestant>& contestants, const Effort& effort) {
  holdAllocator();
  std::vector<int> repeats(contestants.size());
  std::transform(contestants.begin(), contestants.end(), repeats.begin(),
                 [&effort](const Contestant& contestant) {
                   return findRepeats(contestant, effort.secondsPerSample);
                 });
  std::vector<std::vector<double>> samples(contestants.size());
  for (int round = 0; round < effort.rounds; ++round) {
    for (std::size_t i = 0; i < contestants.size(); ++i) {
      samples[i].push_back(sample(contestants[i], repeats[i]));
    }
  }
  Timings timings;
  for (std::size_t i = 0; i < contestants.size(); ++i) {
    timings.push_back(summarize(contestants[i].name, samples[i]));
  }
  return timings;
}

Timing summarize(const std::string& name, std::vector<double> samples) {
  std::sort(samples.begin(), samples.end());
  const std::size_t middle = samples.size() / 2;
  const double median =
      samples.size() % 2 == 1 ? samples[middle] : (samples[middle - 1] + samples[middle]) / 2;
  return {name, median, samples.front()};
}

double ratio(const Timings& timings, const std::string& name, const std::string& against) {
  return find(timings, name).median / find(timings, against).median;
}

void keep(std::size_t value) {
  static volatile std::size_t kept;
  kept = value;
  (void)kept;
}

}  // namespace bench
