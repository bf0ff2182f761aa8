# shellcheck shell=bash
# Sourced by the scripts that run Windows programs: one Wine prefix in the build tree, one server for the whole run.
export WINEPREFIX="$PWD/build/wine"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
# Wine's Direct3D 12 ends a program when the display has no Vulkan driver, so there is no display without KEL_DISPLAY.
[ -n "${KEL_DISPLAY:-}" ] || unset DISPLAY
# Some containers do not permit setarch; a few of Wine's processes then end at their start, and the tests start them again.
if [ -z "${KEL_WINE:-}" ] && setarch -R true 2>/dev/null; then
  KEL_WINE=$(command -v wine || true)
  PATH=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/wine:$PATH
  export KEL_WINE PATH
fi

# Ends programs that an interrupted run has left in the prefix, and removes the prefix.
remove_prefix() {
  wineserver -k 2>/dev/null || true  # there may be none
  rm -rf "$WINEPREFIX"
}

# Starts the server, after creating the prefix if there is no complete one; the server ends with the script.
start_wine() {
  [ -e "$WINEPREFIX/complete" ] || remove_prefix
  mkdir -p "$WINEPREFIX"
  wineserver -p 2>/dev/null || true  # it may be running already
  trap 'wineserver -k || true' EXIT
  # The system's own processes start with the first program and keep its output open; give them none.
  wineboot </dev/null >/dev/null 2>&1
  touch "$WINEPREFIX/complete"
}
