#!/usr/bin/env bash
# Measures how much of the library's code the tests reach: lines and branches. Fails below 97 % of
# the lines or 90 % of the branches.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
end_with_verdict "coverage"

need_packages "${build_packages[@]}" "${tool_packages[@]}" "${test_packages[@]}" gcovr
build=$root/build-coverage
step "Building into build-coverage"
# The library throws nothing, and the ways that an exception from below would take are no branches of
# its own: it is measured without them.
cmake -S "$root" -B "$build" -G Ninja -DKALVISTA_BUILD_TESTS=ON -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS="--coverage -fno-inline" -DKALVISTA_LIBRARY_OPTIONS=-fno-exceptions \
  -DCMAKE_SHARED_LINKER_FLAGS=--coverage -DCMAKE_EXE_LINKER_FLAGS=--coverage
cmake --build "$build" --parallel "$(nproc)"
step "Running every test"
find "$build" -name '*.gcda' -delete
# The measurement gives the library names that it must not have.
ctest --test-dir "$build" --parallel "$(nproc)" --output-on-failure -E ExportsTheDocumentedNames
step "Lines and branches of the library"
gcovr --root "$root" --filter 'src/' --exclude-unreachable-branches --print-summary --sort-uncovered \
  --fail-under-line 97 --fail-under-branch 90 "$build"
