#!/usr/bin/env python3
"""Draws the program's icons and writes them to resources/icons.

Every size is drawn for itself on whole pixels; no picture is scaled. A dark outline carries the pictures on a light
taskbar, a light body on a dark one, where the outline is not seen: so what belongs together touches inside it. Battery levels
differ in their bars as well as in colour.
"""
import struct
import sys
import zlib
from pathlib import Path

sys.dont_write_bytecode = True
from raster import Canvas, arc, circle, line, rectangle, rounded

FOLDER = Path(__file__).resolve().parents[1] / "icons"
SMALL_SIZES = (16, 20, 24, 32, 40, 48, 256)
LARGE_SIZES = SMALL_SIZES + (64,)
PNG_FROM = 256  # pixels; smaller pictures are plain, as old programs expect them

INK = (24, 34, 44)
BODY = (246, 249, 251)
SHADE = (206, 215, 223)
METAL = (146, 158, 168)
GREEN = (40, 167, 69)
AMBER = (245, 158, 11)
RED = (220, 30, 44)
YELLOW = (255, 205, 30)
BLUE = (32, 124, 214)
TEAL = (0, 176, 178)
DEEP_TEAL = (0, 122, 135)

# The battery on its side, for each size of the picture. The numbers add up to the picture's width:
# 2 outlines, 2 rims, 3 bars, 2 gaps, and the pole.
#        outline, rim, bar, gap, height inside the rim, pole width, pole height
BATTERY = {
    16: (1, 1, 3, 1, 7, 1, 5),
    20: (1, 1, 4, 1, 8, 2, 6),
    24: (1, 1, 5, 1, 11, 3, 7),
    32: (2, 2, 6, 2, 12, 2, 8),
    40: (2, 2, 8, 2, 16, 4, 10),
    48: (3, 2, 10, 2, 20, 4, 12),
    64: (4, 3, 13, 3, 26, 5, 16),
    256: (10, 8, 56, 8, 116, 36, 72),
}
OUTLINE = {size: row[0] for size, row in BATTERY.items()}


class BatteryCase:
    """The empty case; the insides are painted on it. Upright, the same case stands on its end."""

    def __init__(self, size, upright, fill=BODY):
        self.canvas = Canvas(size)
        self.upright = upright
        outline, rim, self.bar, self.gap, self.inside, pole, pole_height = BATTERY[size]
        self.line = outline
        self.height = self.inside + 2 * (outline + rim)
        self.width = 2 * (outline + rim) + 3 * self.bar + 2 * self.gap
        self.left = (size - self.width - pole) // 2
        self.top = (size - self.height) // 2
        self.rim = outline + rim
        middle = self.top + self.height / 2
        right = self.left + self.width
        corner = 0.6 + 1.4 * outline
        self.paint(rounded(self.left, self.top, right, self.top + self.height, corner), INK)
        self.paint(rounded(self.left + outline, self.top + outline, right - outline, self.top + self.height - outline,
                           corner - outline), fill)
        self.paint(rectangle(right - outline, middle - pole_height / 2, right + pole, middle + pole_height / 2), METAL)

    def paint(self, shapes, colour):
        if isinstance(shapes[0], tuple):
            shapes = [shapes]
        if self.upright:
            shapes = [[(y, self.canvas.size - x) for x, y in shape] for shape in shapes]
        self.canvas.fill(shapes, colour)

    def bars(self, count, colour):
        for number in range(count):
            left = self.left + self.rim + number * (self.bar + self.gap)
            top = self.top + self.rim
            self.paint(rectangle(left, top, left + self.bar, top + self.inside), colour)

    def middle(self):
        """The middle of the inside, on the canvas."""
        x, y = self.left + self.width / 2, self.top + self.height / 2
        return (y, self.canvas.size - x) if self.upright else (x, y)


def draw_level(size, upright, bars, colour):
    case = BatteryCase(size, upright)
    case.bars(bars, colour)
    return case.canvas


