#!/usr/bin/env bash
# Installs the packages of build-package into a clean system and uses them there: the tool, and the
# example application built by pkg-config, by find_package and by add_subdirectory; then the same
# with the packages unpacked at another prefix. Run scripts/package.sh first.
#
#   scripts/package-test.sh             root: a new system in build-root, by debootstrap, from where
#                                       this machine's own packages come from
#   scripts/package-test.sh --staging   anyone: this machine's system, the packages unpacked in a
#                                       folder
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
end_with_verdict "packages used${1:+ ($1)}"

case ${1:-} in
  "" | --staging) ;;
  *) die "unknown argument $1; the only one is --staging" ;;
esac
debs=("$root"/build-package/{libkalvista1,libkalvista-dev,kalvista-tools,python3-kalvista}_*.deb)
[[ -e ${debs[0]} ]] || die "there are no packages in build-package; run scripts/package.sh first"
clean=$root/build-root

# unpack DIRECTORY: the packages and their source, at another place than they were made for.
unpack() {
  rm -rf "$1"
  mkdir -p "$1/source"
  local deb
  for deb in "${debs[@]}"; do dpkg-deb -x "$deb" "$1"; done
  tar -C "$1/source" --strip-components=1 -xJf "$root"/build-package/libkalvista_*.orig.tar.xz
  cp -r "$root/packaging/debian" "$1/source/debian"
}

# The mirror that this machine's packages of the distribution come from.
# shellcheck disable=SC1091
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
mirror() {
  # shellcheck disable=SC2016  # apt-get fills the names in
  apt-get indextargets --format '$(ORIGIN) $(CODENAME) $(COMPONENT) $(REPO_URI)' \
    'Identifier: Packages' |
    awk -v codename="$codename" '$1 == "Debian" && $2 == codename && $3 == "main" { print $4; exit }'
}

# depends: ",PACKAGE" for each that the packages ask for, all but each other.
depends() {
  local deb
  for deb in "${debs[@]}"; do dpkg-deb -f "$deb" Depends; done |
    tr ',' '\n' | sed 's/[:(|].*//; s/ //g' | grep -v kalvista | sort -u | sed 's/^/,/' | tr -d '\n'
}

if [[ ${1:-} == --staging ]]; then
  need_packages g++ make cmake 'pkgconf|pkg-config' python3
  step "Unpacking in build-root/moved"
  unpack "$clean/moved"
  step "Building and running the example"
  (cd "$clean/moved/source" && debian/tests/quickstart "$clean/moved/usr" && debian/tests/python "$clean/moved/usr")
  exit
fi

[[ $(id -u) -eq 0 ]] || die "a clean system needs root; without, use --staging"
need_packages debootstrap
step "Making a clean system in build-root"
rm -rf "$clean"
debootstrap --variant=minbase --include="g++,make,cmake,pkg-config,python3$(depends)" \
  "$codename" "$clean" "$(mirror)" >"$root/build-package/debootstrap.log" ||
  die "no clean system could be made; see build-package/debootstrap.log, or use --staging"
unpack "$clean/opt/elsewhere"
cp "${debs[@]}" "$clean/opt"

# there COMMANDS: as a system runs them, with /proc.
there() {
  # shellcheck disable=SC2016  # for the inner shell
  unshare --mount sh -euc 'mount -t proc proc "$0/proc" && exec chroot "$0" sh -euc "$1"' "$clean" "$1"
}

step "Installing the packages there, and using them"
there '
  dpkg -i /opt/*.deb
  test -d /usr/share/libkalvista/cali
  cd /opt/elsewhere/source
  debian/tests/quickstart
  debian/tests/python'
step "Removing them, and using what was unpacked at another prefix"
there '
  dpkg --purge python3-kalvista kalvista-tools libkalvista-dev libkalvista1
  test ! -e /usr/share/libkalvista
  cd /opt/elsewhere/source
  debian/tests/quickstart /opt/elsewhere/usr
  debian/tests/python /opt/elsewhere/usr'
rm -rf "$clean"
