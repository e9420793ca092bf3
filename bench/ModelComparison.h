// Tells whether two readers read the same calibration.
#ifndef KALVISTA_BENCH_MODEL_COMPARISON_H
#define KALVISTA_BENCH_MODEL_COMPARISON_H

#include <kalvista/Cali.h>

#include <string>

namespace bench {

// Names the first place where two calibrations differ; empty when they are equal.
std::string firstDifference(const ConfigCali& one, const ConfigCali& other);

}  // namespace bench

#endif  // KALVISTA_BENCH_MODEL_COMPARISON_H
