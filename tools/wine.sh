#!/usr/bin/env bash
# wine.sh PROGRAM ARGUMENT...: runs a program for Windows by Wine, as the tests of the Windows build are run. The
# prefix is build/wine, made at first use; its server ends by itself a minute after the last program.
set -euo pipefail
build=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")/build
export WINEPREFIX=$build/wine
# Words of Wine's own on the error stream would be taken for the program's; and nobody answers a window.
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe=" DISPLAY=

make_prefix() {
    [ -e "$WINEPREFIX/made" ] && return
    rm -rf "$WINEPREFIX"
    wineboot --init
    # A program that crashes shall end: without a question, and no debugger of that name exists.
    local key='HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug'
    wine reg add "$key" /v Auto /d 1 /f
    wine reg add "$key" /v Debugger /d none /f
    touch "$WINEPREFIX/made"
}
# Away from the streams of the program, whose reader would wait for the server's end.
start_server() { if wineserver -p60; then wineboot; fi; }

command -v wine >/dev/null || { echo "Wine is missing; install the packages wine and wine64." >&2; exit 127; }
mkdir -p "$build"
exec 9>"$build/wine.lock"
flock 9
{ make_prefix && start_server; } </dev/null >>"$build/wine.log" 2>&1 9>&-
exec 9>&-
exec wine "$@"
