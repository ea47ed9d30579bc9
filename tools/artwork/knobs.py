"""Knobs. The program cuts them out as circles and turns them, so they are round about their middle and point up.

The even light that falls on them is the stage's business (stage.py).
"""
from bench import FLOOR
from shapes import circle, flat_with_holes, fluted, loft, shoulder

INNER_SHARE = 0.46  # of the outer knob's radius: the program cuts the inner one out there
VOLUME_SPAN = 135  # degrees left and right of straight up, 0 % and 100 %
UNITY_PERCENT = 80


def add_knob(bench, rect, pair=False):
    radius, style = rect.radius, bench.style
    clearance = max(rect.w, rect.h) / 2 - radius + 3.5  # the sprite is cut along the rectangle's ellipse: dark up to there
    bench.cut(circle(rect.cx, rect.cy, radius + clearance), 2.5)
    height = style.knob_height * (0.9 if pair else 1)
    _body(bench, rect, radius, -2, height, style.flutes)
    if pair:
        inner = radius * INNER_SHARE
        _body(bench, rect, inner - 0.5, height, style.knob_height * 0.9, max(18, round(style.flutes * 0.6)))
        _pointer(bench, rect, inner * 0.30, inner * 0.84, 6)
        _pointer(bench, rect, inner + radius * 0.10, radius * 0.84, 8)
    else:
        _pointer(bench, rect, radius * 0.30, radius * 0.84, max(5.5, radius * 0.075))


def _body(bench, rect, radius, foot, height, flutes):
    """A sloping skirt, a fluted grip that narrows upwards, a polished rim and a face dished within it."""
    style, cx, cy = bench.style, rect.cx, rect.cy
    top, skirt = foot + height, foot + height * 0.22
    low = FLOOR if foot < 0 else foot - 40  # the inner knob's foot stands below the outer one's face
    slope = shoulder(radius * 0.05, foot + 1, skirt)
    loft(circle(cx, cy, radius), [(0, low)] + slope + [(radius * 0.2, skirt + 1)], bench.knob, cap=False)
    grip, taper, round_off = radius * 0.945, radius * 0.075, max(2.5, radius * 0.035)
    outline = fluted(cx, cy, grip, flutes, style.flute_depth * radius, style.flute_sharpness)
    levels = [(0, skirt), (taper * 0.35, skirt + (top - skirt) * 0.5), (taper, top - round_off)]
    loft(outline, levels + shoulder(round_off, top - round_off, top, taper)[1:], bench.knob, cap=False, smooth_degrees=50)
    face = grip - taper - round_off - style.flute_depth * radius - 0.5
    flat_with_holes([outline(taper + round_off), circle(cx, cy, face)(0)], top, bench.knob)
    rim = max(1.6, radius * 0.028)
    chamfer = [(0, top - 0.3), (rim * 0.5, top + rim * 0.7), (rim, top + rim * 0.8), (rim * 1.6, top + rim * 0.3)]
    loft(circle(cx, cy, face), chamfer, bench.knob_rim, cap=False, smooth_degrees=60)
    hollow, depth = face - rim * 1.5, radius * 0.20
    dish = [(hollow * share, top + rim * 0.3 - depth * (1 - (1 - share) ** 2)) for share in (i / 12 for i in range(12))]
    loft(circle(cx, cy, hollow), dish, bench.knob_face(cx, cy), smooth_degrees=60)


def _pointer(bench, rect, start, end, width):
    bench.sheet.line(rect.cx, rect.cy - start, rect.cx, rect.cy - end, width)


def engrave_volume_scale(bench, rect, inner, length, width=3.2):
    """A tick each 10 %; the one of unity gain is longer."""
    for percent in range(0, 101, 10):
        degrees = VOLUME_SPAN * (percent - 50) / 50
        reach = length * (1.0 if percent not in (0, 100) else 1.25)
        thick = width
        if percent == UNITY_PERCENT:
            reach, thick = length * 1.7, width * 1.5
        bench.sheet.radial(rect.cx, rect.cy, degrees, rect.radius + inner, rect.radius + inner + reach, thick)
