#!/usr/bin/env bash
# Sourced by the commands at the root: installs what is missing, configures and builds in build/.
#   vellor_prepare [TARGET...]   build these targets, or everything

vellor_root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# vellor_install_packages LIST
vellor_install_packages() {
    local missing=() package
    while read -r package; do
        [[ -z $package || $package == \#* ]] && continue
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done <"$1"
    ((${#missing[@]})) || return 0
    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || {
            echo "These packages are missing, and there is no root or sudo to install them: ${missing[*]}" >&2
            return 1
        }
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

vellor_prepare() {
    vellor_install_packages "$vellor_root/scripts/packages.txt" || return 1
    local targets=()
    (($#)) && targets=(--target "$@")
    # A tree that was configured before keeps its generator and build type.
    if [[ ! -f $vellor_root/build/CMakeCache.txt ]]; then
        cmake -S "$vellor_root" -B "$vellor_root/build" -G Ninja -DCMAKE_BUILD_TYPE=Release || return 1
    fi
    cmake --build "$vellor_root/build" -j "$(nproc)" "${targets[@]}"
}
