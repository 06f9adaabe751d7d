#!/usr/bin/env bash
# Builds what the Windows build needs and the cross compiler does not bring (Boost, pugixml, libpng,
# GoogleTest; header-only libraries are copied) into a folder outside the source tree, once per recipe.
# The folder: $ZELT_WINDOWS_PREFIX, else zelt-windows-<hash> in the user's cache. Its name is left in
# build/windows-prefix.txt. The packages `windows_packages` of tools/packages.sh must be installed.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/packages.sh

sources=(boost1.81 pugixml libpng1.6)
copied=(libcli11-dev nlohmann-json3-dev)
triple=x86_64-w64-mingw32
toolchain=$PWD/cmake/toolchain-windows-mingw.cmake

fail() { echo "$*" >&2; exit 1; }

versions=$(dpkg-query -W -f '${Package} ${db:Status-Status} ${Version}\n' \
    "${windows_packages[@]}" mingw-w64-x86-64-dev "${copied[@]}" 2>/dev/null || true)
for package in "${windows_packages[@]}" "${copied[@]}"; do
    grep -q "^$package installed " <<<"$versions" || fail "The package $package is missing; install it with" \
        "apt-get install --no-install-recommends ${windows_packages[*]} ${copied[*]}, then start again."
done
recipe=$({ cat tools/windows-dependencies.sh "$toolchain"; echo "$versions"; } | sha256sum | cut -c 1-12)
prefix=${ZELT_WINDOWS_PREFIX:-${XDG_CACHE_HOME:-${HOME:?is not set; name a folder in ZELT_WINDOWS_PREFIX}/.cache}/zelt-windows-$recipe}
case $prefix in /*) ;; *) prefix=$PWD/$prefix ;; esac

# A build folder that was configured with another prefix would keep what it found there.
publish() {
    mkdir -p build
    [ "$(cat build/windows-prefix.txt 2>/dev/null)" = "$prefix" ] && return 0
    rm -f build/windows-mingw/CMakeCache.txt
    echo "$prefix" >build/windows-prefix.txt
}

is_made() {
    [ -e "$prefix" ] || return 1
    [ "$(cat "$prefix/recipe" 2>/dev/null)" = "$recipe" ] || fail "$prefix exists, but this recipe did not" \
        "make it; remove it or name another folder in ZELT_WINDOWS_PREFIX, then start again."
}

if is_made; then publish; exit 0; fi
mkdir -p "$(dirname "$prefix")" 2>/dev/null || fail "Cannot write to $(dirname "$prefix"); name another folder in" \
    "ZELT_WINDOWS_PREFIX, then start again."
exec 9>"$prefix.lock"
flock 9
if is_made; then publish; exit 0; fi

# Everything happens under another name, so that the folder is whole whenever it is there.
work=$prefix.part
log=$prefix.log
made=$work/prefix
rm -rf "$work"
mkdir -p "$made"
trap 'rm -rf "$work"' EXIT
trap 'exit 130' INT TERM
: >"$log"

# step NAME REMEDY COMMAND...: runs it into the log; ends with one sentence when it fails.
step() {
    local name=$1 remedy=$2 start=$SECONDS result=0
    shift 2
    # Not as a condition, where the shell would go on behind a failed line.
    set +e
    (set -e; "$@") >>"$log" 2>&1
    result=$?
    set -e
    if [ $result -ne 0 ]; then
        tail -n 15 "$log" >&2
        fail "The libraries for Windows failed at \"$name\"; $remedy. Details: $log"
    fi
    printf '%-34s %5d s\n' "windows: $name" $((SECONDS - start))
}

apt_options=(
    -o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$work/apt/sources"
    -o "Dir::State::lists=$work/apt/lists" -o "Dir::Cache=$work/apt/cache"
    -o APT::Sandbox::User=root -o Acquire::Languages=none -o Acquire::Retries=2)

# The machine's own package sources, asked for source packages instead; its configuration stays as it is.
private_source_list() {
    local LIST PARTS file name
    mkdir -p "$work"/apt/{sources,lists/partial,cache/archives/partial}
    eval "$(apt-config shell LIST Dir::Etc::sourcelist/f PARTS Dir::Etc::sourceparts/d)"
    for file in "$LIST" "$PARTS"*.list "$PARTS"*.sources; do
        [ -f "$file" ] || continue
        name=$work/apt/sources/${file##*/}
        case $file in
            *.sources) sed -E 's/^[Tt]ypes:.*/Types: deb-src/' "$file" >"$name" ;;
            *) sed -nE '/cdrom:/d; s/^[[:space:]]*deb(-src)?([[:space:]])/deb-src\2/p' "$file" | sort -u >"$name" ;;
        esac
    done
    # A foreign source that is not reachable does no harm: what counts is what can be fetched below.
    apt-get "${apt_options[@]}" update || true
}

# The newest version may be listed and yet not be there (any more).
fetch() {
    local source=$1 version versions
    cd "$work"
    versions=$(apt-cache "${apt_options[@]}" madison "$source" | awk -F '[ |]+' '/Sources/ {print $3}' | sort -urV)
    for version in $versions; do
        echo "fetching $source $version"
        apt-get "${apt_options[@]}" source --download-only "$source=$version" || continue
        dpkg-source --no-check -x "${source}_${version#*:}.dsc" "$source"
        echo "$source $version" >>"$made/versions"
        return 0
    done
    echo "no version of the source package $source can be fetched"
    return 1
}

