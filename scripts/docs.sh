#!/usr/bin/env bash
# Makes the reference manual from the public headers and the pages of docs/, in build-docs/html.
# A name, parameter or result without a description is an error.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
end_with_verdict "reference manual"

need_packages doxygen
cd "$root"
version=$(library_version)
step "Making the reference manual of version $version in build-docs/html"
rm -rf build-docs
{
  cat docs/Doxyfile
  echo "PROJECT_NUMBER = $version"
} | doxygen -
# The pages refer to them.
cp -r docs/examples docs/schema build-docs/html
