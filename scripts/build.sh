#!/usr/bin/env bash
# Builds one preset (release, debug or checked; release by default), or targets of it. Output in build/<preset>/.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
targets=("${@:2}")
scripts/setup.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" ${targets[0]:+--target "${targets[@]}"}
