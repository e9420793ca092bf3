#!/usr/bin/env bash
# acquisition.sh TOOL [FILE]: measures how long the tool takes to fetch the sample's 34 files from a
# server a round trip of 100 ms away, and to copy them, beside curl and cp; and its memory while one
# large file arrives. TOOL was built for the links document at the address below. Writes the tables
# to FILE as well, in the form of kalvista_bench.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/lib.sh"

tool=$(realpath "$1") file=${2:+$(realpath "$2")}
port=18290
links=http://127.0.0.1:$port/downloadlinks.xml
serial=12345678
round_trip=100
turns=11
large_mb=700

need_packages curl python3 time
work=$(mktemp -d "${TMPDIR:-/tmp}/kalvista-acquisition.XXXXXX")
server=
stop_server() {
  [[ -n $server ]] || return 0
  kill "$server"
  wait "$server" || true
  server=
}
trap 'stop_server 2>/dev/null; rm -rf "$work"' EXIT
cd "$work"
export no_proxy=127.0.0.1

mkdir web
cp -r "$root/examples/repository" web/repository
cp -r web/repository stick
sample="repository/12/1234/Califiles SN$serial"
cat >web/downloadlinks.xml <<LINKS
<?xml version="1.0" encoding="UTF-8"?>
<DownloadLinks>
  <Imager>
    <CaliData>
      <Links>
        <string>http://127.0.0.1:$port/repository</string>
      </Links>
    </CaliData>
  </Imager>
</DownloadLinks>
LINKS

# serve MILLISECONDS: a server at such a distance.
serve() {
  python3 "$root/bench/distant_server.py" web "$port" "$1" &
  server=$!
  local try
  for try in {1..100}; do
    if (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null && kill -0 "$server"; then return; fi
    sleep 0.1
  done
  die "the server did not come up within $((try / 10)) seconds; is port $port taken?"
}

# The peers are used as someone would who knows them: connections at once, as many as the tool has,
# and what is copied is on the disk in the end.
kalvista_download() { "$tool" download $serial --calibration-dir cali; }
curl_download() {
  curl -fsS "$links" -o links.xml
  local address="http://127.0.0.1:$port/${sample// /%20}" name
  curl -fsS "$address/Cali-$serial.xml" -o "cali/Cali-$serial.xml"
  for name in "web/$sample"/*.{dat,prn}; do
    printf 'url = "%s"\noutput = "%s"\n' "$address/${name##*/}" "cali/${name##*/}"
  done | curl -fsS --parallel --parallel-immediate --parallel-max 8 --config -
}
kalvista_copy() { "$tool" copy $serial stick --calibration-dir cali; }
cp_copy() {
  cp -r "stick/${sample#repository/}/." cali
  sync cali/* cali
}

# once WAY: the time of one run in microseconds; what it was to bring must be there.
once() {
  rm -rf cali
  mkdir cali
  local start=${EPOCHREALTIME/./} end name
  "$1" >output 2>&1 || die "$1 fails: $(cat output)"
  end=${EPOCHREALTIME/./}
  for name in "web/$sample"/*; do
    cmp -s "$name" "cali/${name##*/}" || die "$1 did not bring ${name##*/}"
  done
  echo $((end - start))
}

# row LABEL AGAINST LIMIT AIM WAY PEER: both take turns. Adds to the files targets and timings.
row() {
  once "$5" >/dev/null
  once "$6" >/dev/null
  : >own
  : >peer
  local turn
  for ((turn = 0; turn < turns; ++turn)); do
    once "$5" >>own
    once "$6" >>peer
  done
  sort -n -o own own
  sort -n -o peer peer
  paste own peer | awk -v label="$1" -v against="$2" -v limit="$3" -v aim="$4" '
    { own[NR] = $1 / 1000; peer[NR] = $2 / 1000 }
    END {
      m = int((NR + 1) / 2); ratio = own[m] / peer[m]
      verdict = ratio > limit ? "missed" : ratio <= aim ? "aim reached" : "reached"
      printf "| %s | %s | %.2f | %.2f | %.3f | %s |\n", label, against, limit, aim, ratio,
        verdict >>"targets"
      printf "| %s | %.0f (%.0f) ms | %s, %.0f (%.0f) ms |\n", label, own[m], own[1], against,
        peer[m], peer[1] >>"timings"
    }'
}

# peak_mb COMMAND...: peak of its resident memory.
peak_mb() {
  command time -f %M -o peak "$@" >output 2>&1 || die "$* fails: $(cat output)"
  awk '{ printf "%.1f MB", $1 / 1024 }' peak
}
memory_row() {
  local large="Cali-$serial-60-200-1500-80.dat"
  truncate -s "${large_mb}M" "web/$sample/$large"
  rm -rf cali
  mkdir cali
  local own peer
  own=$(peak_mb "$tool" download $serial --calibration-dir cali --max-size $((2 * large_mb)))
  [[ $(stat -c %s "cali/$large") == $((large_mb << 20)) ]] || die "$large did not arrive"
  peer=$(peak_mb curl -fsS "http://127.0.0.1:$port/${sample// /%20}/$large" -o large)
  echo "| peak memory while a file of $large_mb MB arrives | $own | curl, $peer |" >>timings
}

serve $round_trip
row "download of 34 files, $round_trip ms a round trip" "the same by curl" 1.3 1.0 \
  kalvista_download curl_download
stop_server
row "copy of 34 files" "cp -r and sync" 1.5 1.0 kalvista_copy cp_copy
serve 0
memory_row

{
  printf '\n### Targets\n\n'
  echo "| workload | against | at most | aim | measured | verdict |"
  echo "| --- | --- | --- | --- | --- | --- |"
  cat targets
  printf '\n### Bringing a calibration\n\n'
  echo "| median (minimum) of | kalvista | against |"
  echo "| --- | --- | --- |"
  cat timings
  echo
} | tee "${file:-tables}"
