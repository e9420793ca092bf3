#!/usr/bin/env bash
# Holds the library's binary interface against the description of the last release,
# abi/libkalvista.abi.
#
#   scripts/abi.sh            fails when a program built against the described library could stop
#                             working, or when something was added and is not described yet
#   scripts/abi.sh --renew    writes the description anew, after additions or a new major version
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
end_with_verdict "binary interface"

case ${1:-} in
  "" | --renew) mode=${1:-} ;;
  *) die "unknown argument $1; the only one is --renew" ;;
esac

need_packages g++ make cmake abigail-tools
cd "$root"
description=abi/libkalvista.abi
build="build-abi"
new=$build/libkalvista.abi

step "Building the library with debug information in $build"
mkdir -p "$build"
{
  cmake -S . -B "$build" -DCMAKE_CXX_COMPILER=g++ -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS="-ffile-prefix-map='$root'=." \
    -DKALVISTA_BUILD_TOOL=OFF -DKALVISTA_BUILD_TESTS=OFF -DKALVISTA_BUILD_EXAMPLES=OFF &&
    cmake --build "$build" --target kalvista --parallel "$(nproc)"
} >"$build/build.log" 2>&1 || die "the build failed; see $build/build.log"

# Nothing of the machine is written down: no paths, no positions in files.
abidw --no-corpus-path --no-comp-dir-path --no-show-locs --drop-undefined-syms --drop-private-types \
  --exported-interfaces-only --headers-dir include --suppressions abi/kalvista.abignore \
  --out-file "$new" "$build/libkalvista.so"

soname() { sed -n "s/.* soname='\([^']*\)'.*/\1/p;q" "$1"; }
architecture() { sed -n "s/.* architecture='\([^']*\)'.*/\1/p;q" "$1"; }
renew() {
  cp "$new" "$description"
  step "Written: $description"
}
# compare OPTION...: the report of what differs.
compare() { abidiff --no-show-locs "$@" "$description" "$new"; }

if [[ ! -e $description ]]; then
  [[ $mode == --renew ]] || die "there is no $description; write it with scripts/abi.sh --renew"
  renew
  exit
fi
if [[ $(architecture "$description") != "$(architecture "$new")" ]]; then
  step "Skipped: the description was made on another kind of machine: $(architecture "$description")"
  exit
fi
if [[ $(soname "$description") != "$(soname "$new")" ]]; then
  [[ $mode == --renew ]] || die "the major version is new; write it down with scripts/abi.sh --renew"
  renew
  exit
fi

step "Comparing with $description"
if ! compare --no-added-syms; then
  die "programs built against the described library could stop working; undo the change, or raise" \
    "KALVISTA_VERSION_MAJOR and run scripts/abi.sh --renew"
fi
if compare >"$build/additions"; then exit; fi
cat "$build/additions"
[[ $mode == --renew ]] || die "what was added is not described; run scripts/abi.sh --renew"
renew
