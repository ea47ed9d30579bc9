"""BOEING: a warm grey-brown painted faceplate, white engraved legends, square keys below light bars, a large knob pair."""
from bench import Style
from fasteners import quarter_turn
from knobs import add_knob, engrave_volume_scale
from legends import worn_plate
from parts import add_display, add_key, add_lamp, add_strip

LIGHT, KNOB_LIGHT, EXPOSURE = 1.15, 0.8, 1.0
PRIMER = (0.36, 0.35, 0.32)

STYLE = Style(
    paint=dict(color=(0.165, 0.142, 0.115), rough=0.55, grain=0.9, grain_pixels=3.2, speckle=0.09, mottle=0.07, wear=PRIMER,
               rub=(0.26, 0.235, 0.20), engrave=1.4),
    keys=dict(color=(0.052, 0.050, 0.047), rough=0.46, grain=0.15, grain_pixels=3, speckle=0.07, engrave=0.6,
              rub=(0.095, 0.092, 0.088)),
    knob=dict(color=(0.085, 0.084, 0.082), rough=0.48, grain=0.1, engrave=0.8),
    face=dict(color=(0.125, 0.124, 0.122), rough=0.46, engrave=0.8),
    bezel=dict(color=(0.028, 0.028, 0.029), rough=0.38, rub=(0.09, 0.09, 0.09)),
    key_height=15, key_draft=3, key_shoulder=4, bezel_width=13, knob_height=54,
    flutes=28, flute_depth=0.06, flute_sharpness=1.6,
    labels={4: ("ACTIVE", 26, 0.94), 5: ("STBY", 26, 0.94), 6: ("AUTO", 26, 0.94),
            2: ("COM1", 26, 0.94), 3: ("COM2", 26, 0.94),
            14: ("TEXT", 26, 0.94), 15: ("B", 26, 1)},
    label_drop={6: 7},
)

FASTENERS = ((80, 96, 62), (80, 784, 40), (1772, 784, 48), (1662, 96, 55))  # x, y, degrees


def build(bench):
    panel, sheet = bench.panel, bench.sheet
    for key in panel.keys:
        if key.round:
            add_knob(bench, key.rect, pair=key.id == 9)
            continue
        add_key(bench, key)
        if key.lamp and key.lamp.rect.y < key.rect.y:
            add_lamp(bench, key.lamp)
    for words, rect in zip(("ACTIVE", "STANDBY"), (panel.displays[0], panel.displays[1])):
        add_display(bench, rect)
        sheet.text(words, rect.cx, rect.y - 46, 27, tracking=2)
    add_strip(bench, panel.strip)
    for name, lamp in panel.lamps.items():
        add_lamp(bench, lamp)
        sheet.text(name, lamp.rect.cx, lamp.rect.y - 22, 23)
    volume, tuning = panel.key(7).rect, panel.key(9).rect
    engrave_volume_scale(bench, volume, 13, 9, 3.6)
    sheet.text("VOL", volume.cx, volume.bottom + 32, 25)
    sheet.text("FREQ", tuning.cx, tuning.y - 38, 25, tracking=1)
    for x, y, degrees in FASTENERS:
        quarter_turn(bench, x, y, 22, degrees)
    worn_plate(sheet, bench.plate, seed=11, rubs=26, scratches=44,
               fasteners=[(x, y, 32) for x, y, _ in FASTENERS])
