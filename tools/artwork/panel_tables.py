"""Reads panel/panel_tables.inc, the table the program's layout is made of, so that art and hotspots cannot drift apart.

Plain Python: both the Blender scenes and check_art.py use it. Lengths are pixels of the theme's artwork, y down.
"""
import re
from dataclasses import dataclass, field
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
TABLES = ROOT / "panel" / "panel_tables.inc"
THEMES = ("general", "boeing", "airbus")

LIGHT_BAR, SQUARE_LAMP, ROUND_LAMP = 0, 1, 2


@dataclass(frozen=True)
class Rect:
    x: float
    y: float
    w: float
    h: float

    @property
    def cx(self):
        return self.x + self.w / 2

    @property
    def cy(self):
        return self.y + self.h / 2

    @property
    def right(self):
        return self.x + self.w

    @property
    def bottom(self):
        return self.y + self.h

    @property
    def radius(self):
        """Of the largest circle inside."""
        return min(self.w, self.h) / 2


@dataclass(frozen=True)
class Lamp:
    rect: Rect
    style: int


@dataclass(frozen=True)
class Key:
    id: int
    rect: Rect
    round: bool
    lamp: Lamp | None


@dataclass
class Panel:
    theme: str
    area: Rect  # what the window shows
    displays: dict = field(default_factory=dict)  # 0 ACTIVE, 1 STANDBY -> Rect
    strip: Rect | None = None
    lamps: dict = field(default_factory=dict)  # "TX", "RX" -> Lamp
    keys: list = field(default_factory=list)

    @property
    def image_size(self):
        """The artwork has the same margin behind the visible area as before it."""
        return int(2 * self.area.x + self.area.w), int(2 * self.area.y + self.area.h)

    def key(self, key_id):
        return next((key for key in self.keys if key.id == key_id), None)


def read_panel(theme, path=TABLES):
    """The panel of a theme ("general", "boeing", "airbus"); raises ValueError when the table has no such theme."""
    panel = None
    for row, columns in re.findall(r"^([A-Z_]+)\((.*)\)\s*$", Path(path).read_text(), re.MULTILINE):
        name, *rest = [column.strip() for column in columns.split(",")]
        if name.lower() != theme:
            continue
        if row == "THEME":
            panel = Panel(theme, _rect(rest))
        elif row == "DISPLAY":
            panel.displays[int(rest[0])] = _rect(rest[1:])
        elif row == "STRIP":
            panel.strip = _rect(rest)
        elif row == "LAMP":
            panel.lamps[rest[0]] = Lamp(_rect(rest[1:]), int(rest[5]))
        elif row == "KEY":
            panel.keys.append(Key(int(rest[0]), _rect(rest[1:]), rest[5] == "true", None))
        elif row == "LIT_KEY":
            lamp = Lamp(_rect(rest[6:]), int(rest[10]))
            panel.keys.append(Key(int(rest[0]), _rect(rest[1:]), rest[5] == "true", lamp))
        else:
            raise ValueError(f"{path}: unknown row {row}")
    if panel is None:
        raise ValueError(f"{path} has no theme {theme}")
    return panel


def _rect(columns):
    return Rect(*(float(column) for column in columns[:4]))
