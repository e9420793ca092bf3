#!/usr/bin/env bash
# Plants small faults, one at a time, in a copy of the sources, and tells which ones no test sees.
#   [RUN_BY=COMMAND] scripts/mutants.sh HOUSE [COUNT [SEED]]
# HOUSE is src or tools/kalvista, COUNT how many faults that compile (150), SEED which sample (1). Each
# build and each run of tests is handed to COMMAND, if there is one.
# What changes nothing that can be seen is listed with a reason in scripts/mutants-equivalent.txt.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
end_with_verdict "planted faults"

house=${1:?src or tools/kalvista}
need_packages "${build_packages[@]}" "${tool_packages[@]}" "${test_packages[@]}"
tool=ON
if [[ $house == src ]]; then tool=OFF; fi
# Not in /tmp, of which the tests get one of their own.
work=$(mktemp -d /var/tmp/kalvista-mutants.XXXXXX)
chmod 755 "$work"  # some tests run the tool as another user
before_verdict() { rm -rf "$work"; }

step "Building"
mkdir "$work/built"
git -C "$root" ls-files -z | tar -C "$root" --null -T - -c | tar -C "$work/built" -x
# The checks of bounds of the C++ library stand in for the sanitizers, under which CI runs the tests.
# A program is linked once more for each fault, which the usual linker takes five times as long for.
linker=''
if command -v ld.gold >/dev/null; then linker=-fuse-ld=gold; fi
cmake -S "$work/built" -B "$work/built/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG='-O0 -D_GLIBCXX_ASSERTIONS' \
  -DCMAKE_EXE_LINKER_FLAGS=$linker -DCMAKE_SHARED_LINKER_FLAGS=$linker -DCMAKE_LINK_DEPENDS_NO_SHARED=ON \
  -DKALVISTA_BUILD_TESTS=ON -DKALVISTA_BUILD_TOOL=$tool -DKALVISTA_BUILD_EXAMPLES=OFF >"$work/log"
# shellcheck disable=SC2086  # a command and its arguments
${RUN_BY:-} cmake --build "$work/built/build" >>"$work/log" || die "it does not build: $(tail -5 "$work/log")"
# More copies than there are processors, since tests wait as long as they work.
for job in $(seq "$((2 * $(nproc) + 1))"); do cp -a "$work/built" "$work/$job"; done
step "Planting faults in $house"
python3 "$root/scripts/mutants.py" "$work" "$house" "${2:-150}" "${3:-1}" "$root/scripts/mutants-equivalent.txt"
