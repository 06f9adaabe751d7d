#!/usr/bin/env bash
# vimbac_sdk_test.sh SOURCES LIBRARY PRESET-ARGUMENT...: the product is configured against an SDK of the vendor's layout,
# made up around LIBRARY, and against none. The arguments choose compiler and system of the build.
set -euo pipefail
sources=$1 library=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAILED: $*"; exit 1; }
configure() { env -u VIMBA_HOME VIMBA_HOME="$1" cmake -S "$sources" -B "$2" -G Ninja -DZELT_TESTS=OFF -DZELT_VIMBAC_SDK=ON "${@:3}"; }

case $library in
    *.lib) file=VimbaC/Lib/Win64/VimbaC.lib ;;
    *) file=VimbaC/DynamicLib/x86_64bit/libVimbaC.so ;;
esac
sdk="$work/an SDK"
mkdir -p "$sdk/VimbaC/Include" "$sdk/$(dirname $file)"
touch "$sdk/VimbaC/Include/VimbaC.h"
cp "$library" "$sdk/$file"

configure "$sdk" "$work/found" "$@" >"$work/log" 2>&1 || { cat "$work/log"; fail "the SDK was not found"; }
grep -F "an SDK/$file" "$work/found/build.ninja" >/dev/null ||
    fail "the plug-in does not link the SDK's library"
echo "the SDK is found and linked"

if configure "$work" "$work/missed" "$@" >"$work/log" 2>&1; then fail "an SDK was found where there is none"; fi
for words in "VIMBAC_ROOT" "leave ZELT_VIMBAC_SDK off"; do
    tr -s ' \n' '  ' <"$work/log" | grep -F "$words" >/dev/null || { cat "$work/log"; fail "no word of \"$words\""; }
done
echo "a missing SDK is named with the way out"
echo "2 tests, 3 checks, 0 failed"
