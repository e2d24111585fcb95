# Shared by the scripts: where things are, and Wine's environment. Sourced, not run.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="$root/build/mingw"
export WINEPREFIX="${WINEPREFIX:-$root/build/wine}"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="winedbg.exe=d;mscoree=d;mshtml=d"
export LC_ALL=C.UTF-8
export TZ=UTC
unset DISPLAY WAYLAND_DISPLAY
