#!/usr/bin/python3
"""Checks resources/panel_*.png against the layout table: what the program relies on is there, and nothing in its way.

check_art.py            checks the three pictures; exits 1 and says what is wrong
check_art.py --prove    damages the pictures in memory, a way for each check, and exits 1 if a damage goes unnoticed
Needs python3-numpy and python3-pil.
"""
import sys

sys.dont_write_bytecode = True
import numpy as np
from PIL import Image

from panel_tables import ROOT, THEMES, read_panel

MAX_TOTAL_BYTES = 6_000_000  # the DLL with all three stays below 8 MB
MAX_CORNER_ALPHA = 40  # contact shadow
MAX_GLASS_LUMA = 48  # the program's own ground is 39
MAX_GLASS_SPREAD = 24  # an empty glass has no digits on it
MAX_UNLIT_LUMA = 70
MIN_OUTLINE_CONTRAST = 10
MIN_LEGEND_LUMA = 150
MIN_LEGEND_SHARE = 0.003  # of the key's area; the bar of a minimize key is the least
UNASSIGNED = 13  # the one key that stays blank: a mark on it would promise something
MAX_KNOB_SWING = 9  # levels, about the axis, once flutes are averaged
MIN_POINTER_CONTRAST = 60
BLANK_MARGIN = 2  # pixels of a glass's edge that may hold the shadow of its frame


def picture_path(theme):
    return ROOT / "resources" / f"panel_{theme}.png"


def luma(pixels):
    return pixels[..., :3].astype(np.float32) @ np.array([0.299, 0.587, 0.114], np.float32)


def crop(image, rect, inset=0):
    x0, y0 = round(rect.x + inset), round(rect.y + inset)
    return image[y0 : round(rect.bottom - inset), x0 : round(rect.right - inset)]


def check_size(panel, pixels):
    height, width = pixels.shape[:2]
    if (width, height) != panel.image_size:
        yield f"is {width} x {height}, the layout wants {panel.image_size[0]} x {panel.image_size[1]}"


