"""Draws the icon of the installers, the program and the browser extension in all sizes: tools/icon.py writes
packaging/Detection.ico and extension/icon*.png."""

import struct
import zlib
from pathlib import Path

SIZES = (16, 20, 24, 32, 40, 48, 64, 256)  # from lists at 100 % to tiles at 400 %
EXTENSION_SIZES = (16, 48, 128)
PNG_SIZE = 256  # the size that the system expects compressed
SAMPLES = 4  # of each pixel, in both directions
GROUND, TICK = (0x1F, 0x5A, 0x8A), (0xFF, 0xFF, 0xFF)
# In units of the icon's edge:
CORNER, WIDTH = 0.16, 0.055  # radius of the corners, half the width of the tick's strokes
STROKES = (((0.25, 0.5), (0.42, 0.7)), ((0.42, 0.7), (0.78, 0.28)))


def _distance(x, y, start, end):
    """The distance of a point from a stroke."""
    (left, top), (right, bottom) = start, end
    across, down = right - left, bottom - top
    place = ((x - left) * across + (y - top) * down) / (across * across + down * down)
    place = min(1, max(0, place))
    return ((x - left - place * across) ** 2 + (y - top - place * down) ** 2) ** 0.5


def _sample(x, y):
    """Whether a point is on the ground, and whether on the tick."""
    outside = [max(0, CORNER - edge) for edge in (min(x, 1 - x), min(y, 1 - y))]
    is_ground = outside[0] ** 2 + outside[1] ** 2 <= CORNER ** 2
    return is_ground, is_ground and any(_distance(x, y, *stroke) <= WIDTH for stroke in STROKES)


def draw(size):
    """The rows of an image from the top, each pixel as red, green, blue and opacity."""
    places = [(i + 0.5) / (size * SAMPLES) for i in range(size * SAMPLES)]
    rows = []
    for row in range(size):
        pixels = []
        for column in range(size):
            samples = [_sample(x, y) for y in places[row * SAMPLES:(row + 1) * SAMPLES]
                       for x in places[column * SAMPLES:(column + 1) * SAMPLES]]
            ground, tick = (sum(sample[kind] for sample in samples) for kind in (0, 1))
            share = tick / ground if ground else 0
            colour = [round(low + (high - low) * share) for low, high in zip(GROUND, TICK)] if ground else [0, 0, 0]
            pixels.append((*colour, round(255 * ground / len(samples))))
        rows.append(pixels)
    return rows


def bitmap(rows):
    """An image as icons hold it: from the bottom, with an empty mask, as the opacity replaces it."""
    size = len(rows)
    header = struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, 0, 0, 0, 0, 0)
    colours = b"".join(bytes((blue, green, red, opacity)) for row in reversed(rows) for red, green, blue, opacity in row)
    return header + colours + bytes((size + 31) // 32 * 4 * size)


def png(rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    size = len(rows)
    lines = b"".join(b"\0" + bytes(part for pixel in row for part in pixel) for row in rows)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">2I5B", size, size, 8, 6, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


def icon():
    """The file of all sizes."""
    images = [(size, png(draw(size)) if size == PNG_SIZE else bitmap(draw(size))) for size in SIZES]
    position = 6 + 16 * len(images)
    directory = struct.pack("<3H", 0, 1, len(images))
    for size, image in images:
        directory += struct.pack("<4B2H2I", size % 256, size % 256, 0, 0, 1, 32, len(image), position)
        position += len(image)
    return directory + b"".join(image for _, image in images)


if __name__ == "__main__":
    root = Path(__file__).resolve().parents[1]
    (root / "packaging" / "Detection.ico").write_bytes(icon())
    for edge in EXTENSION_SIZES:
        (root / "extension" / f"icon{edge}.png").write_bytes(png(draw(edge)))
