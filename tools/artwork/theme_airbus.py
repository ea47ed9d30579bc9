"""AIRBUS: blue-grey paint, black keys with small square lamps, framed displays, a guarded AUTO key."""
from bench import Style
from fasteners import cross_screw, guard
from knobs import add_knob, engrave_volume_scale
from legends import worn_plate
from parts import add_display, add_key, add_lamp, add_strip

LIGHT, KNOB_LIGHT, EXPOSURE = 1.0, 0.8, 1.0
PRIMER = (0.34, 0.36, 0.36)

STYLE = Style(
    paint=dict(color=(0.080, 0.122, 0.158), rough=0.50, grain=0.8, grain_pixels=3.0, speckle=0.09, mottle=0.06, wear=PRIMER,
               rub=(0.16, 0.21, 0.25), engrave=1.4),
    keys=dict(color=(0.020, 0.021, 0.023), rough=0.42, grain=0.12, grain_pixels=3, speckle=0.07, engrave=0.6,
              rub=(0.055, 0.057, 0.06)),
    knob=dict(color=(0.060, 0.062, 0.066), rough=0.46, grain=0.1, engrave=0.8),
    face=dict(color=(0.092, 0.096, 0.102), rough=0.42, engrave=0.8),
    bezel=dict(color=(0.022, 0.023, 0.025), rough=0.36, rub=(0.08, 0.085, 0.09)),
    plate_bevel=6, key_height=16, key_draft=3.5, key_shoulder=5, bezel_width=14, knob_height=52,
    flutes=44, flute_depth=0.045,
    labels={4: ("ACT", 29, 0.96), 5: ("STBY", 29, 0.96), 6: ("AUTO", 25, 0.94),
            2: ("COM1", 29, 0.94), 3: ("COM2", 29, 0.94),
            14: ("TEXT", 29, 0.96), 15: ("B", 29, 1), 16: ("C", 29, 1), 17: ("D", 29, 1), 18: ("E", 29, 1)},
)

FASTENERS = ((58, 84, 20), (58, 924, 66), (1558, 924, 41), (1476, 88, 8))  # x, y, degrees


def build(bench):
    panel, sheet = bench.panel, bench.sheet
    for key in panel.keys:
        if key.round:
            add_knob(bench, key.rect, pair=key.id == 9)
            continue
        add_key(bench, key)
        if key.lamp:
            add_lamp(bench, key.lamp)
    guard(bench, panel.key(6).rect)
    for words, rect in zip(("ACTIVE", "STANDBY"), (panel.displays[0], panel.displays[1])):
        add_display(bench, rect)
        sheet.text(words, rect.cx, rect.y - 46, 26, tracking=2)
    add_strip(bench, panel.strip)
    for name, lamp in panel.lamps.items():
        add_lamp(bench, lamp)
        sheet.text(name, lamp.rect.x - 34, lamp.rect.cy, 22)
    volume, tuning = panel.key(7).rect, panel.key(9).rect
    engrave_volume_scale(bench, volume, 13, 10, 3.2)
    sheet.text("VOL", volume.cx, volume.bottom + 34, 23)
    sheet.text("FREQ", tuning.cx, tuning.y - 36, 24, tracking=1)
    for x, y, degrees in FASTENERS:
        cross_screw(bench, x, y, 19, degrees)
    worn_plate(sheet, bench.plate, seed=7, rubs=24, scratches=40,
               fasteners=[(x, y, 24) for x, y, _ in FASTENERS])
