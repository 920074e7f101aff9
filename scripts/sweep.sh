#!/usr/bin/env bash
# Installs what is needed, builds, and captures a sweep: of the video that is given, or else of a virtual
# camera panning over a photograph.
#   scripts/sweep.sh [VIDEO]
set -euo pipefail
video=${1:+$(realpath "$1")}
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${packages_build[@]}" "${packages_demo[@]}"
cmake -S . -B build/sweep -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build/sweep

mkdir -p out
if [ -z "$video" ]; then
    video=out/clip.mp4
    build/sweep/orbitwalk simulate /usr/share/backgrounds/picosdeeuropa_by_Aitzol_Berasategi.jpg \
        -o "$video" --truth out/truth.csv
fi
build/sweep/orbitwalk capture "$video" -o out/sweep
