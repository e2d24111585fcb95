# Shared by the scripts: where things are, and Wine's environment. Sourced, not run.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="$root/build/mingw"
export WINEPREFIX="${WINEPREFIX:-$root/build/wine}"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="winedbg.exe=d;mscoree=d;mshtml=d"
export LC_ALL=C.UTF-8
export TZ=UTC
unset DISPLAY WAYLAND_DISPLAY

# Runs a command whose output only matters when it fails.
quietly() {
    local log
    log=$(mktemp)
    "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        rm -f "$log"
        return 1
    }
    rm -f "$log"
}

configure_build() {
    [ -f "$build/build.ninja" ] || quietly cmake -S "$root" --preset mingw
}

# Keeps Wine's server for some seconds after the last program, which spares the next one the start
# of Wine's services. They inherit the output of whatever starts them: here, nothing.
linger_wine() {
    wineserver -p"$1" >/dev/null 2>&1 </dev/null || true
    "$root/scripts/wine" cmd /c exit >/dev/null 2>&1 </dev/null || true
}

# Keeps one Wine program running until the script ends, and with it Wine's services and desktop,
# which the second program brings up: a test that had to start them would hand them its output, and
# ctest would wait for them to close it.
hold_wine() {
    setsid bash -c "sleep 3600 | '$root/scripts/wine' cmd.exe" >/dev/null 2>&1 </dev/null &
    local holder=$!
    # shellcheck disable=SC2064
    trap "kill -- -$holder 2>/dev/null || true" EXIT
    "$root/scripts/wine" wmic os get version >/dev/null 2>&1 </dev/null || true
}
