#!/usr/bin/env bash
# Checks the format of all sources, and the C++ of the control with clang-tidy. Takes files as arguments, or all.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --lint
scripts/format.sh --check
scripts/build.sh release >/dev/null

includes=/usr/lib/gcc/x86_64-w64-mingw32/12-posix/include/c++
options=(-p build/release --quiet
  --extra-arg=--target=x86_64-w64-mingw32
  --extra-arg=-isystem --extra-arg="$includes"
  --extra-arg=-isystem --extra-arg="$includes/x86_64-w64-mingw32"
  --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-ignored-optimization-argument)
files=("$@")
[ ${#files[@]} -gt 0 ] || mapfile -t files < <(git ls-files '*.cpp' ':!tests/*')
printf '%s\0' "${files[@]}" | xargs -0 -n 4 -P "$(nproc)" clang-tidy "${options[@]}"
echo "Lint: ${#files[@]} files are clean."
