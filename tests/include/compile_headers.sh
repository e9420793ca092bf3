#!/usr/bin/env bash
# compile_headers.sh INCLUDE_DIRECTORY COMPILER STANDARD: compiles each public header as the only
# line of a program, twice, so that it needs no other and bears being included again.
set -euo pipefail
include=$1 compiler=$2 standard=$3
if [[ ! -x $compiler ]]; then
  echo "skipped: no such compiler on this machine: $compiler"
  exit 77
fi
for header in "$include"/kalvista/*.h; do
  name=kalvista/$(basename "$header")
  printf '#include <%s>\n#include <%s>\n' "$name" "$name" |
    "$compiler" -x c++ -fsyntax-only -std="$standard" -Wall -Wextra -Wpedantic -Werror -I "$include" -
done
