"""The sheet of legends: what is engraved or printed on the panel, as one picture that lies over the whole scene.

Red is white paint in an engraving, green a caution colour, blue where the paint is scratched or chipped to the metal.
The materials look themselves up on it by position (see materials.py), so a legend lands on whatever part is below.
"""
import math
import random

from PIL import Image, ImageDraw, ImageFilter, ImageFont

FONT = "/usr/share/fonts/opentype/b612/B612-Bold.otf"
CAP_HEIGHT = 0.715  # of B612's em
FINE = 3  # sheet pixels per artwork pixel
CORNER = 26  # pixels at both ends of an edge, which are round


class LegendSheet:
    def __init__(self, size):
        self.size = size
        self._layers = {name: Image.new("L", (size[0] * FINE, size[1] * FINE), 0) for name in ("ink", "caution", "wear")}
        self._pens = {name: ImageDraw.Draw(layer) for name, layer in self._layers.items()}

    def text(self, words, cx, cy, cap, squeeze=1.0, tracking=0.0):
        """Centres words on a point; cap: height of a capital in pixels; squeeze narrows; tracking in pixels."""
        font = ImageFont.truetype(FONT, round(cap / CAP_HEIGHT * FINE))
        widths = [font.getlength(letter) + tracking * FINE for letter in words]
        height = round(cap * FINE * 2)
        strip = Image.new("L", (math.ceil(sum(widths)), height), 0)
        pen, x = ImageDraw.Draw(strip), tracking * FINE / 2
        for letter, width in zip(words, widths):
            pen.text((x, height / 2 + cap * FINE / 2), letter, 255, font, anchor="ls")
            x += width
        strip = strip.resize((round(strip.width * squeeze), height), Image.LANCZOS)
        at = (round(cx * FINE - strip.width / 2), round(cy * FINE - height / 2))
        self._layers["ink"].paste(255, at, strip)

    def line(self, x0, y0, x1, y1, width, layer="ink"):
        """A stroke with square ends."""
        length = math.hypot(x1 - x0, y1 - y0)
        nx, ny = (y1 - y0) / length * width / 2, (x0 - x1) / length * width / 2
        self.polygon([(x0 + nx, y0 + ny), (x1 + nx, y1 + ny), (x1 - nx, y1 - ny), (x0 - nx, y0 - ny)], layer)

    def polygon(self, points, layer="ink", fill=255):
        self._pens[layer].polygon([(x * FINE, y * FINE) for x, y in points], fill)

    def disc(self, cx, cy, radius, layer="ink", fill=255):
        box = [(cx - radius) * FINE, (cy - radius) * FINE, (cx + radius) * FINE, (cy + radius) * FINE]
        self._pens[layer].ellipse(box, fill)

    def radial(self, cx, cy, degrees, inner, outer, width):
        """A tick; degrees clockwise from straight up."""
        s, c = math.sin(math.radians(degrees)), -math.cos(math.radians(degrees))
        self.line(cx + s * inner, cy + c * inner, cx + s * outer, cy + c * outer, width)

    def arc(self, cx, cy, radius, start, end, width):
        """Degrees clockwise from straight up."""
        box = [(cx - radius) * FINE, (cy - radius) * FINE, (cx + radius) * FINE, (cy + radius) * FINE]
        self._pens["ink"].arc(box, start - 90, end - 90, 255, round(width * FINE))

    def scratch(self, rng, cx, cy, length, degrees, strength=110):
        """A hairline that wanders a little and fades."""
        x, y, heading = cx, cy, math.radians(degrees)
        steps = max(4, int(length / 4))
        for step in range(steps):
            heading += rng.uniform(-0.05, 0.05)
            nx, ny = x + length / steps * math.cos(heading), y + length / steps * math.sin(heading)
            fade = math.sin(math.pi * (step + 0.5) / steps)
            self._pens["wear"].line([x * FINE, y * FINE, nx * FINE, ny * FINE], int(strength * fade), 2)
            x, y = nx, ny

    def chip(self, rng, cx, cy, radius, strength=255):
        """A flake of paint that is gone: an uneven blot."""
        corners = rng.randint(6, 9)
        points = []
        for i in range(corners):
            angle, r = 2 * math.pi * i / corners, radius * rng.uniform(0.45, 1.1)
            points.append((cx + r * math.cos(angle), cy + r * math.sin(angle)))
        self.polygon(points, "wear", strength)

    def rub(self, rng, x, y, along, length, depth, strength):
        """Paint worn away along an edge, from (x, y) in the direction of along, (dx, dy): deepest somewhere in the middle,
        with an uneven inner rim to the left of the direction."""
        (dx, dy), steps, peak = along, max(6, int(length / 3)), rng.uniform(0.3, 0.7)
        points = [(x, y), (x + dx * length, y + dy * length)]
        for step in range(steps - 1, 0, -1):
            share = step / steps
            swell = share / peak if share < peak else (1 - share) / (1 - peak)
            inward = depth * swell**0.6 * rng.uniform(0.6, 1.0)
            points.append((x + dx * length * share + dy * inward, y + dy * length * share - dx * inward))
        self.polygon(points, "wear", strength)

    def save(self, path):
        layers = [layer.filter(ImageFilter.GaussianBlur(0.7)) for layer in self._layers.values()]
        Image.merge("RGB", layers).save(path, compress_level=1)


