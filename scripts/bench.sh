#!/usr/bin/env bash
# Measures what the control costs, beside plain programs that ask WMI for the same: prints one table and writes it to
# build/bench/bench.json. --page also puts it into docs/performance.md; --runs N sets how often everything is run.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --bench
scripts/build.sh release
source scripts/wine_env.sh
start_wine
wine regsvr32 /s build/release/Detection.dll 2>/dev/null
python3 tools/bench "$@"
