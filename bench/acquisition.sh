#!/usr/bin/env bash
# acquisition.sh GROUP TOOL [FILE]: measures by the clock how the tool brings calibrations. TOOL was
# built for the links document at the address below. Writes tables to FILE as well, in the form of
# kalvista_bench. The groups:
#   acquisition  the sample's 34 files, from a server a round trip of 100 ms away and from a folder,
#                beside curl and cp; memory while one large file arrives
#   mirror       the calibrations of 1,000 cameras, from a folder and from a server, twice each
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/lib.sh"

group=$1 tool=$(realpath "$2") file=${3:+$(realpath "$3")}
port=18290 server_port=18291
links=http://127.0.0.1:$port/downloadlinks.xml
server=http://127.0.0.1:$server_port
serial=12345678
round_trip=100
turns=11
large_mb=700
cameras=1000

need_packages curl nginx-light python3 time
work=$(mktemp -d "${TMPDIR:-/tmp}/kalvista-acquisition.XXXXXX")
processes=()
clean_up() {
  if [[ ${#processes[@]} -gt 0 ]]; then kill "${processes[@]}" && wait; fi
  rm -rf "$work"
}
trap clean_up EXIT
cd "$work"
chmod 755 .
export no_proxy=127.0.0.1
: >targets
: >timings

# start PORT COMMAND...: until somebody listens there.
start() {
  local at=$1 try
  shift
  "$@" &
  processes+=($!)
  for try in {1..100}; do
    if (exec 3<>"/dev/tcp/127.0.0.1/$at") 2>/dev/null && kill -0 $!; then return; fi
    sleep 0.1
  done
  die "$1 did not come up within $((try / 10)) seconds; is port $at taken?"
}
serve() {
  cat >nginx.conf <<NGINX
daemon off; master_process off; pid nginx.pid; error_log error.log; events {}
http { access_log off; server { root web; listen 127.0.0.1:$server_port; } }
NGINX
  start "$server_port" /usr/sbin/nginx -p "$work/" -c nginx.conf -e error.log
}

prepare_sample() {
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

# run COMMAND...: leaves its seconds and the peak of its resident memory in KB in the file cost.
run() {
  command time -f '%e %M' -o cost "$@" >output 2>&1 || die "$* fails: $(cat output)"
}
megabytes() { awk '{ printf "%.1f", $2 / 1024 }' cost; }

memory_row() {
  local large="Cali-$serial-60-200-1500-80.dat" own peer
  truncate -s "${large_mb}M" "web/$sample/$large"
  rm -rf cali
  mkdir cali
  run "$tool" download $serial --calibration-dir cali --mirror $server/repository \
    --max-size $((2 * large_mb))
  own=$(megabytes)
  [[ $(stat -c %s "cali/$large") == $((large_mb << 20)) ]] || die "$large did not arrive"
  run curl -fsS "$server/${sample// /%20}/$large" -o large
  peer=$(megabytes)
  awk -v value="$own" -v size="$large_mb" 'BEGIN {
    printf "| peak memory while a file of %d MB arrives, in MB | - | 20.00 | | %.1f | %s |\n", size,
      value, (value > 20 ? "missed" : "reached") }' >>targets
  echo "| peak memory while a file of $large_mb MB arrives | $own MB | curl, $peer MB |" >>timings
}

measure_acquisition() {
  title="Bringing a calibration"
  header="median (minimum) of | kalvista | against"
  prepare_sample
  serve
  start $port python3 "$root/bench/relay.py" $port $server_port $round_trip
  row "download of 34 files, $round_trip ms a round trip" "the same by curl" 1.3 1.0 \
    kalvista_download curl_download
  row "copy of 34 files" "cp -r and sync" 1.5 1.0 kalvista_copy cp_copy
  memory_row
}

# A fleet whose cameras all have the sample's files, under names of their own.
make_fleet() {
  python3 - "$root/examples/repository/12/1234/Califiles SN$serial" web $cameras <<'PYTHON'
import pathlib, sys

source, target, count = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), int(sys.argv[3])
files = [(file.name, file.read_bytes()) for file in source.iterdir()]
for serial in map(str, range(20000001, 20000001 + count)):
    folder = target / serial[:2] / serial[:4] / f"Califiles SN{serial}"
    folder.mkdir(parents=True)
    for name, content in files:
        (folder / name.replace("12345678", serial)).write_bytes(content)
    print(serial)
PYTHON
}

# mirror_row LABEL DIRECTORY OPTION...: all cameras, and a tenth of them for the memory.
mirror_row() {
  local label=$1 directory=$2 all
  shift 2
  mkdir -p "$directory" tenth
  run "$tool" mirror "$directory" --serials serials "$@"
  all=$(awk '{ printf "%.1f s | %.1f MB", $1, $2 / 1024 }' cost)
  run "$tool" mirror tenth --serials few "$@"
  rm -rf tenth
  echo "| $label | $all | $(megabytes) MB |" >>timings
}

measure_mirror() {
  title="Mirroring the calibrations of $cameras cameras, 34 files each"
  header="source | time | peak memory | with a tenth of the cameras"
  make_fleet >serials
  head -n $((cameras / 10)) serials >few
  serve
  mirror_row "a folder" copied --from web
  mirror_row "the same again, nothing changed" copied --from web
  mirror_row "nginx" fetched --mirror $server
  mirror_row "the same again, nothing changed" fetched --mirror $server
}

case $group in
  acquisition | mirror) "measure_$group" ;;
  *) die "unknown group $group; there are acquisition and mirror" ;;
esac
{
  if [[ -s targets ]]; then
    printf '\n### Targets\n\n'
    echo "| workload | against | at most | aim | measured | verdict |"
    echo "| --- | --- | --- | --- | --- | --- |"
    cat targets
  fi
  printf '\n### %s\n\n| %s |\n' "$title" "$header"
  awk -F'|' '{ for (i = 1; i <= NF; ++i) printf "| --- "; print "|" }' <<<"$header"
  cat timings
  echo
} | tee "${file:-tables}"
