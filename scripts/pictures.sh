#!/usr/bin/env bash
# Makes the README's pictures anew, from the sweep that scripts/sweep.sh simulates and captures.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${packages_pictures[@]}"
scripts/sweep.sh

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
build/release/orbitwalk render out/sweep --strip "$work/strip.png"
ffmpeg -v error -y -i "$work/strip.png" -q:v 5 docs/strip.jpg

# The page's section on the path alone; the report draws it in a real browser.
build/release/orbitwalk report out/sweep -o "$work/report.html"
sed -i 's|</head>|<style>header, #verdict, #warnings, #summary, section:not(:has(#path)) { display: none }</style></head>|' "$work/report.html"
chromium --headless --no-sandbox --disable-gpu --hide-scrollbars --user-data-dir="$work/profile" \
    --host-resolver-rules='MAP * ~NOTFOUND' --window-size=1360,860 --virtual-time-budget=4000 \
    --screenshot="$work/path.png" "file://$work/report.html" >/dev/null 2>&1
ffmpeg -v error -y -i "$work/path.png" docs/path.png
