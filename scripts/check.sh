#!/usr/bin/env bash
# Checks the frame of the project: that it builds as promised, and that its style, installation and
# demo hold. Without arguments every check is run; with names, only those; with --quick all but
# those that read the whole tool or build everything once more, which a release asks for.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

all_checks=(plain_build library_alone format floors share scripts tidy_library install static memory threads demo unity abi manual benchmark)
serial=12345678
work=$(mktemp -d /tmp/kalvista-check.XXXXXX)
plain=$work/plain
clean_up() { rm -rf "$work"; }

# With no option at all, the build gives the library and the tool.
plain_build() {
  cmake -S "$root" -B "$plain"
  cmake --build "$plain" --parallel "$(nproc)"
  test -f "$plain/libkalvista.so"
  "$plain/kalvista" --help >/dev/null
}

# With nothing but a compiler and CMake there is still a library, and a message for the rest.
library_alone() {
  cmake -S "$root" -B "$work/alone" -DKALVISTA_BUILD_TESTS=ON -DCMAKE_DISABLE_FIND_PACKAGE_{CLI11,nlohmann_json,GTest}=TRUE -DKALVISTA_MUSTACHE_DIR='' \
    2>&1 | tee "$work/alone.log"
  local package
  for package in libcli11-dev libkainjow-mustache-dev nlohmann-json3-dev libgtest-dev; do
    grep -q "$package" "$work/alone.log" || die "no message names $package"
  done
  cmake --build "$work/alone" --parallel "$(nproc)"
  test -f "$work/alone/libkalvista.so"
  test ! -e "$work/alone/kalvista"
}

format() {
  find "$root"/{include,src,tools,examples,tests,fuzz,bench,python} -name '*.h' -print0 -o -name '*.cpp' -print0 |
    xargs -0 clang-format --dry-run -Werror
}

