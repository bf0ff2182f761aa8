#!/usr/bin/env bash
# Makes build/kit/Detection-kit.zip, which tries the product on a real Windows: verify.cmd in it does all of it (docs/
# windows-checklist.md). Takes the packages of build/package/ along when they are built, and stops when their DLL is not the
# kit's. From a working copy it takes only tracked files. Signs the DLL and the programs when a
# certificate is given (sign.sh). With --built, takes what the preset has built; with --run, runs the kit under Wine to its
# end, in a prefix of its own, and ends with 0 when nothing is wrong. The next arguments are other folders than build/kit and
# build/package.
set -euo pipefail
cd "$(dirname "$0")/.."

takes_built='' runs=''
while [[ ${1:-} == --* ]]; do
  case $1 in
    --built) takes_built=1 ;;
    --run) runs=1 ;;
    *) echo "Usage: scripts/windows_kit.sh [--built] [--run] [KIT PACKAGES]" >&2 && exit 2 ;;
  esac
  shift
done
if [ -z "$takes_built" ]; then
  scripts/build.sh release Detection kel_program kel_check kel_verify kel_responder kel_tests client_tests verdict_tests \
    program_tests fuzz_tests plain_program
fi
output=${1:-build/kit}
built=${2:-build/package}
stage=$output/Detection-kit
rm -rf "$stage" "$output/Detection-kit.zip"
mkdir -p "$stage/files"

# Copies files and folders, named from a folder, to another; only tracked ones from a working copy, as others may be private.
copy_files() {  # FROM TO NAME...
  local from=$1 to
  to=$(realpath "$2")
  shift 2
  (
    cd "$from"
    if git rev-parse --git-dir >/dev/null 2>&1; then git ls-files -z --error-unmatch -- "$@"; else find "$@" -type f -print0; fi |
      tar --create --null --files-from - | tar --extract --directory "$to"
  )
}

# Signatures of the same file differ by their times.
without_signature() {  # FILE TARGET
  if [ -n "${KEL_SIGN_KEY:-}" ]; then osslsigncode remove-signature -in "$1" -out "$2" >/dev/null; else cp "$1" "$2"; fi
}

release=build/release
cp "$release"/{Detection.dll,kel.exe,check.exe,verify.exe,responder.exe} "$stage/"
scripts/sign.sh "$stage"/*.dll "$stage"/*.exe
cp "$release"/tests/{kel,client,verdict,program,fuzz}_tests.exe "$stage/"
copy_files kit "$stage" verify.cmd comparisons.tsv steps.tsv answers checks
copy_files . "$stage" examples/requirements
# What the tests read, under its own names; the tests' DLL is the one that the kit checks.
copy_files tests "$stage/files" machines verdict edids.txt
cp catalogue/values.tsv "$release/tests/plain_program.exe" "$stage/Detection.dll" "$stage/files/"
mkdir "$stage/files/kit"
cp kit/{comparisons,steps}.tsv "$stage/files/kit/"
packages=("$built"/Detection-*-x64*.msi)
if [ -e "${packages[0]}" ]; then
  work=$(mktemp -d)
  trap 'rm -rf "$work"' EXIT
  without_signature "$stage/Detection.dll" "$work/kit.dll"
  for package in "${packages[@]}"; do
    msiextract --directory "$work/files" "$package" >/dev/null
    without_signature "$(find "$work/files" -name Detection.dll)" "$work/package.dll"
    if ! cmp -s "$work/kit.dll" "$work/package.dll"; then
      echo "$package has another Detection.dll than the kit: build the packages again (scripts/package.sh)." >&2
      exit 1
    fi
    rm -rf "$work/files" "$work/package.dll"
  done
  mkdir "$stage/packages"
  cp "${packages[@]}" "$stage/packages/"
  python3 -m zipfile -e "$built"/Detection-*-x64.zip "$work/archive"
  cp -r "$work/archive/fleet" "$stage/"
else
  echo "There are no packages in $built, so the kit does not try them."
fi
# verify.cmd has the line ends of Windows, which its interpreter needs for labels, and editors like.
sed -i 's/\r*$/\r/' "$stage/verify.cmd"
(cd "$output" && python3 -m zipfile -c Detection-kit.zip Detection-kit/)
rm -rf "$stage"
echo "$output/Detection-kit.zip"

# All unit tests and all steps.
run_kit() (
  source scripts/wine_env.sh
  folder=$(realpath "$output")
  export WINEPREFIX=$folder/wine
  rm -rf "$folder/run" "$folder/result"
  python3 -m zipfile -e "$folder/Detection-kit.zip" "$folder/run"
  remove_prefix
  start_wine
  windows_folder=Z:${folder//\//\\}
  wine cmd /c "$windows_folder\\run\\Detection-kit\\verify.cmd" --output "$windows_folder\\result" </dev/null
)
if [ -n "$runs" ]; then run_kit; fi
