#!/usr/bin/env bash
# Builds one preset (release, debug or checked; release by default). Output in build/<preset>/.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
scripts/setup.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
