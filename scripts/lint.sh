#!/usr/bin/env bash
# Checks the format of all sources, their includes against the list of floors, the C++ (clang-tidy), the shell scripts
# (shellcheck) and the Python (flake8). Takes C++ files for clang-tidy as arguments, or all; with --quick, without
# clang-tidy, which takes as long as building and testing together.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --lint
scripts/format.sh --check
python3 scripts/check_includes.py
git ls-files -z '*.sh' .ci/run | xargs -0 shellcheck --external-sources
git ls-files -z '*.py' | xargs -0 flake8
[ "${1:-}" != --quick ] || exit 0
scripts/build.sh release kel_control  # the headers that the build writes

# The system folders of the cross-compiler, as it tells them; clang brings its own builtin ones.
options=(-p build/release --quiet --extra-arg=--target=x86_64-w64-mingw32
  --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-ignored-optimization-argument)
while read -r folder; do
  options+=(--extra-arg=-isystem --extra-arg="$folder")
done < <(x86_64-w64-mingw32-g++-posix -E -x c++ -v - </dev/null 2>&1 >/dev/null |
  sed -n '/^#include <...>/,/^End of search/s/^ //p' | grep '/c++')
files=("$@")
[ ${#files[@]} -gt 0 ] || mapfile -t files < <(git ls-files '*.cpp' ':!tests/end_to_end/program.cpp')
control=() server=()
for file in "${files[@]}"; do
  # Clang 14 finds no coroutines in GCC's library, and so none of Asio's.
  case $file in server/http/Connection.cpp | server/http/Listener.cpp | server/http/Server.cpp) continue ;; esac
  case $file in server/*) server+=("$file") ;; *) control+=("$file") ;; esac
done
if [ ${#server[@]} -gt 0 ]; then
  scripts/build.sh server
  printf '%s\0' "${server[@]}" | xargs -0 -n 4 -P "$(nproc)" clang-tidy -p build/server --quiet \
    --extra-arg=-Wno-unknown-warning-option 2>/dev/null
fi
if [ ${#control[@]} -gt 0 ]; then
  printf '%s\0' "${control[@]}" | xargs -0 -n 4 -P "$(nproc)" clang-tidy "${options[@]}" 2>/dev/null
fi
echo "Lint: $((${#control[@]} + ${#server[@]})) files are clean."
