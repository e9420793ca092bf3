#!/usr/bin/env bash
# Makes the reference manual from the public headers and the pages of docs/, in build-docs/html.
# A name, parameter or result without a description is an error.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
end_with_verdict "reference manual"

need_packages doxygen
version=$(library_version)
step "Making the reference manual of version $version in build-docs/html"
# Doxygen takes a page's path for its name, which must not hold a blank.
work=$(mktemp -d /tmp/kalvista-docs.XXXXXX)
before_verdict() { rm -rf "$work"; }
cp -r "$root"/{include,docs,examples} "$work"
{
  cat "$root/docs/Doxyfile"
  echo "PROJECT_NUMBER = $version"
} | (cd "$work" && doxygen -)
rm -rf "$root/build-docs"
mv "$work/build-docs" "$root"
# The pages refer to them.
cp -r "$root"/docs/{examples,schema} "$root/build-docs/html"
