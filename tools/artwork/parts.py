"""What is mounted on the faceplate: keys, displays, the status strip and lamps."""
from bench import FLOOR, grow
from legends import bar_icon, gear_icon, pin_icon, swap_icon
from panel_tables import LIGHT_BAR, ROUND_LAMP, Rect
from shapes import circle, loft, rounded, shoulder

SWAP, PIN, SETTINGS, MINIMIZE = 1, 10, 11, 12
KEY_RADIUS = 8  # of the program's sprites


def add_key(bench, key):
    """A key cap that fills its rectangle, its legend and its lamp, if that sits on the cap."""
    style, rect = bench.style, key.rect
    small = min(rect.w, rect.h) < 64
    gap = 2.2 if small else style.key_gap
    height, draft, edge = style.key_height, style.key_draft, style.key_shoulder
    if small:
        height, draft, edge = height * 0.75, min(draft, 2), min(edge, 3)
    bench.cut(rounded(grow(rect, gap), KEY_RADIUS + gap), 1.2 if gap < 3 else 1.8)
    top = draft + edge
    levels = [(0, FLOOR), (0, 2), (draft, height - edge)] + shoulder(edge, height - edge, height, draft)[1:]
    levels += [(top + 6, height - 0.6), (top + 12, height - 1.0)] if not small else [(top + 3, height - 0.3)]
    loft(rounded(rect, KEY_RADIUS), levels, bench.key, smooth_degrees=60)
    _label(bench, key)
    if key.lamp and _inside(key.lamp.rect, rect):
        add_lamp(bench, key.lamp, height - 1.0)


def _label(bench, key):
    """A key without a label stays blank: it has nothing to say."""
    sheet, rect = bench.sheet, key.rect
    cy = rect.cy + bench.style.label_drop.get(key.id, 0)
    reach = min(rect.w, rect.h)
    if key.id == SWAP:
        swap_icon(sheet, rect.cx, cy, min(rect.w * 0.27, reach * 0.42), max(5.0, reach * 0.058))
    elif key.id == SETTINGS:
        gear_icon(sheet, rect.cx, cy, reach * 0.31)
    elif key.id == PIN:
        pin_icon(sheet, rect.cx, cy, reach * 0.29)
    elif key.id == MINIMIZE:
        bar_icon(sheet, rect.cx, cy, reach * 0.27, max(5.0, reach * 0.085))
    elif key.id in bench.style.labels:
        words, cap, squeeze = bench.style.labels[key.id]
        sheet.text(words, rect.cx, cy, cap, squeeze)


def add_lamp(bench, lamp, z=None):
    """An unlit lamp: on a key's top at height z, or let into the faceplate."""
    rect = lamp.rect
    if lamp.style == ROUND_LAMP:
        base = 0 if z is None else z
        radius = rect.radius
        collar = [(0, base - 2), (0, base + 1.5), (1.2, base + 3), (3.6, base + 3), (5, base + 0.5), (5, base - 3)]
        loft(circle(rect.cx, rect.cy, radius + 5), collar, bench.bezel, cap=False)
        dome = [(0, base - 2)] + shoulder(radius * 0.75, base - 1, base + 3.5, 0.2)
        loft(circle(rect.cx, rect.cy, radius), dome, bench.lens, smooth_degrees=80)
        return
    if z is None:
        frame, base = 3.5, -1.5
        bench.cut(rounded(grow(rect, frame - 1), 4), 1.5)
        levels = [(0, -12), (0, 2.2), (0.8, 3), (frame - 1, 3), (frame, 1.5), (frame, -12)]
        loft(rounded(grow(rect, frame), 4.5), levels, bench.bezel, cap=False)
    else:
        base = z + 3.0
        levels = [(0, z - 9), (0, z + 2.2), (0.6, z + 2.8), (1.4, z + 2.8), (2, z)]
        loft(rounded(grow(rect, 2), 3), levels, bench.bezel, cap=False)
    loft(rounded(rect, 1.5), [(0, base - 8), (0, base - 2.5)], bench.lens)
    if lamp.style == LIGHT_BAR:
        _ribs(bench, rect, base)
    else:
        loft(rounded(grow(rect, -1.5), 3), [(0, base - 3), (1, base)] + shoulder(6, base, base + 1.5, 1.5), bench.lens)


def _ribs(bench, rect, base):
    """Upright prisms in the lens of a light bar."""
    count = round(rect.w / 7)
    pitch = rect.w / count
    for i in range(count):
        rib = Rect(rect.x + i * pitch + 0.4, rect.y + 1, pitch - 0.8, rect.h - 2)
        loft(rounded(rib, 1.2), [(0, base - 3), (0.4, base - 0.8), (1.6, base)], bench.lens, smooth_degrees=60)


def add_display(bench, rect):
    """The window of a display; its glass stays empty, the program fills it."""
    width = bench.style.bezel_width
    if width:
        bench.cut(rounded(grow(rect, width - 2), 9), 1.5)
        levels = [(0, -6), (0, 4)] + shoulder(3, 4, 8)[1:]
        levels += [(width * 0.52, 8), (width * 0.60, 7.3), (width - 1.5, 1.5), (width, -2), (width, -14)]
        loft(rounded(grow(rect, width), 12), levels, bench.bezel, cap=False)
    else:
        bench.cut(rounded(grow(rect, 3), 6), 3)
        loft(rounded(grow(rect, 3.2), 6), [(0, -9), (0, -7), (3.2, -7.5), (3.2, -14)], bench.dark, cap=False)
    loft(rounded(grow(rect, 1), 2), [(0, -16), (0, -11)], bench.glass)


def add_strip(bench, rect):
    """The annunciator strip: smoked, empty, let into the faceplate."""
    bench.cut(rounded(grow(rect, 2), 7), 2.5)
    loft(rounded(grow(rect, 2.2), 7), [(0, -9), (0, -5.5), (2.4, -6.5), (2.4, -12)], bench.dark, cap=False)
    loft(rounded(grow(rect, 1), 5), [(0, -14), (0, -9)], bench.glass)


def _inside(inner, outer):
    return outer.x <= inner.x and outer.y <= inner.y and inner.right <= outer.right and inner.bottom <= outer.bottom
