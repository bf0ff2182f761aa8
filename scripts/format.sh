#!/usr/bin/env bash
# Formats all C++ sources in place; with --check, only checks whether they are formatted.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh --lint
options=(-i)
[ "${1:-}" = --check ] && options=(--dry-run --Werror)
files=$(git ls-files --cached --others --exclude-standard '*.cpp' '*.h')
if ! xargs clang-format "${options[@]}" <<<"$files"; then
  echo "Not formatted. Repair it with: scripts/format.sh" >&2
  exit 1
fi
