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
  for program in nginx openssl ip; do
    command -v "$program" >/dev/null || { echo "skipped: needs $program" && exit 77; }
  done
  exec unshare --mount --net "$0" "$source" "$tool" --inside "${@:3}"
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
echo 12345678 >/mnt/home/serials
ln -s "$tool" /mnt/bin/kalvista
# The network: a server on the loopback that has every name, and the certificates for it.
ip link set lo up
for file in /etc/hosts /etc/ssl/certs/ca-certificates.crt; do
  touch "/mnt/${file##*/}"
  mount --bind "/mnt/${file##*/}" "$file"
done
links=${LINKS_URL:-https://downloads.example.com/} links=${links#*://} names=("${links%%[/:]*}" files.example.com)
echo "127.0.0.1 localhost $(hostname) ${names[*]}" >/etc/hosts
openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=${names[0]}" 2>/dev/null \
  -addext "subjectAltName=DNS:${names[0]},DNS:${names[1]}" -keyout /mnt/key -out /etc/ssl/certs/ca-certificates.crt
mkdir /mnt/web
ln -s /media/usb /mnt/web/calibration
cat >/mnt/nginx.conf <<'NGINX'
pid nginx.pid; error_log error.log; events {}
http { access_log off; server { root web; listen 127.0.0.1:80; listen 127.0.0.1:443 ssl;
  ssl_certificate /etc/ssl/certs/ca-certificates.crt; ssl_certificate_key key;
  location ~ /downloadlinks.xml$ { root home; rewrite .* /downloadlinks.xml break; } } }
NGINX
nginx -p /mnt/ -c /mnt/nginx.conf -e error.log
trap 'nginx -p /mnt/ -c /mnt/nginx.conf -e error.log -s stop' EXIT
cd /mnt/home
HOME=/mnt/home PATH=/mnt/bin:$PATH "${@:4}"
