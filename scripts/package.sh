#!/usr/bin/env bash
# Builds the Debian packages into build/packages, holds them against lintian, installs them into a minimal Debian 12
# and runs the tool there.
#   scripts/package.sh [build]      build: no Debian, only the packages
# The minimal Debian is kept in ORBITWALK_ROOT_CACHE (default ~/.cache/orbitwalk). It needs root: with sudo, but for build.
set -euo pipefail
[ "${1:-}" = build ] || [ "$(id -u)" -eq 0 ] || {
    echo "scripts/package.sh: the minimal Debian needs root; without it: scripts/package.sh build" >&2
    exit 2
}
cd "$(dirname "$0")/.."
. scripts/packages.sh

install_packages "${packages_build[@]}" "${packages_package[@]}"
configure_release
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
# What the README tells who installs the packages, and the commands that it does not need there.
sed -n '/^orbitwalk simulate -o clip.mp4 /,/^```/{/^```/!p}' README.md >"$root/root/readme"
[ "$(wc -l <"$root/root/readme")" -eq 3 ] || { echo "The README's three commands are not three."; exit 1; }
cat >"$root/root/try" <<'END'
set -eux
export LC_ALL=C DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends /root/*.deb >/root/log 2>&1 || { cat /root/log; exit 1; }
cd /tmp
. /root/readme
test -s clip.mp4 -a -s sweep/refined.obw -a -s sweep.html
orbitwalk refine sweep --force --keep 0.9
orbitwalk render sweep -o steady.mp4 --refined
orbitwalk player sweep -o player.html --refined
test -s steady.mp4 -a -s player.html
END
# A mount namespace gives /proc and takes it away again.
unshare --mount --pid --fork chroot "$root" sh -c 'mount -t proc proc /proc && sh /root/try'
cp -ln "$root"/var/cache/apt/archives/*.deb "$cache/archives/" 2>/dev/null || true
echo "The packages work in a minimal Debian 12."
