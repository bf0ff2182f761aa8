#!/usr/bin/env bash
# Builds the release preset and the analysis service, and runs all tests; with --checked first, the checked preset as
# well. Extra arguments go to ctest.
set -euo pipefail
cd "$(dirname "$0")/.."

presets=(release)
if [ "${1:-}" = --checked ]; then
  presets+=(checked)
  shift
fi
scripts/setup.sh --test
scripts/build.sh server all server_tests server_fuzz
for preset in "${presets[@]}"; do
  scripts/build.sh "$preset"
done

source scripts/wine_env.sh
remove_prefix
start_wine
failed=0
for preset in "${presets[@]}"; do
  ctest --preset "$preset" --parallel "$(nproc)" "$@" || failed=1
done
exit "$failed"
