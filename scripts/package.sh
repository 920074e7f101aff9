#!/usr/bin/env bash
# Builds the Debian packages into build/packages, holds them against lintian, installs them into a minimal Debian 12
# and runs the tool there.
#   scripts/package.sh [build]      build: no Debian, only the packages
# The minimal Debian is kept in ORBITWALK_ROOT_CACHE (default ~/.cache/orbitwalk); making it needs root.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${packages_build[@]}" "${packages_package[@]}"
[ -f build/release/CMakeCache.txt ] || cmake --preset release -DORBITWALK_BUILD_TESTS=OFF -DORBITWALK_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build build/release --target installed
rm -rf build/packages
(umask 022 && cpack --config build/release/CPackConfig.cmake -B build/packages >build/packages.log 2>&1) ||
    { cat build/packages.log; exit 1; }
rm -rf build/packages/_CPack_Packages
LC_ALL=C lintian --allow-root --fail-on error build/packages/*.deb
ls build/packages/*.deb
[ "${1:-}" != build ] || exit 0

cache=${ORBITWALK_ROOT_CACHE:-$HOME/.cache/orbitwalk}
base=$cache/bookworm
mkdir -p "$cache/archives"
# From where apt gets this machine's own Debian.
sources=$(apt-get indextargets --format 'deb $(REPO_URI) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' | grep ' bookworm\S* main$')
if [ ! -f "$base.complete" ]; then
    rm -rf "$base"
    debootstrap --variant=minbase bookworm "$base" "$(awk '$3 == "bookworm" { print $2; exit }' <<<"$sources")" >"$cache/debootstrap.log" ||
        { tail "$cache/debootstrap.log"; exit 1; }
    touch "$base.complete"
fi

root=$(mktemp -d "$cache/root.XXXXXX")
trap 'rm -rf --one-file-system "$root"' EXIT
cp -a "$base/." "$root"
cp /etc/resolv.conf "$root/etc/"
sort -u <<<"$sources" >"$root/etc/apt/sources.list"
cp -l "$cache"/archives/*.deb "$root/var/cache/apt/archives/" 2>/dev/null || true
cp build/packages/*.deb "$root/root/"
apt-config dump | grep -iE '^Acquire::https?::(Proxy|Timeout)' >"$root/etc/apt/apt.conf.d/98acquire" || true
cat >"$root/root/try" <<'END'
set -eu
export LC_ALL=C DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends /root/*.deb >/root/log 2>&1 || { cat /root/log; exit 1; }
cd /tmp
orbitwalk simulate -o clip.mp4 --truth truth.csv --size 960x540 --frames 40
orbitwalk capture clip.mp4 -o sweep
orbitwalk refine sweep
orbitwalk render sweep -o steady.mp4 --refined
orbitwalk player sweep -o sweep.html --refined
test -s steady.mp4 -a -s sweep.html
END
# A mount namespace gives /proc and takes it away again.
unshare --mount --pid --fork chroot "$root" sh -c 'mount -t proc proc /proc && sh /root/try'
cp -ln "$root"/var/cache/apt/archives/*.deb "$cache/archives/" 2>/dev/null || true
echo "The packages work in a minimal Debian 12."
