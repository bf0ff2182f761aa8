#!/usr/bin/env bash
# Runs a command on a copy of this machine, for example to try a package. The copy is an overlay that ends with the command.
# The current folder is the machine's own; the network is only the copy's loopback. Afterwards lists the files that are
# left on the copy, except the system's records of packages and users. Without root it needs the package uidmap and a
# range in /etc/subuid. Usage: scripts/in_copy.sh COMMAND [ARGUMENT...]
set -euo pipefail

fail() {
  echo "A copy of the machine needs the right to mount an overlay: root's, in a container with SYS_ADMIN." >&2
  exit 1
}
if [ "${1:-}" != --inside ]; then
  options=(--mount --net --pid --fork --kill-child)
  [ "$(id -u)" -eq 0 ] || options+=(--map-root-user --map-auto)
  unshare "${options[@]}" true || fail
  exec unshare "${options[@]}" "$0" --inside "$@"
fi
shift

place=/media  # covered only for this process and its children
copy=$place/root
prepare() {
  mount -t tmpfs copy $place && mkdir $place/upper $place/work $copy &&
    mount -t overlay copy -o lowerdir=/,upperdir=$place/upper,workdir=$place/work $copy &&
    mount --rbind /dev $copy/dev && mount -t proc proc $copy/proc &&
    ip link set lo up && mkdir -p "$copy$PWD" && mount --rbind "$PWD" "$copy$PWD"
}
prepare || fail
code=0
path=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin
chroot $copy env --ignore-environment --chdir="$PWD" LC_ALL=C PATH=$path "$@" || code=$?
# Folders are matched only by name, as an overlay also has those that merely contain a change.
find $place/upper -mindepth 1 \( -type f -o -type l -o -type d -name '*kel*' \) -printf '/%P\n' | sort |
  grep -Ev '^/((var/lib/dpkg|var/log|var/cache|run)/|etc/(\.pwd\.lock|(passwd|g?shadow|group|sub[ug]id)-?)$)' || true
exit "$code"
