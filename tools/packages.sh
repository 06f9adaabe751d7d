# Sourced by ./run and ./test: installs the Debian packages that are missing, quietly, and stops with one
# sentence when that is not possible.

build_packages=(g++ cmake ninja-build libboost-log1.81-dev libpng-dev libpugixml-dev libcli11-dev
    nlohmann-json3-dev libgtest-dev libgmock-dev librapidcheck-dev)
bench_packages=(libbenchmark-dev)
check_packages=(clang-14 clang-tidy-14 clang-format-14 libclang-rt-14-dev doxygen python3 unzip)
coverage_packages=(gcovr)
windows_packages=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev googletest dpkg-dev)
# What runs and packs it; apart, since what the libraries are built by is in the name of their folder.
windows_run_packages=(wine wine64 nsis)

is_installed() { dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null | grep -qx installed; }

# ensure_packages LOGFILE PACKAGE...
ensure_packages() {
    local log=$1 package missing=() as_root=()
    shift
    for package in "$@"; do is_installed "$package" || missing+=("$package"); done
    [ ${#missing[@]} -eq 0 ] && return 0
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "Missing packages: ${missing[*]}. Install them as root with apt-get install, then start again." >&2
            return 1
        fi
        as_root=(sudo)
    fi
    echo "installing: ${missing[*]}"
    # --no-remove: another Boost's headers must not vanish from the machine without a word.
    if ! { "${as_root[@]}" apt-get update && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-remove --no-install-recommends "${missing[@]}"; } >>"$log" 2>&1; then
        tail -n 5 "$log" >&2
        echo "Could not install ${missing[*]}; if another version of Boost's -dev packages is in the way," \
            "remove it first (apt-get remove 'libboost*1.74-dev'). Details: $log" >&2
        return 1
    fi
}
