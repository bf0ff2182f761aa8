#!/usr/bin/env bash
# Runs the tests that take minutes, in the checked preset. Continues after a step that fails, and fails at the end.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh checked fuzz_tests client_tests
source scripts/wine_env.sh
remove_prefix
start_wine
failed=0

# Names a step and runs it.
step() {
  echo "=== $1"
  shift
  "$@" || failed=1
}

step "Hostile input" env KEL_FUZZ_COUNT="${KEL_FUZZ_COUNT:-200000}" wine build/checked/tests/fuzz_tests.exe

step "A fault at every edge" env KEL_FAULT_STRIDE="${KEL_FAULT_STRIDE:-1}" \
  KEL_CLIENT_TESTS=build/checked/tests/client_tests.exe python3 tests/client/fault_sweep.py

exit "$failed"
