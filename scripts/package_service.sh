#!/usr/bin/env bash
# Builds the analysis service and makes its Debian package, build/service-package/kel-server_VERSION_amd64.deb; the same
# sources and tools give the same bytes. Optional arguments: a version other than that of CMakeLists.txt, and a folder.
set -euo pipefail
cd "$(dirname "$0")/.."
umask 022
export LC_ALL=C

scripts/setup.sh --service-package
scripts/build.sh server
version=${1:-$(sed -n 's/^project(Detection VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)}
output=$(realpath -m "${2:-build/service-package}")
if ! [[ $version =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]]; then
  echo "'$version' is not a version of three numbers." >&2
  exit 2
fi
# Files that are newer than this get this time in the package.
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(sed -n 's/^EPOCH = \([0-9]*\).*/\1/p' tools/packaging/stamp.py)}
export SOURCE_DATE_EPOCH

staging=$output/staging root=$output/staging/root
doc=$root/usr/share/doc/kel-server
rm -rf "$staging"
mkdir -p "$root/DEBIAN" "$staging/debian"
put() {  # put MODE SOURCE TARGET
  install -D -m "$1" "$2" "$3"
}
# The files of a folder; in a working copy only tracked ones, as others may be private notes.
files() {
  if [ -e .git ]; then git ls-files "$1"; else find "$1" -type f; fi
}

cmake --install build/server --prefix "$root/usr" --strip >/dev/null
put 644 packaging/server/kel-server.service "$root/lib/systemd/system/kel-server.service"
put 640 packaging/server/kel.conf "$root/etc/kel/kel.conf"
put 644 packaging/server/nginx.conf "$doc/examples/nginx.conf"
while read -r file; do
  put 644 "$file" "$doc/examples/monitoring/${file##*/}"
done < <(files packaging/server/monitoring)
while read -r set; do
  put 644 "$set" "$doc/$set"
done < <(files examples/requirements)
for page in service service-protocol administration value-ids integration deployment scale; do
  put 644 "docs/$page.md" "$doc/$page.md"
done
cat packaging/server/copyright /usr/share/doc/nlohmann-json3-dev/copyright >"$doc/copyright"
gzip -9n >"$doc/changelog.gz" <<EOF
kel-server ($version) stable; urgency=medium

  * See the project's CHANGELOG.md.

 -- Keldane <packages@keldane.example>  $(date -u -R -d "@$SOURCE_DATE_EPOCH")
EOF

for script in postinst prerm postrm; do
  put 755 "packaging/server/$script" "$root/DEBIAN/$script"
done
echo /etc/kel/kel.conf >"$root/DEBIAN/conffiles"
(cd "$root" && find . -path ./DEBIAN -prune -o -type f -printf '%P\0' | sort -z | xargs -0 md5sum) >"$staging/md5sums"
put 644 "$staging/md5sums" "$root/DEBIAN/md5sums"
printf 'Source: kel-server\n\nPackage: kel-server\nArchitecture: amd64\n' >"$staging/debian/control"
depends=$(cd "$staging" && dpkg-shlibdeps -O -e root/usr/bin/kel_server)
size=$(find "$root" -path "$root/DEBIAN" -prune -o -type f -printf '%s\n' | awk '{ sum += int(($1 + 1023) / 1024) } END { print sum }')
sed -e "s/@VERSION@/$version/; s/@SIZE@/$size/; s/@DEPENDS@/${depends#shlibs:Depends=}/" packaging/server/control.in \
  >"$root/DEBIAN/control"

package=$output/kel-server_${version}_amd64.deb
# With several threads the compressed bytes would depend on their number.
dpkg-deb --root-owner-group --threads-max=1 -Zxz --build "$root" "$package"
rm -rf "$staging"
