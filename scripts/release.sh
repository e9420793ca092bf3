#!/usr/bin/env bash
# Makes the source archive of a release from its tag, in build-release, with a checksum: the same bytes
# from the same tag, whoever makes it. Then it is unpacked, built, and its tests are run.
#   scripts/release.sh TAG [--quick]     --quick: the library and its tests only, without the sanitizers
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

tag=${1:-} how=${2:-}
[[ -n $tag && $# -le 2 && ($how == "" || $how == --quick) ]] || die "usage: scripts/release.sh TAG [--quick]"
commit=$(git -C "$root" rev-parse --verify --quiet "refs/tags/$tag^{commit}") ||
  die "there is no tag $tag; make it with: git tag -a $tag"
end_with_verdict "release $tag${how:+ ($how)}"
need_packages git xz-utils

release=$root/build-release
rm -rf "$release"
mkdir "$release"
text_of() { git -C "$root" show "$commit:$1"; }
version=$(text_of include/kalvista/version.h | version_in)
[[ ${tag#v} == "$version" ]] || die "the tag is $tag, but include/kalvista/version.h says $version there"
text_of packaging/debian/changelog | head -1 | grep -qF "($version-" ||
  die "packaging/debian/changelog does not begin with $version"
text_of CHANGELOG.md | grep "^## $version" | grep -qv unreleased ||
  die "CHANGELOG.md has no entry for $version, or says that it is unreleased"

step "Making the archive of $commit"
name=libkalvista-$version
archive=$name.tar.xz
# git archive takes times and owners from the commit, and one thread compresses in one way.
git -C "$root" archive --format=tar --prefix="$name/" "$commit" | xz -9 --threads=1 >"$release/$archive"
(cd "$release" && sha256sum "$archive" | tee "$archive.sha256")

step "Unpacking it"
(cd "$release" && sha256sum --check --quiet "$archive.sha256" && tar -xJf "$archive")
if [[ $how == --quick ]]; then
  step "Building the library, and running its tests"
  need_packages "${build_packages[@]}" "${tool_packages[@]}" "${test_packages[@]}"
  build=$release/$name/build-release
  cmake -S "$release/$name" -B "$build" -G Ninja -DKALVISTA_BUILD_TESTS=ON -DKALVISTA_BUILD_TOOL=OFF -DKALVISTA_WARNINGS_AS_ERRORS=ON
  cmake --build "$build" --parallel "$(nproc)" --target LibraryTest
  ctest --test-dir "$build" --parallel "$(nproc)" --output-on-failure --no-tests=error -R '^LibraryTest'
else
  "$release/$name/scripts/test.sh"
fi
rm -rf "${release:?}/$name"
step "The release lies in build-release: $archive and its checksum"
