#!/usr/bin/env bash
# The examples on a small sweep: three languages capture the same, two read the same, and the worked record of the docs
# comes out as the docs say.
#   examples.sh TOOL BUILT_EXAMPLES SOURCES C_LIBRARY
set -euo pipefail
tool=$1 built=$2 sources=$3 library=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

same() {
    cmp "$1" "$2" || { echo "$3"; exit 1; }
}

"$tool" simulate -o clip.mp4 --size 640x360 --frames 12 --quiet
ffmpeg -v error -i clip.mp4 -f rawvideo -pix_fmt yuv420p frames.yuv
mkdir cpp c python
"$built/capture_raw" 640 360 cpp/sweep.mp4 cpp/sweep.obw <frames.yuv >cpp/out.txt 2>cpp/progress.txt
"$built/capture_raw_c" 640 360 c/sweep.mp4 c/sweep.obw <frames.yuv >c/out.txt
python3 "$sources/capture/capture_raw.py" "$library" 640 360 python/sweep.mp4 python/sweep.obw <frames.yuv >python/out.txt
for other in c python; do
    for file in sweep.mp4 sweep.obw out.txt; do
        same cpp/$file $other/$file "the capture in $other is another than the one in C++"
    done
done
grep -q '^12 frames, the last at ' cpp/out.txt
"$tool" inspect cpp/sweep.obw >record.txt

"$built/where_goes" cpp/sweep.obw 7 100 50 >cpp/where.txt
python3 "$sources/record/where_goes.py" cpp/sweep.obw 7 100 50 >python/where.txt
same cpp/where.txt python/where.txt "Python reads the record in another way than C++"

# The record that docs/record.md works out by hand.
python3 - "$sources/../docs/record.md" <<'PY'
import re, sys
record = bytearray(52808)
page = open(sys.argv[1]).read().split('```')
table = next(part for part in page if part.lstrip().startswith('offset'))
offset = None
for line in table.splitlines():
    found = re.match(r'(\d+) +((?:[0-9a-f]{2} ?| )+)', line)
    if found:
        data = bytes.fromhex(re.sub(r' {3,}.*', '', found[2]).replace(' ', ''))
        record[int(found[1]):int(found[1]) + len(data)] = data
open('worked.obw', 'wb').write(record)
PY
for program in "$built/where_goes" "python3 $sources/record/where_goes.py"; do
    $program worked.obw 0 100 50 >worked.txt
    grep -qF 'shows frame (104.400, -10.800)' worked.txt ||
        { echo "$program: not what the docs work out"; exit 1; }
done
for program in "$built/where_goes" "python3 $sources/record/where_goes.py"; do
    if $program clip.mp4 0 0 0 2>refusal.txt || ! grep -q 'a record' refusal.txt; then
        echo "$program takes a video for a record"
        exit 1
    fi
done

ffmpeg -v error -i clip.mp4 -f rawvideo -pix_fmt gray luma.raw
"$built/refine_raw" 640 360 0.9 refined.obw <luma.raw
"$tool" inspect refined.obw >refined.txt
