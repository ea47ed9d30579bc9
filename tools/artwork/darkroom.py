"""From render passes to the picture: removes the sampling noise from the light, puts colour back, develops.

Light and colour are rendered apart, so only the light is smoothed and legends and grain stay as sharp as they are.
"""
from pathlib import Path

import bpy
import numpy as np
from PIL import Image, ImageFilter

_KERNEL = ((-2, 0.0625), (-1, 0.25), (0, 0.375), (1, 0.25), (2, 0.0625))


def load_passes(folder, names, box=None):
    """name -> float32 rows from the top, RGBA; of the box (x, y, w, h) only, if there is one."""
    passes = {}
    for name in names:
        picture = bpy.data.images.load(str(Path(folder) / f"{name}.exr"))
        pixels = np.empty(picture.size[0] * picture.size[1] * 4, np.float32)
        picture.pixels.foreach_get(pixels)
        passes[name] = pixels.reshape(picture.size[1], picture.size[0], 4)[::-1][_window(box)].copy()
        bpy.data.images.remove(picture)
    return passes


def _window(box):
    if box is None:
        return np.s_[:, :]
    x, y, w, h = (int(side) for side in box)
    return np.s_[y : y + h, x : x + w]


def compose(passes, rounds=5):
    """Linear RGB (not premultiplied) and alpha."""
    guide = np.concatenate([passes["Denoising Normal"][..., :3] * 3.0,
                            np.minimum(passes["Denoising Depth"][..., :1], 30) * 8.0], axis=2)
    lights = [passes[kind + "Dir"][..., :3] + passes[kind + "Ind"][..., :3] for kind in ("Diff", "Gloss")]
    diffuse, glossy = smooth(lights, guide, rounds)
    color = diffuse * passes["DiffCol"][..., :3] + glossy * passes["GlossCol"][..., :3] + passes["Emit"][..., :3]
    alpha = passes["Alpha"][..., :1]
    return color / np.maximum(alpha, 1e-3), alpha


def smooth(lights, guide, rounds, tone_sigma=0.9):
    """Edge-keeping wavelet filter: the first round goes by the shapes alone, the others ever less across steps in light."""
    lights = [np.minimum(light, np.percentile(light, 99.9) * 1.5) for light in lights]  # single bright samples
    for index in range(rounds):
        step = 1 << max(index - 1, 0)
        sigma = np.float32(tone_sigma * 0.6**index if index else 1e3)
        guide_at = _shifter(guide, 2 * step)
        lights_at = [_shifter(light, 2 * step) for light in lights]
        tones_at = [_shifter(np.log(light.mean(axis=2) + 0.02), 2 * step) for light in lights]
        totals = [np.zeros_like(light) for light in lights]
        weights = [np.zeros(guide.shape[:2], np.float32) for _ in lights]
        for dy, wy in _KERNEL:
            for dx, wx in _KERNEL:
                x, y = dx * step, dy * step
                bend = guide_at(x, y) - guide
                bend = 4 * np.einsum("ijk,ijk->ij", bend, bend)
                for light_at, tone_at, total, weight in zip(lights_at, tones_at, totals, weights):
                    apart = (tone_at(x, y) - tone_at(0, 0)) / sigma
                    share = np.exp(-apart * apart - bend) * np.float32(wx * wy)
                    total += light_at(x, y) * share[..., None]
                    weight += share
        lights = [total / weight[..., None] for total, weight in zip(totals, weights)]
    return lights


def _shifter(a, reach):
    """Returns a function (dx, dy) -> the picture moved by that much, at most reach; its edge repeats."""
    height, width = a.shape[:2]
    padded = np.pad(a, [(reach, reach), (reach, reach)] + [(0, 0)] * (a.ndim - 2), mode="edge")
    return lambda dx, dy: padded[reach + dy : reach + dy + height, reach + dx : reach + dx + width]


def develop(linear, exposure):
    """Filmic curve and sRGB: 0..1."""
    x = np.maximum(linear * exposure, 0)
    curve = np.clip(x * (2.51 * x + 0.03) / (x * (2.43 * x + 0.59) + 0.14), 0, 1)
    return np.where(curve <= 0.0031308, curve * 12.92, 1.055 * np.power(curve, 1 / 2.4) - 0.055)


def paste_round(picture, patch, at, radius):
    """Lays the circle inside a square patch over the picture, its edge two pixels soft; at: the patch's corner."""
    height, width = patch.shape[:2]
    rows, columns = np.mgrid[0:height, 0:width]
    distance = np.hypot(columns + 0.5 - width / 2, rows + 0.5 - height / 2)
    share = np.clip((radius + 1 - distance) / 2, 0, 1)[..., None]
    place = np.s_[at[1] : at[1] + height, at[0] : at[0] + width]
    picture[place] = picture[place] * (1 - share) + patch * share


def lay_over(picture, patch, part, box, soft=6):
    """Lays the part (x, y, w, h) of a patch that fills the box over the picture; its edge fades over soft pixels."""
    x, y, w, h = box
    rows, columns = np.mgrid[y : y + h, x : x + w]
    beside = np.maximum(np.maximum(part[0] - columns, columns - (part[0] + part[2] - 1)), 0)
    above = np.maximum(np.maximum(part[1] - rows, rows - (part[1] + part[3] - 1)), 0)
    share = np.clip(1 - np.maximum(beside, above) / soft, 0, 1)[..., None]
    place = np.s_[y : y + h, x : x + w]
    picture[place] = np.round(picture[place] * (1 - share) + patch * share)


def print_picture(path, rgb, alpha, area):
    """Writes the PNG."""
    save_picture(path, printed(rgb, alpha, area))


def save_picture(path, pixels):
    Image.fromarray(np.uint8(pixels), "RGBA").save(path, optimize=True)


def printed(rgb, alpha, area, shadow=0.45):
    """RGBA, 0..255: a faint contact shadow about the plate, nothing outside the visible area."""
    plate = Image.fromarray(np.uint8(np.round(alpha[..., 0] * 255)))
    around = np.asarray(plate.filter(ImageFilter.GaussianBlur(3)), np.float32)[..., None] / 255 * shadow
    inside = np.zeros_like(alpha)
    inside[max(int(area.y), 0) : max(int(area.bottom), 0), max(int(area.x), 0) : max(int(area.right), 0)] = 1
    whole = (alpha + (1 - alpha) * around) * inside
    color = rgb * alpha / np.maximum(whole, 1e-3)
    color = np.where(whole > 0, np.clip(color, 0, 1), 0)
    return np.round(np.concatenate([color, np.clip(whole, 0, 1)], axis=2) * 255)
