#!/usr/bin/env bash
# Looks for faults with random input, under the sanitizers.
#   scripts/fuzz.sh SECONDS [HARNESS...]    runs each harness (all by default) for SECONDS, two at once
#   scripts/fuzz.sh --documents COUNT [SEED]  holds the library against its plain counterparts on
#                                           COUNT random documents, the first one made from SEED
# Corpora are kept in build-fuzz/corpus from run to run, inputs that fail in build-fuzz/findings.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

usage="usage: scripts/fuzz.sh SECONDS [HARNESS...] | scripts/fuzz.sh --documents COUNT [SEED]"
harnesses=(xml_walk device_config calibration differential)
build=$root/build-fuzz
with_tests=OFF
work=

before_verdict() { if [[ -n $work ]]; then rm -rf "$work"; fi; }

build_targets() {
  need_packages clang libclang-rt-dev make cmake libgtest-dev libgmock-dev
  step "Building into build-fuzz"
  cmake -S "$root" -B "$build" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DKALVISTA_BUILD_FUZZ=ON -DKALVISTA_BUILD_TESTS="$with_tests" -DKALVISTA_BUILD_TOOL=OFF -DKALVISTA_BUILD_EXAMPLES=OFF >/dev/null
  cmake --build "$build" --parallel "$(nproc)" --target "$@"
  # Inputs go through a file each: in memory, if the machine has such a folder.
  work=$(mktemp -d "$([[ -w /dev/shm ]] && echo /dev/shm || echo /tmp)/kalvista-fuzz.XXXXXX")
}

# fuzz SECONDS HARNESS: leaves a log; a finding stops the harness.
fuzz() {
  local corpus=$build/corpus/$2 seeds=("$work/sample")
  if [[ -d $root/fuzz/seeds/$2 ]]; then seeds+=("$root/fuzz/seeds/$2"); fi
  mkdir -p "$corpus" "$build/findings/$2" "$work/$2"
  TMPDIR=$work/$2 "$build/fuzz/fuzz_$2" -max_total_time="$1" -timeout=20 -rss_limit_mb=2048 \
    -max_len=20000 -print_final_stats=1 -dict="$root/fuzz/dictionary.txt" \
    -artifact_prefix="$build/findings/$2/" "$corpus" "${seeds[@]}" >"$build/$2.log" 2>&1
}

report() {
  local log=$build/$1.log runs coverage
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  coverage=$(grep -o 'cov: [0-9]* ft: [0-9]*' "$log" | tail -n 1)
  printf '%-14s %12s executions   %s\n' "$1" "${runs:-?}" "${coverage:-no coverage}"
}

show_finding() {
  grep -m 1 -A 25 -e '^The library differs' -e 'ERROR:' -e 'runtime error' "$1" || tail -n 25 "$1"
}

fuzz_all() {
  local seconds=$1 harness failed=() pids=()
  shift
  build_targets "${@/#/fuzz_}"
  mkdir -p "$work/sample"
  cp "$root"/examples/imager.xml "$root"/examples/repository/*/*/*/*.xml "$work/sample/"
  step "Running $* for $seconds s each"
  while [[ $# -gt 0 ]]; do
    pids=()
    for harness in "${@:1:2}"; do
      fuzz "$seconds" "$harness" &
      pids+=("$!")
    done
    for harness in "${@:1:2}"; do
      wait "${pids[0]}" || failed+=("$harness")
      pids=("${pids[@]:1}")
      report "$harness"
    done
    shift $(($# < 2 ? $# : 2))
  done
  for harness in "${failed[@]}"; do
    printf '\n%s failed; its log is %s:\n' "$harness" "$build/$harness.log"
    show_finding "$build/$harness.log"
  done
  [[ ${#failed[@]} -eq 0 ]]
}

compare_documents() {
  with_tests=ON
  build_targets kalvista_differential_test
  step "Comparing on $1 random documents"
  TMPDIR=$work "$build/tests/oracle/kalvista_differential_test" --documents="$1" --first-seed="${2:-1}"
}

[[ ${1:-} =~ ^([0-9]+|--documents)$ ]] || die "$usage"
end_with_verdict "fuzzing"
if [[ $1 == --documents ]]; then
  [[ ${2:-} =~ ^[0-9]+$ && ${3:-1} =~ ^[0-9]+$ ]] || die "$usage"
  compare_documents "$2" "${3:-1}"
else
  seconds=$1
  shift
  if [[ $# -gt 0 ]]; then harnesses=("$@"); fi
  for harness in "${harnesses[@]}"; do
    [[ -f $root/fuzz/$harness.cpp ]] || die "there is no harness $harness; see fuzz/*.cpp"
  done
  fuzz_all "$seconds" "${harnesses[@]}"
fi