# build SOURCEDIR CMAKE-OPTION...
build() {
    local from=$1 into=$work/build-${1##*/}
    shift
    # No binary tells where it was built.
    local flags="-w -ffile-prefix-map=$work/= -ffile-prefix-map=/usr/src/="
    CXXFLAGS=$flags CFLAGS=$flags cmake -S "$from" -B "$into" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
        -DZELT_WINDOWS_PREFIX="$made" -DCMAKE_INSTALL_PREFIX="$made" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_FLAGS_RELEASE="-O2 -DNDEBUG" \
        -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" "$@"
    cmake --build "$into" -j "$(nproc)"
    cmake --install "$into"
}

build_boost() {
    build "$work/boost1.81" -DBUILD_SHARED_LIBS=ON -DBOOST_INSTALL_LAYOUT=system \
        -DBOOST_INCLUDE_LIBRARIES="log;algorithm;bimap;lexical_cast;multi_index;rational;uuid;variant" \
        -DBOOST_LOG_WITHOUT_EVENT_LOG=ON -DBOOST_LOG_WITHOUT_SETTINGS_PARSERS=ON
    # Boost's CMake build leaves out the package of that name, and its packages of the single libraries read
    # one another for half a minute.
    local to
    to=$(echo "$made"/lib/cmake/boost_log-*)
    to=$made/lib/cmake/Boost-${to##*-}
    mkdir "$to"
    cp "$made"/lib/cmake/boost_log-*/boost_log-config-version.cmake "$to/BoostConfigVersion.cmake"
    cat >"$to/BoostConfig.cmake" <<'END'
get_filename_component(prefix "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
if(NOT TARGET Boost::headers)
    add_library(Boost::headers INTERFACE IMPORTED)
    set_target_properties(Boost::headers PROPERTIES
        INTERFACE_INCLUDE_DIRECTORIES "${prefix}/include"
        INTERFACE_COMPILE_DEFINITIONS "BOOST_ALL_NO_LIB;BOOST_ALL_DYN_LINK;BOOST_THREAD_USE_DLL")
    foreach(name filesystem thread log)
        add_library(Boost::${name} SHARED IMPORTED)
        set_target_properties(Boost::${name} PROPERTIES
            IMPORTED_IMPLIB "${prefix}/lib/libboost_${name}.dll.a"
            IMPORTED_LOCATION "${prefix}/bin/libboost_${name}.dll"
            INTERFACE_LINK_LIBRARIES Boost::headers)
    endforeach()
    set_property(TARGET Boost::log APPEND PROPERTY INTERFACE_LINK_LIBRARIES Boost::thread Boost::filesystem)
endif()
foreach(component IN LISTS Boost_FIND_COMPONENTS)
    if(TARGET Boost::${component})
        set(Boost_${component}_FOUND TRUE)
    elseif(Boost_FIND_REQUIRED_${component})
        set(Boost_FOUND FALSE)
        set(Boost_NOT_FOUND_MESSAGE "tools/windows-dependencies.sh offers no Boost::${component}")
    endif()
endforeach()
END
}

# The compiler's static zlib, so that it is found beside libpng, before the shared one.
copy_zlib() { cp /usr/$triple/include/{zlib,zconf}.h "$made/include/" && cp /usr/$triple/lib/libz.a "$made/lib/"; }

copy_header_only() {
    local file
    dpkg -L "${copied[@]}" | grep -E '^/usr/(include|share/cmake)/' | while read -r file; do
        if [ -f "$file" ]; then install -D -m 644 "$file" "$made/${file#/usr/}"; fi
    done
}

# What is handed on with the packages: the terms of everything that becomes part of them.
collect_licenses() {
    local source package
    mkdir "$made/licenses"
    for source in "${sources[@]}"; do cp "$work/$source/debian/copyright" "$made/licenses/$source.txt"; done
    for package in "${copied[@]}" gcc-mingw-w64-base mingw-w64-common libz-mingw-w64-dev; do
        cp -L "/usr/share/doc/$package/copyright" "$made/licenses/$package.txt"
    done
}

# What must lie beside the programs: Boost.Log and the compiler's shared runtime with all they need of ours.
collect_runtime() {
    local wanted=(libboost_log.dll libstdc++-6.dll libgcc_s_seh-1.dll) name from
    mkdir "$made/runtime"
    while [ ${#wanted[@]} -gt 0 ]; do
        name=${wanted[0]}
        wanted=("${wanted[@]:1}")
        if [ -e "$made/runtime/$name" ]; then continue; fi
        from=$made/bin/$name
        [ -e "$from" ] || from=$($triple-g++-posix -print-file-name="$name")
        [ -e "$from" ] || continue  # Windows has it
        $triple-strip --strip-debug -o "$made/runtime/$name" "$from"
        wanted+=($($triple-objdump -p "$from" | awk '/DLL Name:/ {print $3}'))
    done
    ls "$made"/runtime/libwinpthread-1.dll
}

report="look for the first error in the log"
step "source lists" "check that $work can be written to" private_source_list
for source in "${sources[@]}"; do
    step "fetch $source" "check the network, and that the machine's apt sources name a Debian mirror" fetch "$source"
done
step "Boost" "$report" build_boost
step "pugixml" "$report" build "$work/pugixml" -DBUILD_SHARED_LIBS=OFF
step "zlib" "reinstall libz-mingw-w64-dev" copy_zlib
step "libpng" "$report" build "$work/libpng1.6" -DPNG_SHARED=OFF -DPNG_EXECUTABLES=OFF -DPNG_TESTS=OFF
step "GoogleTest" "reinstall googletest" build /usr/src/googletest -DBUILD_GMOCK=ON -DINSTALL_GTEST=ON
step "header-only libraries" "reinstall ${copied[*]}" copy_header_only
step "licenses" "reinstall ${copied[*]}" collect_licenses
step "runtime" "reinstall g++-mingw-w64-x86-64-posix" collect_runtime

echo "$recipe" >"$made/recipe"
mv "$log" "$made/build.log"
mv -T "$made" "$prefix"
publish
