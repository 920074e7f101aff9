#!/usr/bin/env bash
# Installs what is needed, builds, and runs the tests.
#   scripts/test.sh [PRESET...]     release (the default), debug, asan, tsan
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${packages_build[@]}" "${packages_demo[@]}" "${packages_test[@]}"
for preset in "${@:-release}"; do
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    ctest --preset "$preset"
done
