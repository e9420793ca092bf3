#!/usr/bin/env bash
# Builds the Debian packages from the tree, in build-package: the library, its development files,
# the tool and the documentation, and the source package that they are made from.
#   scripts/package.sh [--arch ARCH] [--links-url URL] [--documentation-url URL] [--product-id ID]
#     --arch ARCH              for another processor, arm64, armhf or s390x: all but the documentation
#                              and the Python package
#     --links-url URL          the document that names the online repositories
#     --documentation-url URL  the documentation, written into default configurations
#     --product-id ID          the USB product id of the supported cameras
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

packages=$root/build-package
debian=$root/packaging/debian
foreign=
constants=()
while [[ $# -gt 0 ]]; do
  [[ $# -gt 1 ]] || die "$1 needs a value"
  case $1 in
    --arch) foreign=$2 ;;
    --links-url) constants+=("KALVISTA_DOWNLOAD_LINKS_URL [==[$2]==]") ;;
    --documentation-url) constants+=("KALVISTA_DOCUMENTATION_URL [==[$2]==]") ;;
    --product-id) constants+=("KALVISTA_USB_PRODUCT_ID [==[$2]==]") ;;
    *) die "unknown argument $1; there are --arch, --links-url, --documentation-url and --product-id" ;;
  esac
  shift 2
done
end_with_verdict "Debian packages${foreign:+ for $foreign}"
# Tools of packaging cannot do with blanks, which the path of the tree may have.
work=$(mktemp -d /tmp/kalvista-package.XXXXXX)
before_verdict() { rm -rf "$work"; }

# What the build asks for, by name: relations and all that stands in brackets left out.
build_depends() {
  sed -n '/^Build-Depends/,/^[A-Z]/ { /^Build-Depends/ s/^[^:]*://; /^[A-Z]/ d; p }' "$debian/control" |
    tr ',' '\n' | sed 's/[([<].*//; s/ *| */|/g; s/debhelper-compat/debhelper/' | tr -d ' ' | grep .
}
mapfile -t wanted < <(build_depends)
need_packages build-essential dpkg-dev fakeroot lintian "${wanted[@]}"

name=$(dpkg-parsechangelog -l "$debian/changelog" -S Source)
version=$(dpkg-parsechangelog -l "$debian/changelog" -S Version)
upstream=${version%-*}
[[ $upstream == "$(library_version)" ]] ||
  die "packaging/debian/changelog is about version $upstream, include/kalvista/version.h about" \
    "$(library_version); give the changelog a new entry"
source=$work/$name-$upstream

step "Collecting the sources of $name $version"
rm -rf "$packages"
mkdir "$packages" "$source"
# What version control does not know, and what is built, stays out.
(cd "$root" && tar -c --exclude-vcs --exclude='./build*' --exclude=./packaging/debian .) |
  tar -x -C "$source"
tar -C "$work" --sort=name --owner=0 --group=0 -cJf "$work/${name}_$upstream.orig.tar.xz" \
  "$name-$upstream"
cp -r "$debian" "$source/debian"
for constant in "${constants[@]}"; do
  echo "set($constant CACHE STRING \"\")" >>"$source/debian/constants.cmake"
done

step "Building; the output goes to build-package/build.log"
options=(-us -uc)
if [[ -n $foreign ]]; then
  make_sysroot "$foreign" "$root/build-$foreign"
  # These paths may have no blanks either.
  ln -s "$root/build-$foreign" "$work/foreign"
  export CMAKE_TOOLCHAIN_FILE=$work/foreign/toolchain.cmake KALVISTA_SYSROOT=$work/foreign/sysroot
  options+=(--host-arch "$foreign" "--build-profiles=cross,nocheck" "--build=source,any" -d)
fi
(cd "$source" && dpkg-buildpackage "${options[@]}") >"$packages/build.log" 2>&1 ||
  { grep -A 3 'CMake Error' "$packages/build.log" || true; die "the build failed; see build-package/build.log"; }
rm -rf "$source" "$work/foreign"
mv "$work"/* "$packages"
ls "$packages"/*.deb

step "Checking with lintian"
user=()
[[ $(id -u) -ne 0 ]] || user=(--allow-root)
lintian "${user[@]}" --fail-on error "$packages"/*.changes
