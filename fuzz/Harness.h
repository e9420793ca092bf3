// Entry point of each harness, called by the fuzzer and by the replay.
#ifndef KALVISTA_FUZZ_HARNESS_H
#define KALVISTA_FUZZ_HARNESS_H

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#endif  // KALVISTA_FUZZ_HARNESS_H
