#!/usr/bin/env python3
"""where_goes.py RECORD FRAME X Y

Which point of the frame a player shows at a point of the picture, and back: pixels of the full-size frame, y down.
Needs nothing but Python. A program that plays records of unknown origin checks more of them: see docs/record.md."""
import struct
import sys


class Record:
    """The words of a record, little-endian, at fixed offsets."""

    def __init__(self, data):
        if len(data) != 52808:
            raise ValueError(f'has {len(data)} bytes, a record has 52808')
        self._data = data
        self.frames, self.first, self.last = self._words(8, 3)
        self.flipped = self._words(40, 1)[0] == 1
        self.crop = self._words(48, 4)
        if not 0 <= self.frames <= 1000:
            raise ValueError(f'has {self.frames} frames, which is impossible')

    def _words(self, offset, count):
        return struct.unpack_from(f'<{count}i', self._data, offset)

    def is_shown(self, frame):
        return self.first <= frame <= self.last and self._words(48072 + 4 * frame, 1)[0] == 1

    def matrix(self, frame):
        """Row-major; a capture of one frame leaves it zero, which is the identity."""
        words = self._words(72 + 36 * frame, 9)
        return [w / 1e6 for w in words] if any(words) else [1, 0, 0, 0, 1, 0, 0, 0, 1]

    def mirrored(self, x):
        return 2 * self.crop[0] + self.crop[2] - 1 - x if self.flipped else x


def frame_from_picture(m, x, y):
    return x * m[0] + y * m[3] + m[6], x * m[1] + y * m[4] + m[7]


def picture_from_frame(m, x, y):
    x, y, det = x - m[6], y - m[7], m[0] * m[4] - m[1] * m[3]
    return (x * m[4] - y * m[3]) / det, (y * m[0] - x * m[1]) / det


def main(name, frame, x, y):
    frame, x, y = int(frame), float(x), float(y)
    with open(name, 'rb') as file:
        record = Record(file.read(52809))
    if not 0 <= frame < record.frames:
        raise ValueError(f'has {record.frames} frames')
    matrix = record.matrix(frame)
    shown = frame_from_picture(matrix, record.mirrored(x), y)
    back = picture_from_frame(matrix, *shown)
    print(f'frame {frame} is {"shown" if record.is_shown(frame) else "not shown"}, crop', *record.crop)
    print(f'picture ({x:.3f}, {y:.3f}) shows frame ({shown[0]:.3f}, {shown[1]:.3f})')
    print(f'which stands at ({record.mirrored(back[0]):.3f}, {back[1]:.3f})')


if __name__ == '__main__':
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    try:
        main(*sys.argv[1:])
    except (ArithmeticError, OSError, ValueError) as error:
        sys.exit(f'where_goes.py: {error}')
