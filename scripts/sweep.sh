#!/usr/bin/env bash
# Installs what is needed, builds, and captures a sweep: of the video that is given, or else of a virtual
# camera panning over a photograph.
#   scripts/sweep.sh [VIDEO]
set -euo pipefail

wrong() {
    echo "scripts/sweep.sh: $1" >&2
    exit 2
}

[ $# -le 1 ] || wrong "one video at a time: scripts/sweep.sh [VIDEO]"
video=
if [ $# -eq 1 ]; then
    case $1 in
        -h | --help) sed -n '2,4s/^# //p' "$0"; exit 0 ;;
        -*) wrong "there is no option $1: scripts/sweep.sh [VIDEO]" ;;
    esac
    [ -f "$1" ] && [ -r "$1" ] || wrong "$1 is no file that can be read"
    video=$(realpath -- "$1")
fi
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${packages_build[@]}" "${packages_demo[@]}"
configure_release
cmake --build build/release --target orbitwalk
tool=$PWD/build/release/orbitwalk

out=$PWD/out
mkdir -p "$out"
if [ -z "$video" ]; then
    video=$out/clip.mp4
    "$tool" simulate /usr/share/backgrounds/picosdeeuropa_by_Aitzol_Berasategi.jpg \
        -o "$video" --truth "$out/truth.csv"
fi
"$tool" capture "$video" -o "$out/sweep"
"$tool" player "$out/sweep" -o "$out/sweep/sweep.html"

cat <<END

$out/sweep/sweep.html plays the sweep in a browser. The tool is $tool. Next:
  $tool render $out/sweep -o $out/steady.mp4
  $tool report $out/sweep -o $out/report.html
  $tool evaluate $out/sweep
END
