#!/usr/bin/env bash
# Measures the analysis service under load, compared with an empty service with the same library, with few and with many
# stored reports: prints tables. --page also writes docs/generated/load.md; --seconds N and --reports N make it shorter.
# --hostile measures during attacks instead, in a few minutes (--seconds N for each attack, 10 by default, --rest N).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --test  # PostgreSQL
scripts/build.sh server kel_server kel_load kel_empty
exec python3 tools/load "$@"
