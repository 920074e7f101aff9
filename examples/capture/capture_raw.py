#!/usr/bin/env python3
"""capture_raw.py LIBRARY WIDTH HEIGHT VIDEO RECORD < FRAMES

A capture from Python, through ctypes alone. LIBRARY is libOrbitwalkC.so.1; FRAMES are planar YUV 4:2:0, one after the
other, as `ffmpeg -i CLIP -f rawvideo -pix_fmt yuv420p -` writes them. VIDEO receives the MP4 and RECORD the motion
record."""
import ctypes as c
import sys
import tempfile
import threading

RECORD_SIZE, MAX_FRAMES = 52808, 1000
OnProgress = c.CFUNCTYPE(None, c.c_void_p, c.c_int)


class Listener(c.Structure):
    _fields_ = [('onProgress', OnProgress), ('release', c.c_void_p), ('user', c.c_void_p)]


class Parameters(c.Structure):
    _fields_ = [('width', c.c_int32), ('height', c.c_int32), ('format', c.c_int32), ('mp4', c.c_void_p),
                ('record', c.c_void_p), ('mirrored', c.c_bool), ('orientation', c.c_int32)]


class Frame(c.Structure):
    _fields_ = [('x', c.c_float), ('y', c.c_float), ('angle', c.c_float), ('isRendered', c.c_int32),
                ('info', c.c_int32 * 2)]


def load(path):
    library = c.CDLL(path)
    library.orbitwalkLastError.restype = c.c_char_p
    library.orbitwalkGetTrajectory.argtypes = [c.c_char_p] + 3 * [c.POINTER(c.c_float)]
    library.orbitwalkProvideFrame.argtypes = [c.c_char_p] + 3 * [c.c_float]
    return library


def main(path, width, height, video, record_name):
    library, libc = load(path), c.CDLL(None)
    libc.fopen.restype = c.c_void_p
    libc.fclose.argtypes = [c.c_void_p]

    def check(result):
        if result != 1:
            sys.exit('capture_raw.py: ' + library.orbitwalkLastError().decode())

    done = threading.Event()
    # Kept in a variable: the engine calls it until deinit.
    on_progress = OnProgress(lambda user, percent: done.set() if percent == 100 else None)
    record = c.create_string_buffer(RECORD_SIZE)
    stream = libc.fopen(video.encode(), b'wb')
    if not stream:
        sys.exit(f'capture_raw.py: {video} cannot be written')
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as directory:
        check(library.orbitwalkSetTemporaryDirectory((directory + '/').encode()))
        check(library.orbitwalkInit(c.byref(Listener(on_progress, None, None))))
        try:
            check(library.orbitwalkStart(c.byref(Parameters(
                width=int(width), height=int(height), mp4=stream, record=c.addressof(record)))))
            frames, size = [], int(width) * int(height) * 3 // 2
            while len(frames) < MAX_FRAMES and len(picture := sys.stdin.buffer.read(size)) == size:
                frame = Frame(isRendered=1)
                x, y, angle = c.c_float(), c.c_float(), c.c_float()
                check(library.orbitwalkGetTrajectory(picture, c.byref(x), c.byref(y), c.byref(angle)))
                check(library.orbitwalkProvideFrame(picture, x, y, angle))
                frame.x, frame.y, frame.angle = x.value, y.value, angle.value
                frames.append(frame)
            check(library.orbitwalkStop(0, len(frames) - 1, (Frame * len(frames))(*frames), len(frames), 1))
            if not done.wait(300):
                sys.exit('capture_raw.py: the sweep cannot be finished')
        finally:
            # The engine knows on_progress, stream and record, which Python is about to free.
            library.orbitwalkDeinit()
    if libc.fclose(stream) != 0:
        sys.exit(f'capture_raw.py: {video} cannot be written')
    with open(record_name, 'wb') as out:
        out.write(record.raw)
    last = frames[-1]
    print(f'{len(frames)} frames, the last at {last.x:.2f} {last.y:.2f} pixels, {last.angle:.5f} radians')


if __name__ == '__main__':
    if len(sys.argv) != 6:
        sys.exit(__doc__)
    main(*sys.argv[1:])
