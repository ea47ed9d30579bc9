"""GENERAL: a modern radio. Near-black anodised face, thin bright engraving, large soft-touch keys with round lamps."""
from bench import Style
from fasteners import socket_screw
from knobs import add_knob, engrave_volume_scale
from legends import worn_plate
from parts import add_display, add_key, add_lamp, add_strip

LIGHT, KNOB_LIGHT, EXPOSURE = 1.25, 0.9, 1.0
ALUMINIUM = (0.42, 0.43, 0.45)

STYLE = Style(
    paint=dict(color=(0.020, 0.021, 0.023), rough=0.40, grain=0.35, grain_pixels=2.2, speckle=0.10, mottle=0.06,
               wear=ALUMINIUM, wear_metallic=0.7, rub=(0.10, 0.105, 0.11)),
    keys=dict(color=(0.040, 0.041, 0.044), rough=0.56, grain=0.12, grain_pixels=3, speckle=0.07, engrave=0.5,
              rub=(0.060, 0.061, 0.064)),
    knob=dict(color=(0.030, 0.031, 0.033), rough=0.46, engrave=0.6),
    face=dict(color=(0.050, 0.052, 0.055), rough=0.42, metallic=0.4, engrave=0.6),
    bezel=dict(color=(0.045, 0.047, 0.050), rough=0.34, metallic=0.3),
    plate_inset=2, plate_bevel=2.5, plate_radius=16, key_height=17, key_draft=4, key_shoulder=6, bezel_width=0,
    knob_height=50, flutes=36, flute_depth=0.055,
    labels={4: ("ACTIVE", 34, 0.94), 5: ("STBY", 34, 0.94), 6: ("AUTO", 34, 0.94),
            2: ("COM1", 34, 0.94), 3: ("COM2", 34, 0.94),
            24: ("TEXT", 29, 0.72)},
    label_drop={4: 34, 5: 34, 6: 34, 2: 34, 3: 34},
)

FASTENERS = ((80, 112, 11), (80, 634, 37), (1968, 634, 52), (1968, 110, 24))  # x, y, degrees


def build(bench):
    panel, sheet = bench.panel, bench.sheet
    for key in panel.keys:
        add_knob(bench, key.rect) if key.round else add_key(bench, key)
    for words, rect in zip(("ACTIVE", "STANDBY"), (panel.displays[0], panel.displays[1])):
        add_display(bench, rect)
        _bracket(sheet, words, rect.cx, rect.y - 50)
    add_strip(bench, panel.strip)
    for name, lamp in panel.lamps.items():
        add_lamp(bench, lamp)
        sheet.text(name, lamp.rect.cx, lamp.rect.y - 27, 31, tracking=2)
    volume = panel.key(7).rect
    engrave_volume_scale(bench, volume, 13, 11, 3)
    sheet.text("VOL", volume.x - 92, volume.cy, 28)
    for x, y, degrees in FASTENERS:
        socket_screw(bench, x, y, 15, degrees)
    worn_plate(sheet, bench.plate, seed=3, rubs=16, scratches=11,
               fasteners=[(x, y, 20) for x, y, _ in FASTENERS])


def _bracket(sheet, words, cx, cy):
    """A legend between two fine lines that turn down towards their display."""
    sheet.text(words, cx, cy, 29, tracking=3)
    for side in (-1, 1):
        sheet.line(cx + side * 112, cy, cx + side * 184, cy, 3)
        sheet.line(cx + side * 182.5, cy, cx + side * 182.5, cy + 16, 3)
