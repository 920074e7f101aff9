#!/usr/bin/env bash
# Installs into an empty prefix, moves it, and builds and runs consumers against what is there and nothing else.
#   installed.sh BUILD LIBDIR INCLUDE
set -euo pipefail
build=$1 libdir=$2 include=$3
here=$(realpath "$(dirname "$0")")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix="$work/moved here"
fail() {
    echo "$1"
    exit 1
}

cmake --install "$build" --prefix "$work/prefix" >/dev/null
mv "$work/prefix" "$prefix"
[ -z "$(grep -rlIF -e "$work/prefix" -e "$build" "$prefix" || true)" ] || fail "What was installed knows where it was built."

# Each header of include/ and the host's two, the ones for Android's own calls not.
diff <(cd "$include" && find orbitwalk -name '*.h' | sort) \
    <(cd "$prefix/include" && find orbitwalk -name '*.h' -not -path '*/host/*' | sort) || fail "Headers are missing."

expected="record of 52808 bytes
10 frames, the last one at -36
mp4 written
log of ORBITWALK_MP4_WRITER
pyramid of 2 pictures"
# same OUTPUT: what a consumer prints is what was expected.
same() {
    diff <(echo "$expected") - || fail "The consumer of $1 says something else."
}
cmake -S "$here/consumer" -B "$work/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Debug >"$work/log" &&
    cmake --build "$work/consumer" >>"$work/log" || fail "$(cat "$work/log")"
"$work/consumer/reader"
"$work/consumer/consumer" | same CMake

# Where the compiler is used without CMake no search path leads to the libraries.
export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig"
flags() {
    pkg-config "$@" orbitwalk-engine orbitwalk-refine orbitwalk-reader orbitwalk-mp4writer orbitwalk-platform
}
eval c++ -std=c++20 "$(flags --cflags)" -o '"$work/by_pkg_config"' '"$here/consumer/consumer.cpp"' "$(flags --libs)"
LD_LIBRARY_PATH="$prefix/$libdir" "$work/by_pkg_config" | same pkg-config
readelf -d "$work/by_pkg_config" | grep -qF '[libOrbitwalkEngine.so.1]' || fail "The engine is not named with its version."

# The C library is C's alone: a C compiler and no library of C++ on its command line.
eval cc -std=c11 -o '"$work/by_c"' '"$prefix/share/doc/orbitwalk/examples/capture/capture_raw.c"' \
    "$(pkg-config --cflags --libs orbitwalk-c)" -pthread || fail "C cannot use orbitwalk-c."

# The README's program, by the README's command; in a path without the blank that its command has no quotes for.
ln -s "$prefix" "$work/prefix"
readme=$prefix/share/doc/orbitwalk/README.md
sed -n '/^```cpp/,/^```/{/^```/!p}' "$readme" >"$work/first.cpp"
said=$(cd "$work" && export PKG_CONFIG_PATH="$work/prefix/$libdir/pkgconfig" LD_LIBRARY_PATH="$prefix/$libdir" &&
    eval "$(grep '^c++ ' "$readme")") && [[ $said == *"100 %" ]] || fail "The README's program does not run: $said"
[ "$(ffprobe -v error -count_frames -show_entries stream=nb_read_frames -of csv=p=0 "$work/sweep.mp4")" = 30 ] ||
    fail "The README's program leaves no video of its frames."

# The tool finds its libraries beside it, and says what its manual says.
env -u LD_LIBRARY_PATH "$prefix/bin/orbitwalk" --version >/dev/null
pages=$prefix/share/man/man1
for command in $("$prefix/bin/orbitwalk" --help | sed '1,/^Subcommands:/d' | awk '{ print $1 }'); do
    [ -z "$(man --warnings=all -E UTF-8 -l "$pages/orbitwalk-$command.1" 2>&1 >"$work/page")" ] || fail "orbitwalk-$command.1 is no man page."
    grep -q "orbitwalk.-$command" "$pages/orbitwalk.1" || fail "orbitwalk.1 lacks $command."
    for option in $("$prefix/bin/orbitwalk" "$command" --help | grep -oE '^  (-., ?)?--[a-z-]+' | grep -oE '\-\-[a-z-]+'); do
        grep -q -- " $option\b" "$work/page" || fail "orbitwalk-$command.1 lacks $option."
    done
done

# complete WORD...: what bash, zsh and fish offer for the last word.
complete_in_bash() {
    bash -c '. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _orbitwalk; echo "${COMPREPLY[*]}"' - \
        "$prefix/share/bash-completion/completions/orbitwalk" "$@"
}
complete_in_fish() {
    fish --no-config -c "source '$prefix/share/fish/vendor_completions.d/orbitwalk.fish'; complete -C '$*'" | cut -f 1 | xargs
}
zsh -n "$prefix/share/zsh/site-functions/_orbitwalk"
for shell in bash fish; do
    check() {
        [ "$(complete_in_$shell "${@:2}")" = "$1" ] || fail "$shell completes ${*:2} by: $(complete_in_$shell "${@:2}")"
    }
    check simulate orbitwalk sim
    check "left2right" orbitwalk simulate --direction l
    check "--border-frames" orbitwalk render DIR --bor
    check "" orbitwalk refine --keep ''
done
