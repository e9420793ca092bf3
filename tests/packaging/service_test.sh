#!/usr/bin/env bash
# service_test.sh SERVICES TOOL: the readers of the units and of the rules accept them, and the rules do
# what they should for devices in a tree of the test's own, as udev takes it from the kernel.
set -euo pipefail
services=$1 tool=$2
for program in systemd-analyze udevadm unshare; do
  command -v $program >/dev/null || { echo "skipped, not installed: $program" && exit 77; }
done
if [[ ${3:-} != --inside ]]; then
  unshare --mount true 2>/dev/null || { echo "skipped: needs mount namespaces, which root has" && exit 77; }
  exec unshare --mount "$0" "$services" "$tool" --inside
fi
failures=0
# is WHAT WANTED SEEN
is() {
  if [[ $3 != "$2" ]]; then printf '%s: expected\n%s\nbut it was\n%s\n' "$@" && failures=$((failures + 1)); fi
}

for folder in /sys /run /mnt; do mount -t tmpfs tmpfs $folder; done
ln -s "$tool" /mnt/kalvista  # its own path may have blanks
for unit in kalvista-cameras.service kalvista-setup@.service; do
  sed 's|^ExecStart=.*/kalvista |ExecStart=/mnt/kalvista |' "$services/$unit" >"/mnt/$unit"
  is "verify $unit" '' "$(systemd-analyze --man=no verify "/mnt/$unit" 2>&1 || echo "status $?")"
done
is sandbox '' "$(systemd-analyze security --offline=true --threshold=25 /mnt/kalvista-setup@.service >/mnt/log ||
  cat /mnt/log)"

mkdir -p /sys/bus/usb/devices /sys/devices/1-2 /run/udev/rules.d
ln -s ../../bus/usb /sys/devices/1-2/subsystem
ln -s "$services/70-kalvista.rules" /run/udev/rules.d
printf '%s\n' MAJOR=189 MINOR=1 DEVNAME=bus/usb/001/002 DEVTYPE=usb_device >/sys/devices/1-2/uevent
export SYSTEMD_DEVICE_VERIFY_SYSFS=0 SYSTEMD_LOG_LEVEL=debug
while IFS='|' read -r vendor product serial wanted; do
  rm -rf /run/udev/data  # what udev remembers of the device before
  echo "$vendor" >/sys/devices/1-2/idVendor
  echo "$product" >/sys/devices/1-2/idProduct
  printf '%b' "$serial" >/sys/devices/1-2/serial
  log=$(udevadm test --action=add /sys/devices/1-2 2>&1)
  is "device $vendor:$product $serial" "$wanted" "$(grep -oP '(^SYSTEMD_|kalvista\.rules:\d+ (?=GROUP|MODE)|run: .(?=uaccess))\K[^'"' ]+.*" <<<"$log" |
    sed "s/ .*//; s/'//" | sort | paste -sd ' ')"
  is 'complaints about the rules' '' "$(grep -iE 'kalvista\.rules:.*(invalid|unknown|ignor|fail)' <<<"$log")"
done <<TABLE
0403|$USB_PRODUCT_ID|12345678\n|GROUP MODE WANTS=kalvista-setup@12345678.service uaccess
0403|$USB_PRODUCT_ID|1;2\n|GROUP MODE uaccess
0403|$USB_PRODUCT_ID|../1\n|GROUP MODE uaccess
0403|$USB_PRODUCT_ID||GROUP MODE uaccess
0403|ffff|12345678\n|
0404|$USB_PRODUCT_ID|12345678\n|
TABLE
echo "$failures failures"
exit $((failures > 0))
