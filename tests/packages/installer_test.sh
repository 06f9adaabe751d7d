#!/usr/bin/env bash
# installer_test.sh INSTALLER ARCHIVE WORD...: the installer, run silently and for a second time over itself, leaves the
# very files of the archive, which work; its end leaves nothing. In front of programs go WORD... (an emulator).
set -euo pipefail
installer=$1 archive=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }
unset VIMBAC_SIMULATOR_SCENARIO

unzip -q "$archive" -d "$work/archive"
place="$work/Program Files"
# Not in quotes behind /D= and _?=, as the installer wants it, with the blank as on a user's command line.
native=Z:${place//\//\\}
for round in first second; do
    "$@" "$installer" /S /D=$native || fail "the installer failed the $round time"
    [ -e "$place/Uninstall.exe" ] || fail "nothing was installed the $round time"
done
diff -r --exclude=Uninstall.exe "$work"/archive/*/ "$place" || fail "the installed files are not those of the archive"
echo "it installs what the archive holds"

"$@" "$place/tools/zelt_host.exe" devices | tee "$work/out"
grep -F "(simulator: two-cameras)" "$work/out" >/dev/null || fail "what was installed does not work"
echo "what it installs works"

# Without the last word it would go on as a copy of its own, and nobody would know when it has ended.
"$@" "$place/Uninstall.exe" /S _?=$native
left=$(find "$place" -type f ! -name Uninstall.exe)
[ -z "$left" ] || fail "this is left: $left"
echo "its end leaves nothing"
echo "3 tests, 4 checks, 0 failed"
