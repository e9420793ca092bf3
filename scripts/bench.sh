#!/usr/bin/env bash
# Measures the library against other ways to do the same work, and writes the tables of
# docs/performance.md. Takes some minutes; the machine should have nothing else to do.
#
#   scripts/bench.sh            measures all and writes the tables
#   scripts/bench.sh GROUP...   measures these groups of workloads and writes nothing
#   scripts/bench.sh --quick    runs every workload once, on tiny files, and writes nothing
#
# The groups are those of "kalvista_bench --list", "acquisition" and "mirror". MEASURE_UNDER is a
# command that runs each group, such as "taskset 2" or one that keeps other work away.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
end_with_verdict "benchmark"

mode=''
groups=()
case ${1:-} in
  --quick) mode=quick ;;
  -*) die "unknown option $1; the only one is --quick" ;;
  *) groups=("$@") ;;
esac

peers=(libpugixml-dev librapidxml-dev libtinyxml2-dev libexpat1-dev libxml2-dev libspdlog-dev)
need_packages g++ make cmake "${peers[@]}"
if [[ $mode != quick ]]; then need_packages "${tool_packages[@]}"; fi
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
    -DKALVISTA_BUILD_BENCH=ON -DKALVISTA_BUILD_TESTS=OFF -DKALVISTA_BUILD_EXAMPLES=OFF \
    -DKALVISTA_BUILD_TOOL="$([[ $mode == quick ]] && echo OFF || echo ON)" \
    -DKALVISTA_DOWNLOAD_LINKS_URL="http://127.0.0.1:18290/downloadlinks.xml" &&
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

if [[ $mode == quick ]]; then
  step "Running every workload once"
  "$build/bench/kalvista_bench" --quick
  exit
fi

# measure GROUP: leaves its tables in $work/GROUP.md.
measure() {
  step "Measuring $1"
  local command=("$build/bench/kalvista_bench" --only "$1" --packages "$(versions)" --markdown)
  case $1 in
    acquisition | mirror) command=(bench/acquisition.sh "$1" "$build/kalvista") ;;
  esac
  # shellcheck disable=SC2086  # the command before may have arguments
  ${MEASURE_UNDER:-} "${command[@]}" "$work/$1.md"
}

# joined FILE...: the tables of all, with one table of targets before them.
joined() {
  awk '
    FNR == 1 { section = 0; rows = 0 }
    /^### / { section += 1 + (section == 0 && !/Targets/) }
    section > 1 { rest = rest $0 "\n"; next }
    section == 1 && /^\|/ && ++rows > 2 { targets = targets $0 "\n"; next }
    NR == FNR && !(rows && /^$/) { head = head $0 "\n" }
    END { printf "%s%s\n%s", head, targets, rest }' "$@"
}

if [[ ${#groups[@]} -gt 0 ]]; then
  for group in "${groups[@]}"; do measure "$group"; done
  exit
fi
mapfile -t groups < <("$build/bench/kalvista_bench" --list)
groups+=(acquisition mirror)
for group in "${groups[@]}"; do measure "$group"; done

[[ $(grep -c '<!-- measured: \(begin\|end\) -->' "$page") == 2 ]] ||
  die "$page has no lines \"<!-- measured: begin -->\" and \"<!-- measured: end -->\""
(cd "$work" && joined "${groups[@]/%/.md}" >tables)
awk -v tables="$work/tables" '
  /<!-- measured: end -->/ { inside = 0 }
  !inside
  /<!-- measured: begin -->/ { inside = 1; while ((getline line < tables) > 0) print line }
  ' "$page" >"$work/page"
cat "$work/page" >"$page"
step "Written: the tables of $page"
