#!/usr/bin/env bash
# Compiles library, tool and tests for another processor, warnings as errors, and runs the tests under
# an emulator. What they are linked with is fetched for that processor into the build folder.
#   scripts/cross.sh ARCH [--library] [DOCUMENTS]
#     ARCH        arm64, armhf or s390x
#     --library   the library and its tests, not the tool
#     DOCUMENTS   how many random ones the library is held against its plain counterparts on (1000)
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

architecture=${1:-}
usage="usage: scripts/cross.sh arm64|armhf|s390x [--library] [DOCUMENTS]"
[[ $architecture =~ ^(arm64|armhf|s390x)$ ]] || die "$usage"
shift
documents=1000 tool=ON
for argument in "$@"; do
  case $argument in
    --library) tool=OFF ;;
    *[!0-9]*) die "unknown argument $argument; $usage" ;;
    *) documents=$argument ;;
  esac
done
end_with_verdict "$architecture"

build=$root/build-$architecture
need_packages "${build_packages[@]}" "${test_packages[@]}"
make_sysroot "$architecture" "$build"

step "Building in build-$architecture"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$build/toolchain.cmake" -DCMAKE_CXX_FLAGS_RELEASE=-O1 \
  -DKALVISTA_BUILD_TESTS=ON -DKALVISTA_BUILD_TOOL=$tool -DKALVISTA_WARNINGS_AS_ERRORS=ON
# The tests that start web servers and replay seeds come with the tool's.
tests=(LibraryTest ProcessTest ThreadTest CameraDiscoveryTest DefaultRouteTest)
targets=("${tests[@]}" kalvista_differential_test)
if [[ $tool == ON ]]; then
  tests=('')
  targets=(all)
fi
cmake --build "$build" --parallel "$(nproc)" --target "${targets[@]}"

step "Running the tests under the emulator"
ctest --test-dir "$build" --parallel "$(nproc)" --output-on-failure --no-tests=error \
  -R "^($(IFS='|' && echo "${tests[*]}"))" -E '^kalvista_differential_test'
step "Comparing on $documents random documents"
"${emulator[@]}" "$build/tests/oracle/kalvista_differential_test" --documents="$documents"
if [[ $architecture == arm64 && $tool == ON ]]; then
  step "Building the Python package, and testing it"
  "$root/scripts/python.sh" arm64 "$build/python"
fi
