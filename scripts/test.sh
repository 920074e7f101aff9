#!/usr/bin/env bash
# Installs what is needed, builds, and runs the tests.
#   scripts/test.sh [PRESET...]     release (the default), debug, asan, tsan; arm64, armhf (under emulation)
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh
. scripts/sysroot.sh

# prepare_machine NAME TRIPLET: its compiler, its packages, and what this machine makes of the same sweeps.
prepare_machine() {
    local -n packages=packages_$1
    install_packages "${packages[@]}"
    make_sysroot "$1" "$2" "build/sysroot-$1" "${packages_sysroot[@]}"
    cmake --preset release >/dev/null
    cmake --build --preset release --target play_sweep
}

install_packages "${packages_build[@]}" "${packages_demo[@]}" "${packages_test[@]}"
for preset in "${@:-release}"; do
    case $preset in
        arm64) prepare_machine arm64 aarch64-linux-gnu ;;
        armhf) prepare_machine armhf arm-linux-gnueabihf ;;
        asan | tsan) install_packages "${packages_clang[@]}" ;;
    esac
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    ctest --preset "$preset"
done