def check_surround(panel, pixels):
    alpha, area = pixels[..., 3], panel.area
    outside = alpha.copy()
    crop(outside, area)[:] = 0
    if outside.any():
        yield f"has {np.count_nonzero(outside)} pixels that are not transparent outside the panel area"
    inside = crop(alpha, area)
    corners = inside[[0, 0, -1, -1], [0, -1, 0, -1]]
    if corners.max() > MAX_CORNER_ALPHA:
        yield f"has a panel area whose corners are not transparent (alpha {corners.max()})"
    if inside[inside.shape[0] // 2, inside.shape[1] // 2] != 255 or (inside == 255).mean() < 0.97:
        yield "has a faceplate with holes in it, or one that does not fill the panel area"
    edge = inside[:10, inside.shape[1] // 3]
    if not ((edge > 0) & (edge < 255)).any():
        yield "has a faceplate without a soft edge"


def check_glass(panel, pixels):
    light = luma(pixels)
    for name, rect in (("display 0", panel.displays[0]), ("display 1", panel.displays[1]), ("status strip", panel.strip)):
        glass = crop(light, rect, BLANK_MARGIN)
        brightest = np.percentile(glass, 99.9)
        if brightest > MAX_GLASS_LUMA or brightest - np.median(glass) > MAX_GLASS_SPREAD:
            yield f"has a {name} that is not dark and empty (luma {np.median(glass):.0f}, up to {brightest:.0f})"


def check_lamps(panel, pixels):
    light = luma(pixels)
    lamps = {f"element {key.id}": key.lamp for key in panel.keys if key.lamp} | panel.lamps
    for name, lamp in lamps.items():
        mean = crop(light, lamp.rect).mean()
        if mean > MAX_UNLIT_LUMA:
            yield f"has a lit lamp: {name}, luma {mean:.0f}"


def check_keys(panel, pixels):
    light = luma(pixels)
    for key in panel.keys:
        if key.round:
            continue
        for side, profile in edge_profiles(light, key.rect).items():
            gap, face = profile[:6].min(), profile[12:18].mean()  # the gap lies outside the edge, the cap inside
            if face - gap < MIN_OUTLINE_CONTRAST:
                yield f"has a key without an outline: element {key.id}, {side} ({face:.0f} beside {gap:.0f})"
        share = (crop(light, key.rect, 4) > MIN_LEGEND_LUMA).mean()
        if key.id == UNASSIGNED:
            if share > 0:
                yield f"has a mark on the unassigned key: element {key.id}"
        elif share < MIN_LEGEND_SHARE:
            yield f"has a key without a legend: element {key.id}"


def edge_profiles(light, rect):
    """side -> luma across that edge, from 6 pixels outside to 12 inside, averaged over the middle of the side."""
    x0, y0, x1, y1 = (round(v) for v in (rect.x, rect.y, rect.right, rect.bottom))
    across = slice(x0 + round(rect.w * 0.2), x1 - round(rect.w * 0.2))
    down = slice(y0 + round(rect.h * 0.2), y1 - round(rect.h * 0.2))
    return {
        "top": light[y0 - 6 : y0 + 12, across].mean(axis=1),
        "bottom": light[y1 - 12 : y1 + 6, across].mean(axis=1)[::-1],
        "left": light[down, x0 - 6 : x0 + 12].mean(axis=0),
        "right": light[down, x1 - 12 : x1 + 6].mean(axis=0)[::-1],
    }


def check_knobs(panel, pixels):
    light = luma(pixels)
    for key in panel.keys:
        if not key.round:
            continue
        reach = max(key.rect.w, key.rect.h) / 2  # what the program cuts out, and turns
        radii = np.arange(4, reach - 1)
        polar = sample_polar(light, key.rect.cx, key.rect.cy, radii)
        plain = np.roll(polar, -20, axis=1)[:, : 360 - 40]  # without the pointer
        windows = plain.reshape(len(radii), 8, 40).mean(axis=2)  # 40 degrees hold several flutes
        bands = np.array([band.mean(axis=0) for band in np.array_split(windows, max(3, len(radii) // 8))])
        swing = (bands.max(axis=1) - bands.min(axis=1)).max()
        if swing > MAX_KNOB_SWING:
            yield f"has a knob that is not lit evenly: element {key.id}, {swing:.1f} levels about its axis"
        ring = (radii > key.rect.radius * 0.62) & (radii < key.rect.radius * 0.80)
        contrast = polar[ring][:, [359, 0, 1]].mean() - np.median(polar[ring])
        if contrast < MIN_POINTER_CONTRAST:
            yield f"has a knob without a pointer straight up: element {key.id} ({contrast:.0f} levels)"


def sample_polar(light, cx, cy, radii):
    """Rows: radii; columns: degrees clockwise from straight up."""
    angles = np.radians(np.arange(360))
    x = cx + np.outer(radii, np.sin(angles)) - 0.5
    y = cy - np.outer(radii, np.cos(angles)) - 0.5
    return light[np.rint(y).astype(int), np.rint(x).astype(int)]


CHECKS = (check_surround, check_glass, check_lamps, check_keys, check_knobs)


def complaints(panel, pixels):
    wrong_size = list(check_size(panel, pixels))
    return wrong_size or [message for check in CHECKS for message in check(panel, pixels)]


# --- the checks, checked: (name, what it does to a copy of the picture) -------------------------------------------------


def _paint(rect_of, value):
    def damage(panel, pixels):
        crop(pixels, rect_of(panel))[:, :, :3] = value

    return damage


def _digit_on_glass(panel, pixels):
    glass = crop(pixels, panel.displays[1])
    glass[20:80, 40:52, :3] = 200


def _opaque_corner(panel, pixels):
    crop(pixels, panel.area)[:6, :6, 3] = 255


def _speck_outside(panel, pixels):
    pixels[3, 3, 3] = 90


def _hard_edge(panel, pixels):
    alpha = crop(pixels, panel.area)[..., 3]
    alpha[:] = np.where(alpha > 127, 255, 0)


def _key_without_outline(panel, pixels):
    rect = panel.keys[0].rect
    x, y, right = round(rect.x), round(rect.y), round(rect.right)
    pixels[y - 6 : y + 12, x:right, :3] = pixels[y + 12, x:right, :3].mean(axis=0)


def _key_without_legend(panel, pixels):
    face = crop(pixels, panel.key(2).rect, 5)[..., :3]
    face[face > 90] = 50


def _mark_on_the_unassigned_key(panel, pixels):
    rect = panel.key(UNASSIGNED).rect
    pixels[round(rect.cy) - 2 : round(rect.cy) + 2, round(rect.cx) - 14 : round(rect.cx) + 14, :3] = 220


def _knob_lit_from_the_left(panel, pixels):
    face = crop(pixels, panel.key(7).rect)
    ramp = np.linspace(12, -12, face.shape[1])[None, :, None]
    face[..., :3] = np.clip(face[..., :3] + ramp, 0, 255)


def _knob_turned(panel, pixels):
    face = crop(pixels, panel.key(7).rect)
    face[:] = face[::-1].copy()


DAMAGES = (
    ("a speck outside", _speck_outside),
    ("an opaque corner", _opaque_corner),
    ("a hard edge", _hard_edge),
    ("a digit on the glass", _digit_on_glass),
    ("a bright strip", _paint(lambda panel: panel.strip, 90)),
    ("a lit TX lamp", _paint(lambda panel: panel.lamps["TX"].rect, (250, 170, 40))),
    ("a lit AUTO lamp", _paint(lambda panel: panel.key(6).lamp.rect, (90, 250, 90))),
    ("a key without an outline", _key_without_outline),
    ("a key without a legend", _key_without_legend),
    ("a mark on the unassigned key", _mark_on_the_unassigned_key),
    ("a knob lit from the left", _knob_lit_from_the_left),
    ("a knob that points down", _knob_turned),
)


def prove(theme, panel, pixels):
    before = set(complaints(panel, pixels))
    damages = [(name, damage) for name, damage in DAMAGES
               if damage is not _mark_on_the_unassigned_key or panel.key(UNASSIGNED)]
    missed = [name for name, damage in damages if not set(complaints(panel, _damaged(panel, pixels, damage))) - before]
    if not set(complaints(panel, pixels[:-1])) - before:
        missed.append("a row that is missing")
    for name in missed:
        print(f"check_art.py: {theme}: did not notice {name}", file=sys.stderr)
    return not missed


def _damaged(panel, pixels, damage):
    copy = pixels.copy()
    damage(panel, copy)
    return copy


def main(arguments):
    good, total = True, 0
    for theme in THEMES:
        panel, path = read_panel(theme), picture_path(theme)
        total += path.stat().st_size
        with Image.open(path) as image:
            if image.mode != "RGBA":
                print(f"{path.name} is {image.mode}, not RGBA", file=sys.stderr)
                good = False
                continue
            pixels = np.asarray(image).copy()
        if "--prove" in arguments:
            good = prove(theme, panel, pixels) and good
        for message in complaints(panel, pixels):
            print(f"{path.name} {message}", file=sys.stderr)
            good = False
    if total > MAX_TOTAL_BYTES:
        print(f"the three pictures have {total} bytes, more than {MAX_TOTAL_BYTES}", file=sys.stderr)
        good = False
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
