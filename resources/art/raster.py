"""A small anti-aliased rasteriser: polygons onto a square of RGBA pixels.

Coordinates are pixels, x to the right and y down; whole numbers lie between pixels, so a shape with whole coordinates
has crisp edges. Each row of pixels is cut into LINES scan lines; along a scan line the covered length is exact.
"""
import math

LINES = 8  # scan lines a pixel
GRID = 64  # corners lie on this fraction of a pixel, so that the last digit of a sine changes no pixel


def rectangle(left, top, right, bottom):
    return [(left, top), (right, top), (right, bottom), (left, bottom)]


def arc(x, y, radius, start, end):
    """Points on a circle; angles in degrees, 0 to the right, growing clockwise on the screen."""
    steps = max(2, math.ceil(abs(end - start) / 90 * (3 + math.sqrt(radius))))
    turns = [math.radians(start + (end - start) * step / steps) for step in range(steps + 1)]
    return [(x + radius * math.cos(turn), y + radius * math.sin(turn)) for turn in turns]


def circle(x, y, radius):
    return arc(x, y, radius, 0, 360)[:-1]


def rounded(left, top, right, bottom, *radii):
    """A rectangle with round corners: one radius for all, or top left, top right, bottom right, bottom left."""
    a, b, c, d = radii if len(radii) == 4 else radii * 4
    return (arc(left + a, top + a, a, 180, 270) + arc(right - b, top + b, b, 270, 360)
            + arc(right - c, bottom - c, c, 0, 90) + arc(left + d, bottom - d, d, 90, 180))


def line(points, width):
    """A thick line with round ends and joints, as a list of shapes."""
    shapes = []
    for (x0, y0), (x1, y1) in zip(points, points[1:]):
        turn = math.degrees(math.atan2(y1 - y0, x1 - x0))
        shapes.append(arc(x0, y0, width / 2, turn + 90, turn + 270) + arc(x1, y1, width / 2, turn - 90, turn + 90))
    return shapes


class Canvas:
    def __init__(self, size):
        self.size = size
        self.pixels = [[(0, 0, 0, 0)] * size for _ in range(size)]  # red, green, blue (0 to 255), alpha (0 to 1)

    def fill(self, shapes, colour):
        """Paints the union of the shapes (one polygon, or a list of them) over what is there."""
        if isinstance(shapes[0], tuple):
            shapes = [shapes]
        for y, row in self._coverage(shapes).items():
            pixels = self.pixels[y]
            for x, part in enumerate(row):
                if part >= 1:
                    pixels[x] = (*colour, 1)
                elif part > 0:
                    pixels[x] = _over(pixels[x], colour, part)

    def _coverage(self, shapes):
        """The rows that the shapes touch: how much of each pixel is covered, 0 to 1."""
        crossings = [[] for _ in range(self.size * LINES)]
        for shape in shapes:
            corners = [(round(x * GRID) / GRID, round(y * GRID) / GRID) for x, y in shape]
            edges = list(zip(corners, corners[1:] + corners[:1]))
            clockwise = sum(x0 * y1 - x1 * y0 for (x0, y0), (x1, y1) in edges) > 0
            for (x0, y0), (x1, y1) in edges:
                if y0 == y1:
                    continue
                down = (y1 > y0) == clockwise
                if y0 > y1:
                    x0, y0, x1, y1 = x1, y1, x0, y0
                first = max(0, math.ceil(y0 * LINES - 0.5))
                last = min(len(crossings), math.ceil(y1 * LINES - 0.5))
                for number in range(first, last):
                    x = x0 + (x1 - x0) * ((number + 0.5) / LINES - y0) / (y1 - y0)
                    crossings[number].append((x, 1 if down else -1))
        rows = {}
        for number, found in enumerate(crossings):
            if not found:
                continue
            row = rows.setdefault(number // LINES, [0.0] * self.size)
            winding = 0
            for x, step in sorted(found):
                if winding == 0:
                    start = x
                winding += step
                if winding == 0:
                    _add_span(row, start, x)
        return rows


def _add_span(row, start, end):
    start, end = max(start, 0.0), min(end, float(len(row)))
    for x in range(int(start), math.ceil(end)):
        row[x] += (min(end, x + 1) - max(start, x)) / LINES


def _over(below, colour, alpha):
    total = alpha + below[3] * (1 - alpha)
    channels = (colour[i] + (below[i] - colour[i]) * below[3] * (1 - alpha) / total for i in range(3))
    return (*channels, total)
