# shellcheck shell=bash
# What the scripts of this folder share. It is sourced, not run.

# shellcheck disable=SC2034  # used by the scripts that source this file
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# step TEXT: says what is done next.
step() { printf '\n==> %s\n' "$*"; }

# die TEXT: ends the script with a sentence.
die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 3
}

# version_in: the version that the text of the public header says, such as 1.0.0.
version_in() { awk '/#define KALVISTA_VERSION_(MAJOR|MINOR|PATCH)/ { printf "%s%s", dot, $3; dot = "." }'; }
library_version() { version_in <"$root/include/kalvista/version.h"; }

# A script that calls end_with_verdict closes with "VERDICT: name: passed" or "... FAILED", wherever
# it ends. A function before_verdict, if the script has one, is run first, to clean up.
end_with_verdict() {
  verdict_name=$1
  trap print_verdict EXIT
  trap 'exit 130' INT TERM
}
print_verdict() {
  local status=$?
  if declare -F before_verdict >/dev/null; then before_verdict; fi
  if [[ $status -eq 0 ]]; then
    printf '\nVERDICT: %s: passed\n' "$verdict_name"
  else
    printf '\nVERDICT: %s: FAILED (exit status %d)\n' "$verdict_name" "$status"
  fi
}

# need_packages PACKAGE...: sees to it that Debian packages are installed. "a|b" asks for either,
# and installs the first where both are missing. Nothing is asked of a package server when all are
# there.
need_packages() {
  if ! command -v dpkg-query >/dev/null; then
    echo "This is no Debian system; make sure that it has the equivalents of: $*"
    return
  fi
  local wanted missing=()
  for wanted in "$@"; do
    is_installed "$wanted" || missing+=("${wanted%%|*}")
  done
  if [[ ${#missing[@]} -eq 0 ]]; then return; fi
  if [[ $(id -u) -ne 0 ]]; then
    die "packages are missing. Have them installed with: apt-get install ${missing[*]}"
  fi
  step "Installing ${missing[*]}"
  apt-get -qq update || echo "The package lists could not be brought up to date; trying with the old ones."
  DEBIAN_FRONTEND=noninteractive apt-get -qqy install --no-install-recommends "${missing[@]}"
}
is_installed() {
  local package
  for package in ${1//|/ }; do
    if [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) == installed* ]]; then
      return 0
    fi
  done
  return 1
}

# The packages of each purpose.
# shellcheck disable=SC2034
build_packages=('g++|clang' make cmake)
# shellcheck disable=SC2034
tool_packages=(libcli11-dev libcurl4-openssl-dev libexpat1-dev libkainjow-mustache-dev libssl-dev nlohmann-json3-dev)
# shellcheck disable=SC2034
test_packages=(g++ clang 'libclang-rt-dev|libclang-rt-14-dev' ninja-build libgtest-dev libgmock-dev binutils util-linux mount iproute2
  nginx-light wget net-tools openssl ca-certificates python3 python3-jsonschema ansible-core zsh fish groff-base locales systemd udev libxml2-utils
  chromium chromium-driver python3-selenium fonts-dejavu-core)
# shellcheck disable=SC2034
check_packages=(clang-format clang-tidy libc++-dev libc++abi-dev shellcheck valgrind 'pkgconf|pkg-config' python3)
# shellcheck disable=SC2034
python_packages=(python3-dev python3-venv python3-pip python3-pybind11 python3-setuptools python3-wheel
  python3-build python3-pytest pybind11-dev python3-matplotlib mypy unzip)

# make_sysroot ARCH DIRECTORY: fetches what library, tool and tests are linked with for that processor
# into DIRECTORY/sysroot, and writes DIRECTORY/toolchain.cmake for CMake. This machine's own packages
# stay as they are. Sets "emulator" to the command that runs a program of that processor.
sysroot_packages=(libc6-dev libstdc++6 libcli11-dev libcurl4-openssl-dev libexpat1-dev libkainjow-mustache-dev libssl-dev
  nlohmann-json3-dev libgtest-dev libgmock-dev)
make_sysroot() {
  local architecture=$1 directory=$2 triplet processor
  case $architecture in
    arm64) triplet=aarch64-linux-gnu processor=aarch64 ;;
    armhf) triplet=arm-linux-gnueabihf processor=arm ;;
    s390x) triplet=s390x-linux-gnu processor=s390x ;;
    *) die "there is no compiler for $architecture; the processors are arm64, armhf and s390x" ;;
  esac
  need_packages qemu-user "g++-$triplet"
  emulator=("$(command -v "qemu-$processor")" -L "$directory/sysroot")
  mkdir -p "$directory"
  cat >"$directory/toolchain.cmake" <<CMAKE
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR $processor)
set(CMAKE_C_COMPILER $triplet-gcc)
set(CMAKE_CXX_COMPILER $triplet-g++)
set(CMAKE_SYSROOT "$directory/sysroot")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind IN ITEMS LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_\${kind} ONLY)
endforeach()
set(CMAKE_CROSSCOMPILING_EMULATOR "${emulator[0]};-L;$directory/sysroot")
CMAKE
  if [[ $(cat "$directory/sysroot/packages" 2>/dev/null) != "${sysroot_packages[*]}" ]]; then
    fill_sysroot "$architecture" "$directory"
  fi
}

# fill_sysroot ARCH DIRECTORY: asks for the packages as a machine of that processor that has none.
fill_sysroot() {
  local apt=$2/apt sysroot=$2/sysroot package file link
  step "Fetching what programs for $1 are linked with"
  rm -rf "$apt" "$sysroot"
  mkdir -p "$apt"/{lists,archives}/partial "$sysroot"
  : >"$apt/status"
  local options=(-o "APT::Architecture=$1" -o "APT::Architectures=$1" -o "Dir::State=$apt" -o "Dir::Cache=$apt"
    -o "Dir::State::status=$apt/status" -o Debug::NoLocking=1 -o "APT::Sandbox::User=$(id -un)")
  apt-get -qq "${options[@]}" update || echo "Not every package list could be fetched; trying without."
  apt-get -qqy "${options[@]}" install --download-only --no-install-recommends "${sysroot_packages[@]}"
  mkdir "$sysroot/DEBIAN"
  for package in "$apt"/archives/*.deb; do
    dpkg -x "$package" "$sysroot"
    # What the libraries' symbols ask of packages, for scripts/package.sh.
    for file in symbols shlibs; do
      dpkg-deb -I "$package" "$file" >>"$sysroot/DEBIAN/$file" 2>/dev/null || true
    done
  done
  # An absolute link would lead out of it.
  find "$sysroot" -type l -lname '/*' | while read -r link; do
    ln -sfn --relative "$sysroot$(readlink "$link")" "$link"
  done
  echo "${sysroot_packages[*]}" >"$sysroot/packages"
  rm -rf "$apt"
}
