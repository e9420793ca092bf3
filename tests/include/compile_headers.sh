#!/usr/bin/env bash
# compile_headers.sh INCLUDE_DIRECTORY COMPILER STANDARD: compiles each public header as the only
# line of a program, twice, so that it needs no other and bears being included again. Then callers
# that have only a constant calibration or document, and those of old.
set -euo pipefail
include=$1 compiler=$2 standard=$3
if [[ ! -x $compiler ]]; then
  echo "skipped: no such compiler on this machine: $compiler"
  exit 77
fi
compile() { "$compiler" -x c++ -fsyntax-only -std="$standard" -Wall -Wextra -Wpedantic -Werror -I "$include" -; }
for header in "$include"/kalvista/*.h; do
  name=kalvista/$(basename "$header")
  printf '#include <%s>\n#include <%s>\n' "$name" "$name" | compile
done
compile <"$(dirname "$0")/callers.cpp"
