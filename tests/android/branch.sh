#!/usr/bin/env bash
# The build's branch for Android, configured by this machine's compiler, for there is no NDK here: what is compiled with
# which headers, what is linked by which name, and what an AAR gets.
#   branch.sh SOURCE BUILT COMPILER      BUILT: where libOrbitwalkEngine.so and libOrbitwalkC.so of a host's build are
set -euo pipefail
source=$1 built=$2 compiler=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() {
    echo "$1"
    exit 1
}

# The preset, with a toolchain file that sets what an NDK's does: what no library gives is an error, too.
mkdir -p "$work/ndk/build/cmake"
cat >"$work/ndk/build/cmake/android.toolchain.cmake" <<T
set(ANDROID ON)
set(ANDROID_NDK_MAJOR 27)
string(REGEX REPLACE "^android-" "" ANDROID_PLATFORM_LEVEL "\${ANDROID_PLATFORM}")
set(CMAKE_CXX_COMPILER "$compiler")
set(CMAKE_CXX_FLAGS_INIT "-isystem /usr/include/android -isystem $source/tests/android/ndk")
set(CMAKE_SHARED_LINKER_FLAGS_INIT -Wl,--no-undefined)
T
cd "$source"
ANDROID_NDK_HOME=$work/ndk cmake --preset android -B "$work/b" >"$work/log" 2>&1 || { cat "$work/log"; fail "It does not configure."; }
targets=$(ninja -C "$work/b" -t targets all)
grep -qE '^libOrbitwalk(Platform|MP4Writer)' <<<"$targets" && fail "A host's stand-ins are built."
grep -qE '\.so\.[0-9]' <<<"$targets" && fail "A library has a versioned name."

# What logs and what reads a property, by the platform's own headers.
objects=src/CMakeFiles/orbitwalk_core.dir/common
ninja -C "$work/b" "$objects/Stopwatch.cpp.o" "$objects/BuildType.cpp.o" >"$work/log" || { cat "$work/log"; fail "It does not compile."; }
ninja -C "$work/b" -t deps >"$work/deps"
grep -q '/usr/include/android/android/log.h' "$work/deps" || fail "The platform's log.h is not used."
grep -q 'host/platform/include' "$work/deps" && fail "A host's header hides the platform's."

for library in Engine C; do
    link=$(ninja -C "$work/b" -t commands "libOrbitwalk$library.so" | tail -1)
    for option in -llog -z,undefs -z,max-page-size=16384 -z,common-page-size=16384 --version-script= "-soname,libOrbitwalk$library.so "; do
        grep -qFe "$option" <<<"$link" || fail "libOrbitwalk$library.so is linked without $option."
    done
done

# The AAR's layout, with libraries of this machine in place of those that are not built.
cp "$built/libOrbitwalkEngine.so" "$built/libOrbitwalkC.so" "$work/b/"
cmake --install "$work/b" --component prefab --prefix "$work/aar" >/dev/null
python3 - "$work/aar" <<'P'
import json, pathlib, sys

def read(path, **keys):
    """All keys that Prefab's schema requires, of the type that it states, and none that it does not know."""
    value = json.loads(path.read_text())
    for key, kind in keys.items():
        assert type(value.get(key)) is kind, f"{path}: {key} is {value.get(key)!r}"
    assert value.keys() <= keys.keys(), f"{path}: {value.keys() - keys.keys()}"
    return value

aar = pathlib.Path(sys.argv[1])
assert 'minSdkVersion="26"' in (aar / "AndroidManifest.xml").read_text()
package = read(aar / "prefab/prefab.json", schema_version=int, name=str, version=str, dependencies=list)
assert package["schema_version"] == 2 and package["name"] == "orbitwalk", package
modules = sorted((aar / "prefab/modules").iterdir())
assert [m.name for m in modules] == ["OrbitwalkC", "OrbitwalkEngine"], modules
for module, header in zip(modules, ["orbitwalk.h", "Engine.h"]):
    read(module / "module.json", export_libraries=list)
    libs = module / "libs/android.arm64-v8a"
    abi = read(libs / "abi.json", abi=str, api=int, ndk=int, stl=str, static=bool)
    assert list(abi.values()) == ["arm64-v8a", 26, 27, "c++_shared", False], abi
    assert (libs / f"lib{module.name}.so").is_file() and (module / "include/orbitwalk" / header).is_file()
P
for header in "$work"/aar/prefab/modules/OrbitwalkC/include/orbitwalk/*.h "$work"/aar/prefab/modules/OrbitwalkEngine/include/orbitwalk/*.h; do
    "$compiler" -std=c++20 -fsyntax-only -I"${header%/orbitwalk/*}" -include "$header" -x c++ /dev/null ||
        fail "$header does not stand alone in its module."
done
