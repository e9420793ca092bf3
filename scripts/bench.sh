#!/usr/bin/env bash
# Measures the library against other ways to do the same work, and writes the tables of
# docs/performance.md. Takes some minutes; the machine should have nothing else to do.
#
#   scripts/bench.sh            measures all and writes the tables
#   scripts/bench.sh --quick    runs every workload once, on tiny files, and writes nothing
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
end_with_verdict "benchmark"

case ${1:-} in
  "" | --quick) mode=${1:-} ;;
  *) die "unknown argument $1; the only one is --quick" ;;
esac

peers=(libpugixml-dev librapidxml-dev libtinyxml2-dev libexpat1-dev libxml2-dev libspdlog-dev)
need_packages g++ make cmake "${peers[@]}"
cd "$root"
build="build-bench"
page=docs/performance.md

# The benchmark removes its files itself, unless it is interrupted.
work=$(mktemp -d "${TMPDIR:-/tmp}/kalvista-bench.XXXXXX")
before_verdict() { rm -rf "$work"; }
export TMPDIR=$work

step "Building the library and the benchmark in $build"
mkdir -p "$build"
{
  cmake -S . -B "$build" -DCMAKE_CXX_COMPILER=g++ -DCMAKE_BUILD_TYPE=Release \
    -DKALVISTA_BUILD_BENCH=ON -DKALVISTA_BUILD_TOOL=OFF -DKALVISTA_BUILD_TESTS=OFF \
    -DKALVISTA_BUILD_EXAMPLES=OFF &&
    cmake --build "$build" --parallel "$(nproc)"
} >"$build/build.log" 2>&1 || {
  cat "$build/build.log"
  die "the build failed"
}

# Which releases the library was measured against.
versions() {
  if command -v dpkg-query >/dev/null; then
    dpkg-query -W -f '${Package} ${Version}, ' "${peers[@]}" | sed 's/, $//'
  fi
}

if [[ $mode == --quick ]]; then
  step "Running every workload once"
  "$build/bench/kalvista_bench" --quick
  exit
fi
step "Measuring"
"$build/bench/kalvista_bench" --packages "$(versions)" --markdown "$page"
step "Written: the tables of $page"
