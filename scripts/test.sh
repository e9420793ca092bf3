#!/usr/bin/env bash
# Builds everything with the address, undefined-behaviour and leak sanitizers, warnings as errors,
# and runs every test. Arguments go to ctest, for example: scripts/test.sh -R Logger
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
end_with_verdict "tests under the sanitizers"

need_packages "${build_packages[@]}" "${tool_packages[@]}" "${test_packages[@]}" "${python_packages[@]}"
cd "$root"
step "Building into build-asan"
cmake --preset asan
cmake --build --preset asan --parallel "$(nproc)"
step "Running every test"
ctest --preset asan --parallel "$(nproc)" "$@"