def draw_empty(size, upright):
    """A red battery with an exclamation mark: needs no colour to be told from the others."""
    case = BatteryCase(size, upright, RED)
    x, y = case.middle()
    width = max(2, 2 * round(size / 16))
    height = (case.inside + 2) if not upright else case.inside + 4
    x, top = round(x - width / 2), round(y - height / 2)
    dot = width
    case.canvas.fill(rectangle(x, top, x + width, top + height - dot - max(1, width // 2)), BODY)
    case.canvas.fill(rectangle(x, top + height - dot, x + width, top + height), BODY)
    return case.canvas


def draw_charging(size, upright):
    case = BatteryCase(size, upright, GREEN)
    draw_bolt(case.canvas, *case.middle(), size / (19 if upright else 16), case.line)
    return case.canvas


def draw_bolt(canvas, x, y, unit, outline):
    bolt = [(x + dx * unit, y + dy * unit)
            for dx, dy in ((1.5, -6.5), (-3.5, 1), (-0.5, 1), (-1.5, 6.5), (3.5, -1.5), (0.5, -1.5))]
    canvas.fill(line(bolt + bolt[:1], 2 * outline) + [bolt], INK)
    canvas.fill(bolt, YELLOW)


def draw_unknown(size, upright):
    case = BatteryCase(size, upright)
    x, y = case.middle()
    unit = size / 16
    stroke = max(1.5, 1.4 * unit)
    y -= 0.4 * unit
    hook = arc(x, y - 1.1 * unit, 1.7 * unit, 190, 390) + [(x, y + 1.0 * unit)]
    case.canvas.fill(line(hook, stroke), INK)
    case.canvas.fill(circle(x, y + 3.2 * unit, stroke * 0.6), INK)
    return case.canvas


def draw_mains(size):
    """A plug, pins up."""
    canvas = Canvas(size)
    edge = OUTLINE[size]
    unit = lambda number: round(number * size / 16)
    middle, shoulder, bottom = size // 2, unit(5), unit(12)
    reach, bend, cable = unit(6), unit(5), unit(1)
    for left in (middle - unit(5), middle + unit(1)):
        right = left + unit(4)
        canvas.fill(rounded(left, 0, right, shoulder + edge, edge, edge, 0, 0), INK)
        canvas.fill(rectangle(left + edge, edge, right - edge, shoulder + edge), BODY)
    canvas.fill(rectangle(middle - cable - edge, bottom, middle + cable + edge, size), INK)
    canvas.fill(rounded(middle - reach, shoulder, middle + reach, bottom + edge, edge, edge, bend, bend), INK)
    canvas.fill(rounded(middle - reach + edge, shoulder + edge, middle + reach - edge, bottom, 0, 0,
                        bend - edge, bend - edge), BLUE)
    canvas.fill(rectangle(middle - cable, bottom, middle + cable, size), METAL)
    for left in (middle - unit(5), middle + unit(1)):
        canvas.fill(rectangle(left + edge, shoulder, left + unit(4) - edge, shoulder + edge), BODY)
    return canvas


def draw_press(canvas, left, top, unit, edge, button):
    """A round push button and the hand that presses it, on a grid of 16 units."""
    x = lambda number: left + round(number * unit)
    y = lambda number: top + round(number * unit)
    middle, radius = (x(1) + x(15)) / 2, (x(15) - x(1)) / 2
    for inset, colour in ((0, INK), (edge, BODY), (edge + max(1, round(unit)), button)):
        canvas.fill(circle(middle, y(0) + radius, radius - inset), colour)

    thumb = [(left + dx * unit, top + dy * unit) for dx, dy in ((4.2, 10.2), (7.2, 13.2), (10, 14.3))]
    for inset, colour in ((0, INK), (edge, BODY)):
        def block(x0, y0, x1, y1, *radii):
            return rounded(x(x0) + inset, y(y0) + inset, x(x1) - inset, y(y1) - inset,
                           *(max(0, part * unit - inset) for part in radii))
        forefinger = block(6, 4, 10, 14, 2, 2, 0, 0)
        fist = block(6, 8, 16, 16, 0, 2.5, 3, 5)
        canvas.fill([forefinger, fist] + line(thumb, 3.4 * unit - 2 * inset), colour)
    if unit >= 2:
        for gap in (10, 12, 14):
            canvas.fill(rectangle(x(gap) - edge, y(8) + edge, x(gap), y(10.7)), INK)


def draw_tool(size):
    canvas = Canvas(size)
    draw_press(canvas, 0, 0, size / 16, OUTLINE[size], TEAL)
    return canvas


def draw_program(size):
    canvas = Canvas(size)
    canvas.fill(rounded(0, 0, size, size, size * 0.2), DEEP_TEAL)
    margin = round(size * 3 / 32)
    draw_press(canvas, margin, margin, (size - 2 * margin) / 16, max(1, size // 24), AMBER)
    return canvas


LEVELS = {"high": (3, GREEN), "medium": (2, GREEN), "low": (1, AMBER)}


def pictures():
    """Name of each icon file, its sizes, and what draws one size."""
    for family, upright, sizes in (("battery", False, SMALL_SIZES), ("meter", True, LARGE_SIZES)):
        for level, (bars, colour) in LEVELS.items():
            yield f"{family}_{level}", sizes, lambda size, how=(upright, bars, colour): draw_level(size, *how)
        yield f"{family}_empty", sizes, lambda size, upright=upright: draw_empty(size, upright)
        yield f"{family}_unknown", sizes, lambda size, upright=upright: draw_unknown(size, upright)
    yield "charging", SMALL_SIZES, lambda size: draw_charging(size, False)
    yield "meter_charging", LARGE_SIZES, lambda size: draw_charging(size, True)
    yield "mains", SMALL_SIZES, draw_mains
    yield "meter_mains", LARGE_SIZES, draw_mains
    yield "tool", SMALL_SIZES, draw_tool
    yield "program", LARGE_SIZES, draw_program


def png_image(canvas):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    rows = bytearray()
    for row in canvas.pixels:
        rows.append(0)  # no filter
        for red, green, blue, alpha in row:
            rows += bytes((round(red), round(green), round(blue), round(alpha * 255)))
    header = struct.pack(">IIBBBBB", canvas.size, canvas.size, 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def icon_image(canvas):
    """One picture of an icon file: a large one as PNG, else header, rows from the bottom as blue, green, red, alpha,
    then the mask of holes for screens that know no alpha."""
    size = canvas.size
    if size >= PNG_FROM:
        return png_image(canvas)
    colours, mask = bytearray(), bytearray()
    for row in reversed(canvas.pixels):
        for red, green, blue, alpha in row:
            colours += bytes((round(blue), round(green), round(red), round(alpha * 255)))
        holes = "".join("1" if alpha < 0.5 else "0" for *_, alpha in row).ljust((size + 31) // 32 * 32, "0")
        mask += int(holes, 2).to_bytes(len(holes) // 8, "big")
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, len(colours) + len(mask), 0, 0, 0, 0)
    return header + colours + mask


def icon_file(images):
    """An icon file of (size, image) pairs: directory, then the images."""
    offset = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for size, image in images:
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    return directory + b"".join(image for _, image in images)


def files():
    """Every file of the folder: name and bytes."""
    return {f"{name}.ico": icon_file([(size, icon_image(draw(size))) for size in sizes])
            for name, sizes, draw in pictures()}


if __name__ == "__main__":
    FOLDER.mkdir(exist_ok=True)
    for name, content in files().items():
        (FOLDER / name).write_bytes(content)
