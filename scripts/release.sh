#!/usr/bin/env bash
# Makes a release: checks that the version is new everywhere, builds, tests, packages, tries the packages with the kit, and
# prints what to tag.
# Usage: scripts/release.sh VERSION, three numbers.
set -euo pipefail
cd "$(dirname "$0")/.."

version=${1:-}
if ! [[ $version =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]]; then
  echo "Usage: scripts/release.sh VERSION, three numbers" >&2
  exit 2
fi
fail() {
  echo "$1" >&2
  exit 1
}
grep -q "^## $version\b" CHANGELOG.md || fail "CHANGELOG.md has no heading for $version."
grep -q "^project(Detection VERSION $version " CMakeLists.txt || fail "CMakeLists.txt builds another version than $version."
git rev-parse -q --verify "refs/tags/v$version" >/dev/null && fail "The tag v$version is there already."
[ -z "$(git status --porcelain)" ] || fail "There are changes that are not committed."

scripts/lint.sh
KEL_WHOLE_BUILD=1 scripts/test.sh --checked
scripts/test.sh --clang
scripts/package.sh
scripts/windows_kit.sh --run
scripts/package_service.sh
# One folder holds all that is published, and its sums.
deb=kel-server_${version}_amd64.deb
cp "build/service-package/$deb" build/package/
(cd build/package && sha256sum "$deb" >>SHA256SUMS && sha256sum --check SHA256SUMS && cat SHA256SUMS)
echo "To publish: git tag -a v$version -m 'Detection $version' $(git rev-parse HEAD), and the files in build/package/."
