#!/usr/bin/env bash
# Builds the Debian packages from the tree, in build-package: the library, its development files,
# the tool and the documentation, and the source package that they are made from. Nothing is
# fetched but what the build itself needs and the machine does not have.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
end_with_verdict "Debian packages"

need_packages build-essential debhelper dpkg-dev fakeroot lintian
packages=$root/build-package
debian=$root/packaging/debian
name=$(dpkg-parsechangelog -l "$debian/changelog" -S Source)
version=$(dpkg-parsechangelog -l "$debian/changelog" -S Version)
upstream=${version%-*}
[[ $upstream == "$(library_version)" ]] ||
  die "packaging/debian/changelog is about version $upstream, include/kalvista/version.h about" \
    "$(library_version); give the changelog a new entry"
source=$packages/$name-$upstream

step "Collecting the sources of $name $version in build-package"
rm -rf "$packages"
mkdir -p "$source"
# What version control does not know, and what is built, stays out.
(cd "$root" && tar -c --exclude-vcs --exclude='./build*' --exclude=./packaging/debian .) |
  tar -x -C "$source"
tar -C "$packages" --sort=name --owner=0 --group=0 -cJf "$packages/${name}_$upstream.orig.tar.xz" \
  "$name-$upstream"
cp -r "$debian" "$source/debian"

step "Looking for what the build needs"
if ! (cd "$source" && dpkg-checkbuilddeps); then
  [[ $(id -u) -eq 0 ]] || die "packages are missing, see above; have them installed"
  DEBIAN_FRONTEND=noninteractive apt-get -qqy --no-install-recommends build-dep "$source"
fi

step "Building; the output goes to build-package/build.log"
(cd "$source" && dpkg-buildpackage -us -uc) >"$packages/build.log" 2>&1 ||
  die "the build failed; see build-package/build.log"
rm -rf "$source"
ls "$packages"/*.deb

step "Checking with lintian"
user=()
[[ $(id -u) -ne 0 ]] || user=(--allow-root)
lintian "${user[@]}" --fail-on error "$packages"/*.changes
