# shellcheck shell=bash
# Sourced by the scripts: finds the tree and installs missing packages.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

buildPackages=(g++ cmake ninja-build libcli11-dev nlohmann-json3-dev)
testPackages=(libgtest-dev 'libgeographiclib-dev|libgeographic-dev' pkg-config locales python3)
checkPackages=(clang-format clang-tidy python3 python3-mpmath proj-bin groff-base shellcheck zsh fish)
windowsPackages=(g++-mingw-w64-x86-64-posix wine64 wine googletest dpkg-dev clang lld clang-tidy locales python3)
machinePackages=(clang g++-aarch64-linux-gnu qemu-user-static googletest dpkg-dev)
examplePackages=(mono-mcs mono-runtime fp-compiler fp-units-rtl python3)
packagePackages=(dpkg-dev file lintian pkg-config unzip)
benchPackages=(libbenchmark-dev libproj-dev pkg-config python3)
coveragePackages=(clang llvm python3)
scalePackages=(parallel openssh-server openssh-client)

windowsCompiler=x86_64-w64-mingw32-gcc-posix

# The heading of a step, with the seconds since the script began.
step() { printf '== %d s: %s\n' "$SECONDS" "$*"; }
# Runs a command and tells how long it took.
timed() {
    local start=$SECONDS status=0
    "$@" || status=$?
    printf '==== %s: %d s%s\n' "$*" $((SECONDS - start)) "$([ $status = 0 ] || echo ", failed")"
    return $status
}
fail() {
    echo "$*" >&2
    exit 1
}

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

is_installed() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

# Installs those packages that are missing; "a|b" takes whichever the distribution has.
need() {
    local missing=() package name updated=no
    for package in "$@"; do
        for name in ${package//|/ }; do
            is_installed "$name" && continue 2
        done
        missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if ! command -v apt-get >/dev/null; then
        echo "Please install: ${missing[*]}" >&2
        return 1
    fi
    echo "Installing ${missing[*]}"
    as_root apt-get update -qq && updated=yes
    [ $updated = yes ] || echo "The package lists could not be updated; trying with the old ones." >&2
    for package in "${missing[@]}"; do
        for name in ${package//|/ }; do
            if apt-cache show "$name" >/dev/null 2>&1; then
                as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$name" >/dev/null
                continue 2
            fi
        done
        echo "There is no package $package." >&2
        return 1
    done
}

# Installs clang with what its sanitizers, fuzzer and profiles are linked with, which is a package of its own on Debian.
need_clang_with_runtime() {
    need clang
    compgen -G "$(clang -print-resource-dir)/lib/*/libclang_rt.profile*" >/dev/null || need libclang-rt-dev
}

# From now on compilers keep what they make in a cache: builds with the same flags share it, and so do later runs.
use_ccache() {
    need ccache
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
}

# Unpacks the source of a package of the distribution into build/sources, for what must be built for another system.
unpack_source() {
    local name=$1 lists distribution folder
    [ ! -d "build/sources/$name" ] || return 0
    echo "Fetching the source of $name"
    mkdir -p build/sources/lists/partial
    for distribution in Debian Ubuntu; do
        apt-get indextargets --format "deb-src \$(REPO_URI) \$(RELEASE) \$(COMPONENT)" \
            'Created-By: Packages' "Origin: $distribution"
    done | sort -u >build/sources/sources.list
    if [ ! -s build/sources/sources.list ] && [ $# = 1 ]; then
        as_root apt-get update -qq # there are no package lists yet
        unpack_source "$name" again
        return
    fi
    lists=(-o Dir::Etc::sourcelist="$PWD/build/sources/sources.list" -o Dir::Etc::sourceparts=-
        -o Dir::State::Lists="$PWD/build/sources/lists" -o APT::Sandbox::User=)
    apt-get "${lists[@]}" update -qq
    folder=$(mktemp -d -p build/sources)
    (cd "$folder" && apt-get "${lists[@]}" source -qq "$name" >/dev/null)
    mv "$folder/$name"-*/ "build/sources/$name"
    rm -rf "$folder"
}

# Makes ready for programs of Windows: a Wine of this tree's own, without its dialogs.
use_wine() {
    export WINEPREFIX=$PWD/build/wine WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml='
    locales=$WINEPREFIX/locales
    mkdir -p "$locales"
    localedef --no-archive --force -i el_GR -f UTF-8 "$locales/el_GR.UTF-8"
    rm -f build/wine/drive_c/DEFAULT # of a test that was broken off
    in_wine wineboot --init >build/wine/boot.log 2>&1 || {
        cat build/wine/boot.log >&2
        return 1
    }
}
# Runs a command that starts programs of Windows. Their code page follows the locale: one that is none of Western
# Europe's shows whether names of files hang on it.
in_wine() { env LOCPATH="$locales" LC_ALL=el_GR.UTF-8 LAGESTATUS_CODE_PAGE=1253 "$@"; }
stop_wine() { wineserver --kill || true; }

# The functions that a library of src/FOLDER exports.
exported_of() { sed -n 's/^ *\([a-zA-Z_]*\);$/\1/p' "src/$1/exports.map" | LC_ALL=C sort; }

# Builds programs outside against an installed tree, by CMake and by pkg-config, and runs them.
# Usage: try_installed TREE WORK_DIRECTORY
try_installed() {
    local tree=$1 work=$2 libraries example
    libraries=$(dirname "$(find "$tree" -name 'liblagestatus.so' -o -name 'liblagestatus.a' | head -n 1)")
    cmake -G Ninja -S tests/consumer -B "$work/consumer" -DCMAKE_PREFIX_PATH="$tree" >/dev/null
    cmake --build "$work/consumer" >/dev/null
    tests/example_test.sh data/sample "$work/consumer/consumer"
    tests/example_test.sh many_points data/sample "$work/consumer/c_many_points"
    tests/example_test.sh many_points data/sample "$work/consumer/cpp_many_points"
    "$work/consumer/both" data/sample || fail "a program with both libraries does not run"
    export PKG_CONFIG_PATH=$libraries/pkgconfig
    # shellcheck disable=SC2046
    {
        gcc -std=c11 examples/c/example.c -o "$work/example" $(pkg-config --cflags --libs lagestatus)
        gcc -std=c11 examples/c/many_points.c -o "$work/many_points" $(pkg-config --cflags --libs lagestatus_bulk)
        g++ -std=c++20 examples/cpp/many_points.cpp -o "$work/many_points_cpp" \
            $(pkg-config --cflags --libs lagestatus_bulk)
        gcc -std=c11 tests/consumer/both.c -o "$work/both" $(pkg-config --cflags --libs lagestatus lagestatus_bulk)
    }
    unset PKG_CONFIG_PATH
    (
        export LD_LIBRARY_PATH=$libraries
        tests/example_test.sh data/sample "$work/example"
        for example in many_points many_points_cpp; do
            tests/example_test.sh many_points data/sample "$work/$example"
        done
        "$work/both" data/sample || fail "a program with both libraries does not run"
    )
    "$tree/bin/lagestatus" list -d data/sample >/dev/null
}

# Runs a command, quietly unless it fails.
quietly() {
    local log
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}

# Configures and builds a preset; further arguments go to the configuration.
build() { quietly cmake --preset "$@" && quietly cmake --build --preset "$1"; }

# The same for some targets of a preset.
build_targets() { quietly cmake --preset "$1" && quietly cmake --build --preset "$1" --target "${@:2}"; }
