#!/usr/bin/env bash
# Builds the DLL, kel.exe and check.exe and makes the packages in build/package/: two installers (for all users and for the current one) and
# an archive; with --cab, a cabinet for a page's codebase, too. Signs them when a certificate is given (sign.sh).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --package
scripts/build.sh release Detection kel_program kel_check
rm -rf build/package
python3 tools/packaging "$@"
