#!/usr/bin/env bash
# Makes the release archive build/orbitwalk-VERSION.tar.gz: what is committed, and the pages, so that it is built without npm.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${packages_build[@]}"
[ -f build/release/CMakeCache.txt ] || cmake --preset release -DORBITWALK_BUILD_TESTS=OFF -DORBITWALK_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build build/release --target web_dist
name=orbitwalk-$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/release/CMakeCache.txt)
pages=()
for page in build/release/web_dist/*; do
    pages+=(--add-file="$page")
done
git archive --prefix="$name/web/pages/" "${pages[@]}" --prefix="$name/" -o "build/$name.tar.gz" HEAD
echo "build/$name.tar.gz"
