#!/usr/bin/env bash
# Shows the main job on the sample camera: from nothing to a complete calibration, once from a
# folder and once from a web server on this machine. Needs no camera and no network, and leaves
# nothing behind but its build folder.
#   scripts/demo.sh [BUILD]    with a folder in which the tool was built already
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

serial=12345678
work=$(mktemp -d /tmp/kalvista-demo.XXXXXX)
server=

before_verdict() {
  if [[ -n $server ]]; then kill "$server" 2>/dev/null || true; fi
  rm -rf "$work"
}
end_with_verdict "demo"

# run COMMAND...: shows a command as one would type it, and runs it.
run() {
  printf '\n$ %s\n' "$*"
  "$@"
}
# answers_no COMMAND...: the same for a command whose answer is "no", exit status 1.
answers_no() {
  local status=0
  run "$@" || status=$?
  [[ $status -eq 1 ]] || die "\"$*\" ended with $status, not with 1"
  echo "(exit status 1)"
}
kalvista() { "$build/kalvista" "$@"; }

is_port_open() { (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null; }
free_port() {
  local port
  for port in {18080..18180}; do
    if ! is_port_open "$port"; then
      echo "$port"
      return
    fi
  done
  die "no port between 18080 and 18180 is free on 127.0.0.1"
}

compile() {
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DKALVISTA_BUILD_TESTS=OFF &&
    cmake --build "$build" --parallel "$(nproc)"
}
build_project() {
  build=$root/build-demo
  mkdir -p "$build" 2>/dev/null || true
  if [[ ! -w $build ]]; then build=$work/build; fi
  step "Building into $build"
  if ! compile >"$work/build.log" 2>&1; then
    cat "$work/build.log"
    die "the build failed, see above"
  fi
  [[ -x $build/kalvista ]] || die "the tool was not built; see the message of: cmake -S . -B build"
}

state_of() { find "$@" -type f -printf '%p %s %T@\n' | sort; }

# setup_twice ARGUMENT...: the second run must find nothing to do.
setup_twice() {
  run kalvista setup "$serial" "$@"
  local before
  before=$(state_of .)
  printf '\n$ kalvista setup %s | tail -n 1\n' "$serial $*"
  kalvista setup "$serial" "$@" | tail -n 1
  [[ $(state_of .) == "$before" ]] || die "the second setup changed a file"
}

serve_repository() {
  export no_proxy=127.0.0.1
  python3 -m http.server "$port" --bind 127.0.0.1 --directory "$work" --protocol HTTP/1.1 >/dev/null 2>&1 &
  server=$!
  local try
  for try in {1..50}; do
    if is_port_open "$port"; then return; fi
    sleep 0.1
  done
  die "the web server did not come up within $((try / 10)) seconds"
}

need_packages "${build_packages[@]}" "${tool_packages[@]}" python3
port=$(free_port)
build=${1:-}
if [[ -z $build ]]; then build_project; fi
cp -r "$root/examples/repository" "$work/repository"
cd "$work"

step "From a folder: the calibration of camera $serial made complete"
mkdir cali online
answers_no kalvista check "$serial" --calibration-dir cali
setup_twice --from repository --calibration-dir cali --config imager.xml

step "What an application finds now"
run kalvista check "$serial" --calibration-dir cali
run kalvista optics "$serial" --calibration-dir cali
run kalvista params imager.xml
run kalvista config "$serial" --calibration-dir cali

step "The same from a web server: 127.0.0.1, port $port"
serve_repository
setup_twice --mirror "http://127.0.0.1:$port/repository" --calibration-dir online --config online.xml
diff -r cali online || die "the two calibrations differ"
