#!/usr/bin/env bash
# Makes build/kit/Detection-kit.zip, which tries the product on a real Windows: verify.cmd in it does all of it (docs/
# windows-checklist.md). Takes the packages of build/package/ along when they are built. Signs the DLL and the programs when a
# certificate is given (sign.sh). With --built, takes what the preset has built; the next arguments are other folders than
# build/kit and build/package.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" = --built ]; then
  shift
else
  scripts/build.sh release Detection kel_program kel_check kel_verify kel_responder kel_tests client_tests verdict_tests \
    program_tests plain_program
fi
output=${1:-build/kit}
built=${2:-build/package}
stage=$output/Detection-kit
rm -rf "$stage" "$output/Detection-kit.zip"
mkdir -p "$stage/files"

release=build/release
cp "$release"/{Detection.dll,kel.exe,check.exe,verify.exe,responder.exe} "$stage/"
scripts/sign.sh "$stage"/*.dll "$stage"/*.exe
cp "$release"/tests/{kel,client,verdict,program}_tests.exe "$stage/"
cp -r kit/{verify.cmd,comparisons.tsv,steps.tsv,answers,checks} "$stage/"
mkdir "$stage/examples"
cp -r examples/requirements "$stage/examples/"
# What the tests read, under its own names; the tests' DLL is the one that the kit checks.
cp -r tests/machines tests/verdict tests/edids.txt catalogue/values.tsv "$release/tests/plain_program.exe" \
  "$stage/Detection.dll" "$stage/files/"
mkdir "$stage/files/kit"
cp kit/{comparisons,steps}.tsv "$stage/files/kit/"
packages=("$built"/Detection-*-x64*.msi)
if [ -e "${packages[0]}" ]; then
  mkdir "$stage/packages"
  cp "${packages[@]}" "$stage/packages/"
  python3 -m zipfile -e "$built"/Detection-*-x64.zip "$output/archive"
  cp -r "$output/archive/fleet" "$stage/"
  rm -rf "$output/archive"
fi
# verify.cmd has the line ends of Windows, which its interpreter needs for labels, and editors like.
sed -i 's/\r*$/\r/' "$stage/verify.cmd"
(cd "$output" && python3 -m zipfile -c Detection-kit.zip Detection-kit/)
rm -rf "$stage"
echo "$output/Detection-kit.zip"
