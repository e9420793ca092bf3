#!/usr/bin/env bash
# sample_machine.sh SOURCE TOOL COMMAND...: runs a command on a machine as the pages describe it, in
# a mount namespace of its own: the sample camera attached, an empty calibration directory, the
# sample repository on a USB stick and online.
set -euo pipefail
source=$1 tool=$2
if [[ ${3:-} != --inside ]]; then
  unshare --mount mount -t overlay -o lowerdir=/usr/share:/media overlay /media 2>/dev/null || {
    echo "skipped: needs mount namespaces and overlays, which root has on most machines"
    exit 77
  }
  exec unshare --mount "$0" "$source" "$tool" --inside "${@:3}"
fi
mount -t tmpfs tmpfs /mnt
for folder in /usr/share /var/lib /tmp /media; do
  mkdir -p "/mnt/upper$folder" "/mnt/work$folder"
  mount -t overlay overlay "$folder" \
    -o "lowerdir=$folder,upperdir=/mnt/upper$folder,workdir=/mnt/work$folder"
done
mount -t tmpfs tmpfs /sys/bus
mkdir -p /sys/bus/usb/devices /mnt/{bin,camera,home} /usr/share/{libkalvista/cali,kalvista}
cp "$source"/docs/schema/*.xsd /usr/share/kalvista
ln -s /mnt/camera /sys/bus/usb/devices/1-1
(cd /mnt/camera && echo 0403 >idVendor && echo "${USB_PRODUCT_ID:-7d3a}" >idProduct && echo 12345678 >serial)
cp -r "$source/examples/repository" /media/usb
cp -r "$source"/examples/*.{xml,cpp} "$source"/docs/examples/* /mnt/home
ln -s "$tool" /mnt/bin/kalvista
# The network: wget [OPTION...] ADDRESS -O FILE
cat >/mnt/bin/wget <<'WGET'
#!/usr/bin/env bash
while [[ $1 == -* ]]; do shift; done
case $1 in
  */downloadlinks.xml) cp /mnt/home/downloadlinks.xml "$3" ;;
  https://files.example.com/calibration/*) cp "/media/usb/${1#*/calibration/}" "$3" ;;
  *) exit 4 ;;
esac
WGET
chmod +x /mnt/bin/wget
cd /mnt/home
HOME=/mnt/home PATH=/mnt/bin:$PATH "${@:4}"