# A floor uses itself and those before it in its house; what is joined by "|" stands side by side.
library_floors=(sdk/text sdk/log sdk/places sdk/xml 'sdk/device|imgproc' sdk/manager)
tool_floors=(answer machine 'camera|lint' diagnosis 'acquisition|report' commands)
floors() {
  floors_hold "$root/src" "${library_floors[@]}"
  floors_hold "$root/tools/kalvista" "${tool_floors[@]}"
}
# floors_hold HOUSE FLOOR...: every include stays on its floor or goes to one before it, every file
# has a floor, and the page of the architecture names the floors in this order.
floors_hold() {
  local house=$1 floor folder below='' known=() wrong
  shift
  for floor in "$@"; do
    for folder in ${floor//|/ }; do
      wrong=$(grep -rnE '^#include "' "$house/$folder" | grep -vE "\"($folder$below)/[^/\"]+\"") || true
      if [[ -n $wrong ]]; then die "$folder may not include this: $wrong"; fi
      known+=(-not -path "$house/$folder/*")
      grep -qF "${house#"$root"/}/$folder/" "$root/docs/architecture.md" || die "architecture.md knows no $folder"
    done
    below+="|$floor"
  done
  wrong=$(find "$house" -mindepth 2 -name '*.[ch]*' "${known[@]}")
  if [[ -n $wrong ]]; then die "on no floor: $wrong"; fi
}

# Tests are a quarter to a third of the code: every line that is not blank counts, tables and
# transcripts included; inputs that a fuzzer found do not.
share() {
  local tests code
  tests=$(count_lines tests fuzz ':!fuzz/seeds')
  code=$(count_lines include src tools python examples/'*.cpp' examples/'*.py' bench scripts cmake CMakeLists.txt .ci)
  echo "$tests lines of tests beside $code lines of code: $((100 * tests / code)) %"
  [[ $((100 * tests)) -le $((33 * code)) ]]
}
count_lines() { git -C "$root" grep -hIE '[^[:space:]]' -- "$@" | wc -l; }

scripts() { shellcheck -x -P "$root" "$root"/scripts/*.sh "$root/.ci/run"; }

# clang-tidy on library, tool and example, every finding of all files in one go. The large headers of
# the tool are read once.
tidy() {
  tidy_library
  cmake --build "$work/tidy" --target tools/kalvista/CMakeFiles/kalvista_tool_parts.dir/cmake_pch.hxx.pch
  run-clang-tidy -quiet -p "$work/tidy" -j "$(nproc)" '/(tools|examples)/(?!.*cmake_pch)'
}
tidy_library() {
  cd "$root"
  cmake --preset tidy -B "$work/tidy" -DCMAKE_CXX_CLANG_TIDY=
  run-clang-tidy -quiet -p "$work/tidy" -j "$(nproc)" '/src/'
}

# quickstart_runs PROGRAM: the example application finds the sample's calibration.
quickstart_runs() {
  sed "s|<calipath>.*<|<calipath>$root/examples/repository/12/1234/Califiles SN$serial<|" \
    "$root/examples/imager.xml" >"$work/imager.xml"
  "$1" "$work/imager.xml" | tee "$work/quickstart.log"
  grep -q '32 frames per second: calibrated' "$work/quickstart.log"
}

# The installed library is found by pkg-config and by CMake, also where it was moved to, and the
# source tree serves as part of another project.
install() {
  cmake --install "$plain" --prefix "$work/first"
  mv "$work/first" "$work/moved"
  local pc
  pc=$(find "$work/moved" -name kalvista.pc)
  local flags
  flags=$(PKG_CONFIG_PATH=$(dirname "$pc") pkg-config --cflags --libs kalvista)
  local libraries
  libraries=$(dirname "$(find "$work/moved" -name libkalvista.so)")
  # shellcheck disable=SC2086  # one flag a word
  g++ -std=c++11 "$root/examples/quickstart.cpp" $flags -o "$work/by-pkg-config"
  LD_LIBRARY_PATH=$libraries quickstart_runs "$work/by-pkg-config"

  cmake -S "$root/examples" -B "$work/by-cmake" -DCMAKE_PREFIX_PATH="$work/moved"
  cmake --build "$work/by-cmake"
  quickstart_runs "$work/by-cmake/kalvista_quickstart"

  mkdir "$work/outer"
  cat >"$work/outer/CMakeLists.txt" <<CMAKE
cmake_minimum_required(VERSION 3.16)
project(outer LANGUAGES CXX)
add_subdirectory("$root" kalvista)
add_executable(outer "$root/examples/quickstart.cpp")
target_link_libraries(outer PRIVATE kalvista::kalvista)
CMAKE
  cmake -S "$work/outer" -B "$work/as-part"
  cmake --build "$work/as-part" --parallel "$(nproc)"
  quickstart_runs "$work/as-part/outer"

  "$work/moved/bin/kalvista" --help >/dev/null
}

# As a static library it is found likewise, also by a linker that knows no C++; added to a project, it
# installs nothing there.
static() {
  local options=(-DKALVISTA_BUILD_TOOL=OFF -DKALVISTA_BUILD_EXAMPLES=OFF)
  cmake -S "$root" -B "$work/archive" "${options[@]}" -DBUILD_SHARED_LIBS=OFF
  cmake --build "$work/archive" --parallel "$(nproc)"
  cmake --install "$work/archive" --prefix "$work/static"
  local pc
  pc=$(find "$work/static" -name kalvista.pc)
  export PKG_CONFIG_PATH=${pc%/*}
  # shellcheck disable=SC2046  # one flag a word
  g++ -std=c++11 -c "$root/examples/quickstart.cpp" $(pkg-config --cflags kalvista) -o "$work/quickstart.o"
  # shellcheck disable=SC2046
  gcc "$work/quickstart.o" $(pkg-config --static --libs kalvista) -o "$work/static-by-pkg-config"
  quickstart_runs "$work/static-by-pkg-config"
  cmake -S "$root/examples" -B "$work/static-by-cmake" -DCMAKE_PREFIX_PATH="$work/static"
  cmake --build "$work/static-by-cmake"
  quickstart_runs "$work/static-by-cmake/kalvista_quickstart"

  mkdir "$work/parent"
  cat >"$work/parent/CMakeLists.txt" <<CMAKE
cmake_minimum_required(VERSION 3.16)
project(parent LANGUAGES CXX)
add_subdirectory("$root" kalvista)
CMAKE
  cmake -S "$work/parent" -B "$work/parent/build"
  cmake --install "$work/parent/build" --prefix "$work/parent/prefix"
  if [[ -e $work/parent/prefix ]]; then die "a parent project installs $(find "$work/parent/prefix")"; fi
}

# The main job under valgrind: no error, no leak.
memory() {
  mkdir "$work/cali"
  local tool=(valgrind -q --error-exitcode=9 --leak-check=full "$plain/kalvista")
  local options=(--calibration-dir "$work/cali")
  "${tool[@]}" setup $serial --from "$root/examples/repository" --config "$work/setup.xml" "${options[@]}"
  "${tool[@]}" check $serial "${options[@]}"
  "${tool[@]}" optics $serial "${options[@]}" --json >/dev/null
  "${tool[@]}" config $serial "${options[@]}" >/dev/null
  "${tool[@]}" params "$root/examples/imager.xml"
}

# Files read by threads side by side, with the log in all its forms, under the thread sanitizer.
threads() {
  cmake -S "$root" -B "$work/threads" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_FLAGS=-fsanitize=thread -DKALVISTA_BUILD_TESTS=ON -DKALVISTA_BUILD_TOOL=OFF
  cmake --build "$work/threads" --parallel "$(nproc)" --target ThreadTest
  "$work/threads/tests/sdk/ThreadTest"
}

# The demo, by a user without privileges, from a checkout with a blank in its path.
demo() {
  [[ -e $plain/kalvista ]] || plain_build
  check_out
  chmod 755 "$work"
  chown -R nobody "$checkout"
  setpriv --reuid nobody --clear-groups env HOME="$work" "$checkout/scripts/demo.sh" "$plain"
}

checkout="$work/my checkout"
check_out() {
  [[ ! -e $checkout ]] || return 0
  mkdir "$checkout"
  tar -C "$root" --exclude='./build*' --exclude=./.git -c . | tar -C "$checkout" -x
}

# Library and tool have no byte that depends on where they were built.
same_bytes() {
  [[ -e $plain/kalvista ]] || plain_build
  check_out
  local build="$checkout/build again" file
  cmake -S "$checkout" -B "$build"
  cmake --build "$build" --parallel "$(nproc)"
  for file in libkalvista.so kalvista; do cmp "$plain/$file" "$build/$file"; done
}

# All of the library as one source; with clang and its own C++ library, it exports the same names.
unity() {
  cmake -S "$root" -B "$work/unity" -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 -DKALVISTA_BUILD_TOOL=OFF \
    -DKALVISTA_WARNINGS_AS_ERRORS=ON -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS=-stdlib=libc++
  cmake --build "$work/unity" --parallel "$(nproc)"
  nm -DC --defined-only "$work/unity/libkalvista.so" | cut -d ' ' -f 3- |
    sed 's/::__1::/::/g; s/basic_string<char, std::char_traits<char>, std::allocator<char> >/string/g' |
    LC_ALL=C sort -u >"$work/exported"
  sed 's/::__cxx11::/::/g; s/\[abi:cxx11\]//; s/basic_string<char, std::char_traits<char>, std::allocator<char> >/string/g' \
    "$root/tests/sdk/exported_symbols.txt" | LC_ALL=C sort -u | diff - "$work/exported"
}

# What has a script of its own.
abi() { "$root/scripts/abi.sh"; }
# Every public name has its description, which names its parameters as they are. Of constructors and
# destructors the manual's maker does not ask for one.
manual() {
  awk '/^  ~?[A-Z][A-Za-z]*\(/ && !/= delete/ && before !~ /\/\/\// { print FILENAME ":" FNR ": not described"; wrong = 1 }
    { before = $0 } END { exit wrong }' "$root"/include/kalvista/*.h
  clang -fsyntax-only -x c++ -std=c++17 -Werror -Wdocumentation -Wdocumentation-pedantic -I "$root/include" \
    "$root/include/kalvista/kalvista.h"
  "$root/scripts/docs.sh"
}
# Without optimization, for the sake of time.
packages() {
  DEB_BUILD_OPTIONS=noopt "$root/scripts/package.sh"
  "$root/scripts/package-test.sh" --staging
}
benchmark() { "$root/scripts/bench.sh" --quick; }

run_checks() {
  local name status passed=0 failed=0
  for name in "$@"; do
    local begin=$SECONDS
    step "$name"
    set +e
    (
      set -e
      trap - EXIT
      "$name"
    ) >"$work/$name.log" 2>&1
    status=$?
    set -e
    if [[ $status -eq 0 ]]; then
      echo "ok: $name ($((SECONDS - begin)) s)"
      passed=$((passed + 1))
    else
      cat "$work/$name.log"
      echo "FAILED: $name (exit status $status)"
      failed=$((failed + 1))
    fi
  done
  if [[ $failed -eq 0 ]]; then
    printf '\nVERDICT: the frame of the project holds\n'
  else
    printf '\nVERDICT: the frame of the project does NOT hold\n'
  fi
  echo "$passed passed, $failed failed"
  [[ $failed -eq 0 ]]
}

trap clean_up EXIT
need_packages "${build_packages[@]}" "${tool_packages[@]}" "${test_packages[@]}" "${check_packages[@]}"
case ${1:-} in
  '') set -- "${all_checks[@]}" tidy packages same_bytes ;;
  --quick) set -- "${all_checks[@]}" ;;
esac
run_checks "$@"
