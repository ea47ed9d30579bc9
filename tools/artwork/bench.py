"""The workbench a theme is put together on: the panel's numbers, its legend sheet, its surfaces and the faceplate."""
from dataclasses import dataclass, field

from legends import LegendSheet
from materials import Materials
from panel_tables import Rect
from shapes import flat_with_holes, loft, rounded, shoulder

FLOOR = -13  # pixels: how deep one sees beside a key


def grow(rect, by):
    return Rect(rect.x - by, rect.y - by, rect.w + 2 * by, rect.h + 2 * by)


@dataclass(frozen=True)
class Style:
    """What makes a theme's parts look the way they do. Colours are linear; lengths artwork pixels."""

    paint: dict  # the faceplate, for Materials.legended
    keys: dict  # key caps, likewise
    knob: dict  # knobs, likewise
    face: dict  # the knobs' turned tops, likewise
    bezel: dict  # display frames, likewise
    key_height: float = 15
    key_draft: float = 3  # how much narrower the top is than the foot, each side
    key_shoulder: float = 4
    key_gap: float = 2.5  # between a key and the faceplate
    plate_inset: float = 3  # of the faceplate within the visible area: room for its soft edge
    plate_radius: float = 26
    plate_bevel: float = 5  # all holes lie further in than inset and bevel
    bezel_width: float = 12  # 0: no frame, the glass lies behind a chamfered window
    knob_height: float = 46
    flutes: int = 40
    flute_depth: float = 0.05  # share of the radius
    flute_sharpness: float = 1.0
    rim_color: tuple = (0.16, 0.165, 0.17)  # of the knobs' polished rims
    labels: dict = field(default_factory=dict)  # element id -> (words, cap height, squeeze)
    label_drop: dict = field(default_factory=dict)  # element id -> pixels below the key's middle


class Bench:
    def __init__(self, panel, style, sheet_path):
        self.panel = panel
        self.style = style
        self.sheet = LegendSheet(panel.image_size)
        self._sheet_path = sheet_path
        self.sheet.save(sheet_path)
        self.materials = Materials(sheet_path, panel.image_size)
        self.paint = self.materials.legended("paint", **style.paint)
        self.key = self.materials.legended("key", **style.keys)
        self.knob = self.materials.legended("knob", **style.knob)
        self.bezel = self.materials.legended("bezel", **style.bezel)
        self.dark = self.materials.plain("dark", (0.010, 0.010, 0.011), 0.6, specular=0.2)
        self.glass = self.materials.plain("glass", (0.0070, 0.0085, 0.0090), 0.12, specular=0.30)
        self.lens = self.materials.plain("lens", (0.010, 0.011, 0.011), 0.20, specular=0.4)
        self.steel = self.materials.plain("steel", (0.42, 0.42, 0.43), 0.33, 1.0)
        self.steel_dull = self.materials.plain("steel dull", (0.20, 0.20, 0.203), 0.45, 1.0)
        self.knob_rim = self.materials.plain("knob rim", style.rim_color, 0.30, 0.7)
        self.guard = self.materials.legended("guard", (0.020, 0.021, 0.022), 0.45, engrave=0.3, rub=(0.10, 0.10, 0.10))
        self._holes = []  # (outline, bevel)

    @property
    def plate(self):
        return grow(self.panel.area, -self.style.plate_inset)

    def knob_face(self, cx, cy):
        """The turned top of the knob at (cx, cy)."""
        return self.materials.legended("face", **self.style.face, turned=(cx, cy))

    def cut(self, outline, bevel=2.5):
        """Cuts a hole into the faceplate; outline as in shapes.py, at its narrowest."""
        self._holes.append((outline, bevel))

    def build_faceplate(self):
        """Call once, after everything that cuts."""
        style = self.style
        edge = rounded(self.plate, style.plate_radius)
        faces = [edge(style.plate_bevel)] + [outline(-bevel) for outline, bevel in self._holes]
        flat_with_holes(faces, 0, self.paint)
        bevel = style.plate_bevel
        loft(edge, [(0, -40)] + shoulder(bevel, -bevel, 0), self.paint, cap=False)
        for outline, bevel in self._holes:
            loft(outline, [(0, FLOOR)] + [(-inset, z) for inset, z in shoulder(bevel, -bevel, 0)], self.paint, cap=False)
        loft(rounded(grow(self.plate, -4), style.plate_radius), [(0, FLOOR - 10), (0, FLOOR)], self.dark)

    def save_sheet(self):
        self.sheet.save(self._sheet_path)
        self.materials.reload()

