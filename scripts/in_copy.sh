#!/usr/bin/env bash
# Runs a command on a copy of this machine, for example to try a package. The copy is an overlay that ends with the command.
# The current folder is the machine's own; the network is only the copy's loopback. Afterwards lists the files that are
# left on the copy, except the system's records of packages and users. Without root it needs the package uidmap and a
# range in /etc/subuid. Packages are installed before the command, with the machine's network.
# Usage: scripts/in_copy.sh [--install PACKAGE[:ARCHITECTURE]]... COMMAND [ARGUMENT...]
set -euo pipefail

fail() {
  echo "A copy of the machine needs the right to mount an overlay: root's, in a container with SYS_ADMIN." >&2
  exit 1
}
if [ "${1:-}" != --inside ]; then
  options=(--mount --pid --fork --kill-child)
  [ "${1:-}" = --install ] || options+=(--net)
  [ "$(id -u)" -eq 0 ] || options+=(--map-root-user --map-auto)
  unshare "${options[@]}" true || fail
  exec unshare "${options[@]}" "$0" --inside "$@"
fi
shift
packages=()
while [ "${1:-}" = --install ]; do
  packages+=("$2")
  shift 2
done

place=/media  # covered only for this process and its children
copy=$place/root
prepare() {
  mount -t tmpfs copy $place && mkdir $place/upper $place/work $copy &&
    mount -t overlay copy -o lowerdir=/,upperdir=$place/upper,workdir=$place/work $copy &&
    mount --rbind /dev $copy/dev && mount -t proc proc $copy/proc &&
    mkdir -p "$copy$PWD" && mount --rbind "$PWD" "$copy$PWD"
}
prepare || fail
path=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin
in_root() { chroot $copy env --ignore-environment --chdir="$PWD" LC_ALL=C PATH=$path "$@"; }
changed=()
if [ ${#packages[@]} -gt 0 ]; then
  get=(apt-get -qq -o APT::Sandbox::User=root -o Dpkg::Use-Pty=0)
  {
    for package in "${packages[@]}"; do
      [ "${package#*:}" = "$package" ] || in_root dpkg --add-architecture "${package#*:}"
    done
    in_root "${get[@]}" update || echo "Some lists of packages are those of the machine." >&2
    in_root env DEBIAN_FRONTEND=noninteractive "${get[@]}" install --yes --no-install-recommends "${packages[@]}"
  } >&2
  touch $place/installed
  changed=(-cnewer "$place/installed")
fi
code=0
# shellcheck disable=SC2016  # the inner shell expands it
enter=(sh -c 'ip link set lo up && exec "$0" "$@"')
[ ${#packages[@]} -eq 0 ] || enter=(unshare --net "${enter[@]}")
"${enter[@]}" chroot $copy env --ignore-environment --chdir="$PWD" LC_ALL=C PATH=$path "$@" || code=$?
# Folders are matched only by name, as an overlay also has those that merely contain a change.
find $place/upper -mindepth 1 "${changed[@]}" \( -type f -o -type l -o -type d -name '*kel*' \) -printf '/%P\n' | sort |
  grep -Ev '^/((var/lib/dpkg|var/log|var/cache|run)/|etc/(\.pwd\.lock|(passwd|g?shadow|group|sub[ug]id)-?)$)' || true
exit "$code"
