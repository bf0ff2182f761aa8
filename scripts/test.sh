#!/usr/bin/env bash
# Builds the release and checked presets and runs all tests of both. Extra arguments go to ctest.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --test
for preset in release checked; do
  scripts/build.sh "$preset"
done

source scripts/wine_env.sh
start_wine
failed=0
for preset in release checked; do
  ctest --preset "$preset" --parallel "$(nproc)" "$@" || failed=1
done
exit "$failed"