def swap_icon(sheet, cx, cy, reach, stroke):
    """Two arrows, one each way; reach: half the width."""
    head, gap = stroke * 1.9, stroke * 1.75
    for side in (1, -1):
        y = cy - side * gap
        sheet.line(cx - side * reach, y, cx + side * (reach - head), y, stroke)
        tip = cx + side * (reach + stroke * 0.5)
        sheet.polygon([(tip, y), (tip - side * head * 1.45, y - head * 0.95), (tip - side * head * 1.45, y + head * 0.95)])


def gear_icon(sheet, cx, cy, reach):
    teeth, points = 8, []
    for i in range(teeth):
        for share, r in ((-0.30, 0.76), (-0.19, 1.0), (0.19, 1.0), (0.30, 0.76)):
            angle = 2 * math.pi * (i + share) / teeth
            points.append((cx + reach * r * math.sin(angle), cy - reach * r * math.cos(angle)))
    sheet.polygon(points)
    sheet.disc(cx, cy, reach * 0.36, fill=0)


def pin_icon(sheet, cx, cy, reach):
    def box(x0, y0, x1, y1):
        sheet.polygon([(cx + x0 * reach, cy + y0 * reach), (cx + x1 * reach, cy + y0 * reach),
                       (cx + x1 * reach, cy + y1 * reach), (cx + x0 * reach, cy + y1 * reach)])

    box(-0.52, -1.0, 0.52, -0.74)
    sheet.polygon([(cx + x * reach, cy + y * reach) for x, y in
                   ((-0.34, -0.78), (0.34, -0.78), (0.40, -0.10), (0.74, 0.20), (0.74, 0.34),
                    (-0.74, 0.34), (-0.74, 0.20), (-0.40, -0.10))])
    box(-0.10, 0.30, 0.10, 1.05)


def bar_icon(sheet, cx, cy, reach, stroke):
    sheet.line(cx - reach, cy, cx + reach, cy, stroke)


def worn_plate(sheet, area, seed, rubs, scratches, fasteners=()):
    """Worn edges of the faceplate, most near its corners; chips about its fasteners (x, y, radius); hairlines over it.

    Only a long and faint mark reads as wear where the panel is 900 pixels wide: a short bright one is a faulty pixel.
    """
    rng = random.Random(seed)
    for _ in range(rubs):
        share = rng.betavariate(0.55, 0.55)  # near an end more often than in the middle
        x, y, along, side = rng.choice(_edges(area))
        length = rng.uniform(24, 80)
        start = CORNER + (side - 2 * CORNER - length) * share
        sheet.rub(rng, x + along[0] * start, y + along[1] * start, along, length, rng.uniform(3, 7), rng.randint(60, 125))
    for x, y, radius in fasteners:
        for _ in range(rng.randint(3, 7)):
            angle, reach = rng.uniform(0, 2 * math.pi), radius + abs(rng.gauss(0, 1.6))
            at = (x + reach * math.cos(angle), y + reach * math.sin(angle))
            sheet.chip(rng, *at, rng.uniform(0.7, 2.2), rng.randint(90, 170))
    for _ in range(scratches):
        sheet.scratch(rng, rng.uniform(area.x, area.right), rng.uniform(area.y, area.bottom),
                      rng.uniform(14, 90), rng.uniform(0, 360), rng.randint(30, 95))


def _edges(area):
    """(x, y, direction, length) of each: the plate lies to the left of the direction."""
    return ((area.x, area.y, (0, 1), area.h), (area.x, area.bottom, (1, 0), area.w),
            (area.right, area.bottom, (0, -1), area.h), (area.right, area.y, (-1, 0), area.w))
