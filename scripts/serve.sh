#!/usr/bin/env bash
# Builds the analysis service and runs it on this machine with the requirements of examples/, or of the folder
# KEL_REQUIREMENTS: on loopback, port 8080, the operator's port 8081, and the database build/service/kel.db. Arguments are
# settings (--port 9000); docs/service.md has them all.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh server
export KEL_DATABASE="${KEL_DATABASE:-$PWD/build/service/kel.db}"
mkdir -p "$(dirname "$KEL_DATABASE")"
build/server/kel_server migrate
build/server/kel_server import "${KEL_REQUIREMENTS:-examples/requirements}"
exec build/server/kel_server serve "$@"
