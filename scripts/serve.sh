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

port=${KEL_PORT:-8080} admin_port=${KEL_ADMIN_PORT:-8081} option=
for word in "$@"; do
  case $option in
    --port) port=$word ;;
    --admin-port) admin_port=$word ;;
  esac
  option=$word
done
if [[ $port != 0 && $admin_port != 0 ]]; then  # 0: any free port, which the log names
  cat <<END
The service answers at http://127.0.0.1:$port/ until Ctrl+C. Its administration is http://127.0.0.1:$admin_port/.
For a first account, in another shell here (type a password of at least 12 characters, a line):
  KEL_DATABASE=$KEL_DATABASE build/server/kel_server user add editor NAME
Then log in there; docs/service.md has requests to try, and scripts/demo.sh runs the control against a service.
END
fi
exec build/server/kel_server serve "$@"
