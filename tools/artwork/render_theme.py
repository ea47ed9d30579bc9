"""Renders one theme. Run by render.sh: blender -b -noaudio --factory-startup -P render_theme.py -- THEME SAMPLES OUT.png

With ARTWORK_BOX=x,y,w,h in the environment it renders only that part: a quick look while working on a scene.
With ARTWORK_PARTS="x,y,w,h x,y,w,h ..." it renders only those and lays them over the picture there is in resources/:
for a change that concerns nothing else, no knob among it.
"""
import importlib
import math
import os
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))
import bpy
import numpy as np
from PIL import Image

import darkroom
from bench import Bench
from panel_tables import ROOT, Rect, read_panel
from stage import PASSES, Stage

THREADS = 2
MARGIN = 16  # pixels about a part that are rendered with it: smoothing looks so far


def main(theme, samples, out):
    panel = read_panel(theme)
    part = [float(side) for side in os.environ["ARTWORK_BOX"].split(",")] if "ARTWORK_BOX" in os.environ else None
    scene = importlib.import_module(f"theme_{theme}")
    bpy.ops.wm.read_factory_settings(use_empty=True)
    with tempfile.TemporaryDirectory() as folder:
        bench = Bench(panel, scene.STYLE, Path(folder) / "legends.png")
        scene.build(bench)
        bench.build_faceplate()
        bench.save_sheet()

        stage = Stage(panel.image_size, samples, THREADS)
        stage.light_room(scene.LIGHT)
        if "ARTWORK_PARTS" in os.environ:
            return _retouch(panel, stage, scene, folder, out)
        stage.render(folder, part)
        linear, alpha = darkroom.compose(darkroom.load_passes(folder, PASSES))
        picture = darkroom.develop(linear, scene.EXPOSURE)

        stage.light_evenly(scene.KNOB_LIGHT)
        # A knob at a time, and only what the program turns: little to render.
        for knob in (key.rect for key in panel.keys if key.round and (not part or _shows(part, key.rect))):
            reach = max(knob.w, knob.h) / 2 + 2
            box = _square(knob, reach + 6)
            stage.render(folder, box)
            linear, _ = darkroom.compose(darkroom.load_passes(folder, PASSES, box))
            darkroom.paste_round(picture, darkroom.develop(linear, scene.EXPOSURE), box[:2], reach)
        darkroom.print_picture(out, picture, alpha, panel.area)


def _retouch(panel, stage, scene, folder, out):
    picture = np.asarray(Image.open(ROOT / "resources" / f"panel_{panel.theme}.png"), np.float32).copy()
    height, width = picture.shape[:2]
    for words in os.environ["ARTWORK_PARTS"].split():
        x, y, w, h = part = [int(side) for side in words.split(",")]
        left, top = max(x - MARGIN, 0), max(y - MARGIN, 0)
        box = (left, top, min(x + w + MARGIN, width) - left, min(y + h + MARGIN, height) - top)
        stage.render(folder, box, cropped=True)
        linear, alpha = darkroom.compose(darkroom.load_passes(folder, PASSES))
        area = Rect(panel.area.x - left, panel.area.y - top, panel.area.w, panel.area.h)
        darkroom.lay_over(picture, darkroom.printed(darkroom.develop(linear, scene.EXPOSURE), alpha, area), part, box)
    darkroom.save_picture(out, picture)


def _square(rect, reach):
    """Whole pixels about the rectangle's middle, which stays the square's middle: (x, y, w, h)."""
    x, y = math.floor(rect.cx - reach), math.floor(rect.cy - reach)
    return x, y, round(2 * (rect.cx - x)), round(2 * (rect.cy - y))


def _shows(part, rect):
    x, y, w, h = part
    return x < rect.right and rect.x < x + w and y < rect.bottom and rect.y < y + h


main(sys.argv[-3], int(sys.argv[-2]), sys.argv[-1])
