#!/usr/bin/env bash
# Makes the pictures of the README from real runs of the tool on the sample camera: docs/picture.svg, and
# docs/report.png, the page of a report in a browser, for which it must be root.
#   scripts/picture.sh [TOOL]     default: the tool of the demo's build
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

tool=$(realpath "${1:-$root/build-demo/kalvista}")
[[ -x $tool ]] || die "there is no tool $tool; build it with scripts/demo.sh, or name one"
work=$(mktemp -d /tmp/kalvista-picture.XXXXXX)
before_verdict() { rm -rf "$work"; }
end_with_verdict "picture"

# show COMMAND: as a terminal shows it, with paths as in a folder of the user.
show() {
  printf '$ %s\n' "$1"
  { eval "$1" 2>&1 || true; } | sed "s,$work/,,g"
}
kalvista() { "$tool" "$@"; }

step "Running the tool on the sample camera"
cp -r "$root/examples/repository" "$work/usb"
sed 's/<framerate>/<framerate unit="Hz">/; s/>100</>010</; s/focus>/fokus>/g' \
  "$root/examples/imager.xml" >"$work/old.xml"
mkdir "$work/cali"
cd "$work"
{
  show "kalvista setup 12345678 --from usb --calibration-dir cali --config camera.xml 2>/dev/null"
  show "kalvista lint old.xml"
} >transcript
cat transcript

step "Drawing $root/docs/picture.svg"
fold -s -w 100 transcript | awk '
  { gsub(/&/, "\\&amp;"); gsub(/</, "\\&lt;"); gsub(/>/, "\\&gt;"); lines[NR] = $0 }
  END {
    height = 44 + NR * 18
    printf "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"860\" height=\"%d\" role=\"img\">\n", height
    print "<title>A run of kalvista</title>"
    printf "<rect width=\"860\" height=\"%d\" rx=\"8\" fill=\"#1c2128\"/>\n", height
    split("#ff5f57 #febc2e #28c840", colours, " ")
    for (i = 1; i <= 3; i++)
      printf "<circle cx=\"%d\" cy=\"16\" r=\"5\" fill=\"%s\"/>\n", i * 18, colours[i]
    print "<g font-family=\"ui-monospace,Menlo,Consolas,DejaVu Sans Mono,monospace\" font-size=\"13.5\" xml:space=\"preserve\">"
    for (i = 1; i <= NR; i++)
      printf "<text x=\"16\" y=\"%d\" fill=\"%s\">%s</text>\n", 30 + i * 18,
        lines[i] ~ /^\$ / ? "#7ee787" : "#d1d7e0", lines[i]
    print "</g>\n</svg>"
  }' >"$root/docs/picture.svg"

step "Photographing a report into $root/docs/report.png"
need_packages chromium fonts-dejavu-core
# On the machine of the tests, where the sample camera is attached; the picture comes by standard output.
"$root/tests/docs/sample_machine.sh" "$root" "$tool" bash -euc '{
  kalvista setup --from /media/usb -v error
  kalvista config 12345678 --fov 33 --range=0:250 --framerate 27 -o camera.xml
  kalvista report --config camera.xml -o report.html
  chromium --headless=new --no-sandbox --disable-gpu --disable-dev-shm-usage --hide-scrollbars \
    --window-size=860,1180 --screenshot=/mnt/report.png file:///mnt/home/report.html
  } >&2
  cat /mnt/report.png' >"$work/report.png"
mv "$work/report.png" "$root/docs/report.png"
