"""What holds a faceplate: socket screws, cross-head screws and quarter-turn fasteners; and the guard of a key."""
import math

from bench import grow
from panel_tables import Rect
from shapes import circle, flat_with_holes, loft, rounded, shoulder


def socket_screw(bench, cx, cy, radius, degrees):
    hexagon = [_turned(radius * 0.56, degrees + 60 * i) for i in range(6)]
    _screw(bench, cx, cy, radius, hexagon, dome=0)


def cross_screw(bench, cx, cy, radius, degrees):
    arm, half = radius * 0.66, radius * 0.13
    quarter = [(half, half), (half, arm), (-half, arm)]  # one arm and the corner before it
    cross = []
    for turn in range(4):
        angle = math.radians(90 * turn + degrees)
        cross += [(x * math.cos(angle) - y * math.sin(angle), x * math.sin(angle) + y * math.cos(angle)) for x, y in quarter]
    _screw(bench, cx, cy, radius, cross, dome=2.5)


def quarter_turn(bench, cx, cy, radius, degrees):
    """A large head with one broad slot, in a cup with a raised ring."""
    angle = math.radians(degrees)
    arm, half = radius * 0.80, radius * 0.14
    corners = [(arm, half), (-arm, half), (-arm, -half), (arm, -half)]
    slot = [(x * math.cos(angle) - y * math.sin(angle), x * math.sin(angle) + y * math.cos(angle)) for x, y in corners]
    ring = [(0, -4), (0, 1.5), (1.2, 2.6), (4.2, 2.6), (5.5, 1), (5.5, -10)]
    loft(circle(cx, cy, radius + 9), ring, bench.steel_dull, cap=False)
    _screw(bench, cx, cy, radius, slot, dome=2.0, clearance=3.5)


def _screw(bench, cx, cy, radius, recess, dome, clearance=2.5):
    head = bench.materials.spun("head", (0.36, 0.36, 0.365), 0.40, cx, cy, 1.5, 0.3)
    bench.cut(circle(cx, cy, radius + clearance), 2.2)
    edge = radius * 0.16
    loft(circle(cx, cy, radius), [(0, -12)] + shoulder(edge, -1, 1.5 + dome), head, cap=False, smooth_degrees=60)
    flat_with_holes([circle(cx, cy, radius - edge)(0), [(cx + x, cy + y) for x, y in recess]], 1.5 + dome, head)
    walls = [(cx + x, cy + y) for x, y in recess]
    loft(lambda inset: walls, [(0, -6), (0, 1.5 + dome)], bench.steel_dull, cap=False, smooth_degrees=10)
    loft(circle(cx, cy, radius - 1), [(0, -9), (0, -6)], bench.dark)


def _turned(radius, degrees):
    return (radius * math.cos(math.radians(degrees)), radius * math.sin(math.radians(degrees)))


def guard(bench, rect, gap=6, width=13, height=24):
    """A raised frame about a key that must not be pressed by accident, striped in a caution colour."""
    outer = grow(rect, gap + width)
    levels = [(0, -2), (0, height - 5)] + shoulder(4, height - 5, height)[1:]
    levels += [(inset, z) for inset, z in ((width - 3, height), (width - 1, height - 1), (width, height - 4), (width, -6))]
    loft(rounded(outer, 14), levels, bench.guard, cap=False)
    for side in (outer.y + 6.5, outer.bottom - 6.5):  # stripes above and below the key
        _stripes(bench, Rect(outer.x + 16, side - 4.5, outer.w - 32, 9))


def _stripes(bench, rect):
    pitch, lean = 14, rect.h
    x = rect.x
    while x + pitch / 2 + lean <= rect.right + 0.5:
        right = x + pitch / 2
        bench.sheet.polygon([(x, rect.bottom), (x + lean, rect.y), (right + lean, rect.y), (right, rect.bottom)], "caution")
        x += pitch
