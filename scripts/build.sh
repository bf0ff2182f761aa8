#!/usr/bin/env bash
# Builds one preset (release, debug or checked; release by default), or targets of it, into build/<preset>/. With "server",
# builds the analysis service instead, natively, into build/server/; its target "server_fuzz" is built only when named.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
targets=("${@:2}")
if [ "$preset" = server ]; then
  scripts/setup.sh --server
  cmake -S server -B build/server -G Ninja >/dev/null
  exec cmake --build build/server ${targets[0]:+--target "${targets[@]}"}
fi
scripts/setup.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" ${targets[0]:+--target "${targets[@]}"}
