# shellcheck shell=bash
# Sourced by the scripts: finds the tree and installs missing packages.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

buildPackages=(g++ cmake ninja-build libcli11-dev)
testPackages=(libgtest-dev 'libgeographiclib-dev|libgeographic-dev' pkg-config locales)
checkPackages=(clang-format clang-tidy python3 proj-bin)
benchPackages=(libbenchmark-dev libproj-dev pkg-config python3)

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

# Configures and builds a preset, quietly unless it fails.
build() {
    local log
    log=$(mktemp)
    if ! { cmake --preset "$1" && cmake --build --preset "$1"; } >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}
