#!/usr/bin/env bash
# Holds what this machine makes of sweeps against what another one makes of them, under emulation: the same records of
# equal paths, paths of equal frames within 0.003 pixels; and captures a sweep there from frames to MP4 and record.
#   compare.sh NATIVE_BUILD BUILD EMULATOR...
set -euo pipefail
native=$1 build=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

"$native/tests/play_sweep" records >here.records
"$@" "$build/tests/play_sweep" records >there.records
ffmpeg -v error -f lavfi -i "testsrc2=size=960x540:rate=30,noise=alls=20:all_seed=7,crop=640:360:n*4:40+20*sin(n/3)" \
    -frames:v 30 -f rawvideo -pix_fmt yuv420p frames.yuv
"$native/tests/play_sweep" path 640 360 <frames.yuv >here.path
"$@" "$build/tests/play_sweep" path 640 360 <frames.yuv >there.path

python3 - <<'PY'
import struct, sys
def words(name):
    data = open(name, 'rb').read()
    return struct.unpack(f'<{len(data) // 4}i', data)
here, there = words('here.records'), words('there.records')
differences = [abs(a - b) for a, b in zip(here, there) if a != b]
print(f'{len(here) // 13202} records: {len(differences)} of {len(here)} words differ, by {max(differences, default=0)} at most')
if len(here) != len(there) or not any(here) or differences:
    sys.exit('records of equal paths differ')
def path(name):
    return [tuple(map(float, line.split())) for line in open(name)]
here, there = path('here.path'), path('there.path')
off = max(max(abs(a[0] - b[0]), abs(a[1] - b[1])) for a, b in zip(here, there))
print(f'{len(here)} frames, {here[-1][0]:.3f} pixels: paths differ by {off:.6f} at most')
if len(here) != len(there) or abs(here[-1][0]) < 20 or off > 0.003:
    sys.exit('paths differ by more than 0.003 pixels')
PY

"$@" "$build/capture_raw" 640 360 sweep.mp4 sweep.obw <frames.yuv 2>progress.txt
[ "$(wc -c <sweep.obw)" = 52808 ]
[ "$(ffprobe -v error -count_frames -show_entries stream=codec_name,nb_read_frames -of csv=p=0 sweep.mp4)" = h264,30 ]
