#!/usr/bin/env bash
# Makes the release archive build/orbitwalk-VERSION.tar.gz: what is committed, and the pages, so that it is built without npm.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${packages_build[@]}"
configure_release
cmake --build build/release --target web_dist
name=orbitwalk-$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/release/CMakeCache.txt)
pages=()
for page in build/release/web_dist/*; do
    pages+=(--add-file="$page")
done
git archive --prefix="$name/web/pages/" "${pages[@]}" --prefix="$name/" -o "build/$name.tar.gz" HEAD
echo "build/$name.tar.gz"
