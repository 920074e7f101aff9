"""How far the motion that `orbitwalk refine` measured leads from the true one of a simulated sweep."""
import csv
import math


def rows(file, *columns):
    with open(file) as table:
        return [[float(row[name]) for name in columns] for row in csv.DictReader(table)]


def true_steps(truth, width, height):
    """The truth is about the corner of the region that the engine measures in; here it is taken about the centre."""
    arm_x, arm_y = width / 2 - 4 * (width // 4 // 5), height / 2 - 4 * (height // 4 // 5)
    path = rows(truth, "x", "y", "a")
    for before, now in zip(path, path[1:]):
        x, y, a = (b - c for b, c in zip(now, before))
        yield (x + math.cos(a) * arm_x - math.sin(a) * arm_y - arm_x,
               y + math.sin(a) * arm_x + math.cos(a) * arm_y - arm_y, a)


def path_error(refined, truth, width, height):
    """Root mean square over the frames of the path about the centre, from the first frame on: x, y, degrees."""
    off, squares, frames = [0.0] * 3, [0.0] * 3, 1
    for step, true in zip(rows(refined, "dx", "dy", "da")[1:], true_steps(truth, width, height), strict=True):
        off = [o + s - t for o, s, t in zip(off, step, true)]
        squares = [q + o * o for q, o in zip(squares, off)]
        frames += 1
    x, y, angle = (math.sqrt(q / frames) for q in squares)
    return x, y, math.degrees(angle)
