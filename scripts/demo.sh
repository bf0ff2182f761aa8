#!/usr/bin/env bash
# Builds the control and the analysis service, registers the control in a Wine prefix, and checks this machine against
# the demo's requirements, by a script and by kel.exe; with --display under a virtual display, so that there is a
# graphics adapter to report.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" = --display ]; then
  scripts/setup.sh --display
  exec env KEL_DISPLAY=1 xvfb-run -a -s "-screen 0 1920x1080x24" scripts/demo.sh
fi

scripts/build.sh release Detection kel_program
scripts/build.sh server
source scripts/wine_env.sh
start_wine
if ! wine regsvr32 /s build/release/Detection.dll 2>/dev/null; then
  echo "The control could not be registered." >&2
  exit 1
fi

output=$PWD/build/demo
mkdir -p "$output"
rm -f "$output/port" "$output/report.xml" "$output/analysis.html"
KEL_DATABASE=$output/kel.db scripts/serve.sh --port 0 --admin-port 0 --port-file "$output/port" \
  >"$output/service.log" 2>&1 &
service=$!
trap 'kill $service 2>/dev/null || true; wineserver -k || true' EXIT
for _ in $(seq 100); do
  [ -s "$output/port" ] && break
  sleep 0.1
done

echo
http_proxy="http://127.0.0.1:$(cat "$output/port")" \
  wine cscript //nologo "Z:${PWD//\//\\}\\examples\\check.js" demo "Z:${output//\//\\}" 2>/dev/null || true
echo
# The same without the service, and facts of one area.
requirements="Z:${PWD//\//\\}\\examples\\requirements\\demo.json"
for arguments in "facts memory" "check --requirements $requirements"; do
  echo "> kel $arguments"
  # shellcheck disable=SC2086  # words of a command line, none with a blank
  wine build/release/kel.exe $arguments 2>/dev/null || true
  echo
done
# A machine that fails a requirement shows that the control works just as well; only a missing answer is an error. The
# script host's exit code does not distinguish the two: a script error ends it with 0.
for file in report.xml analysis.html; do
  if [ ! -s "$output/$file" ]; then
    echo "There is no $file. See the service's log: $output/service.log" >&2
    exit 1
  fi
done
echo "The report:  $output/report.xml"
echo "The verdict: $output/analysis.html"
