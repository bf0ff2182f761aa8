#!/usr/bin/env bash
# Measures what the control costs, compared with plain programs that ask WMI for the same: prints one table and writes it to
# build/bench/bench.json. --page also puts it into docs/generated/performance.md; --runs N sets how often
# everything is run; --quick runs everything once, to see that it works.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --bench
scripts/build.sh server
scripts/build.sh release Detection
cmake --preset release -DKEL_BENCH=ON >/dev/null
cmake --build --preset release
source scripts/wine_env.sh
# Everything runs on one processor, including Wine's server: otherwise a call into the server may have to wait for another
# processor to wake up, and the same line of debugger output takes 7 or 65 microseconds.
taskset --cpu-list --pid 0 $$ >/dev/null
remove_prefix
start_wine
wine regsvr32 /s build/release/Detection.dll 2>/dev/null
python3 tools/bench "$@"
