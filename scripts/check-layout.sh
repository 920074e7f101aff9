#!/usr/bin/env bash
# The architecture that the folders show, checked on the include and import lines; and no test file outside the build.
set -u
cd "$(dirname "$0")/.."
broken=0

complain() {
    echo "$1"
    broken=1
}

# forbid FOLDER WHY PATTERN...: no file below FOLDER includes a header that begins with one of the patterns.
forbid() {
    local folder=$1 why=$2 pattern
    shift 2
    for pattern in "$@"; do
        while IFS= read -r line; do
            complain "$line: $why"
        done < <(grep -rnE "^#include [\"<]$pattern" "$folder")
    done
}

forbid src/common "common is below everything" engine/ frameproc/ findTransform/ stabilization/
forbid src/frameproc "stages know neither the engine nor each other" engine/ findTransform/ stabilization/
forbid src/findTransform "stages know neither the engine nor each other" engine/ frameproc/ stabilization/
forbid src/stabilization "stages know neither the engine nor each other" engine/ frameproc/ findTransform/
forbid refine "the path is refined beside the engine, on any host" engine/ frameproc/ findTransform/ stabilization/ common/ \
    orbitwalk/Engine.h media/ MP4Writer.h OrbitwalkPlatform.h android/ opencv2/videoio opencv2/highgui opencv2/imgcodecs
forbid src "the engine does not know its hosts" media/ opencv2/videoio opencv2/highgui opencv2/imgcodecs
forbid tool "the tool is a client, never an insider; pictures and videos are libav's" engine/ frameproc/ findTransform/ \
    opencv2/videoio opencv2/highgui opencv2/imgcodecs
while IFS= read -r file; do
    complain "$file: only SmoothedPath looks into the stabiliser"
done < <(grep -rlE '^#include "stabilization/' tool | grep -v '^tool/sweep/SmoothedPath\.cpp$')
# Commands call the work, the work knows a sweep, a sweep its files, files the terminal; report and evaluate render, capture refines.
for work in batch capture simulate refine render evaluate inspect player report; do
    forbid tool/$work "work knows neither commands nor other work" commands/ \
        $(printf '%s\n' batch/ capture/ simulate/ refine/ render/ evaluate/ inspect/ player/ report/ | grep -v "^$work/" |
            case $work in evaluate | report) grep -v '^render/' ;; capture) grep -v '^refine/' ;; *) cat ;; esac)
done
work='(commands|batch|capture|simulate|refine|render|evaluate|inspect|player|report)/'
forbid tool/sweep "a sweep knows no work" "$work"
forbid tool/files "files know no sweep" "$work" sweep/
forbid tool/terminal "the terminal is below everything" "$work" sweep/ files/
forbid include "public headers stand alone" engine/ frameproc/ findTransform/ stabilization/ media/

while IFS= read -r file; do
    grep -qF "$(basename "$file")" "$(dirname "$file")/CMakeLists.txt" 2>/dev/null ||
        complain "$file: in no target of its folder's CMakeLists.txt"
done < <(find tests -name '*.cpp')

# Below web/: a record stands alone, the player knows records, the report's page has the player as a stranger does.
# importing FOLDER ALLOWED: no source of FOLDER imports anything but its own files and what ALLOWED matches.
importing() {
    while IFS= read -r line; do
        complain "$line: $1 imports no such thing"
    done < <(grep -rnE '(from|^import) "[^"]+"' "web/$1/src" --include='*.js' | grep -vE "(from|import) \"(\./[^/\"]+|$2)\"")
}
importing record 'none'
importing player '@orbitwalk/record|mediabunny'
importing report 'uplot'

exit $broken
