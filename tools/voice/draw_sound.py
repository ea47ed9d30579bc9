#!/usr/bin/env python3
"""draw_sound.py OUT.svg NAME=FILE.wav... [--trace TRACE.csv] - draws sounds below each other over the same time: the
spectrogram of each (by sox), their levels in dBFS, and with --trace the squelch's gate and burst gain, as the audition
program writes them. One file without outside parts. Needs sox and python3-minimal."""
import array
import base64
import math
import subprocess
import sys

RATE_HZ = 48000
SPECTRUM_HZ = 8000
LEVEL_SECONDS = 0.02  # of a voice; a sound of less than a second has four times as many
FLOOR_DB = -90.0

WIDTH, LEFT, RIGHT = 1000, 62, 20
ALONE_WIDTH = 560  # of a sound without another to compare
SPECTRUM_HEIGHT, LEVEL_HEIGHT, GATE_HEIGHT, GAP = 150, 120, 56, 34
GROUND, FIELD, LINE, DIM, TEXT = "#12181d", "#0a0e11", "#26313a", "#8b9aa6", "#d7e0e6"
COLOURS = ("#8fa3b3", "#58c7e8", "#f2b24c", "#59d38c")


def sox(*arguments):
    return subprocess.run(["sox", "-V1", *arguments], check=True, stdout=subprocess.PIPE).stdout


def read_samples(path):
    """The first channel, -1..1."""
    plain = ("-t", "raw", "-r", str(RATE_HZ), "-e", "signed", "-b", "16", "-")
    samples = array.array("h", sox("-D", path, *plain, "remix", "1"))
    if not samples:
        sys.exit(f"{path}: no samples")
    return [sample / 32768.0 for sample in samples]


def spectrogram_url(path):
    """0 to SPECTRUM_HZ from the bottom to the top, nothing around it."""
    picture = sox(path, "-n", "remix", "1", "rate", str(2 * SPECTRUM_HZ), "spectrogram", "-r", "-x", "900", "-y", "129",
                  "-z", "80", "-Z", "-8", "-o", "-")
    return "data:image/png;base64," + base64.b64encode(picture).decode("ascii")


def level_db(samples):
    """(seconds, RMS in dBFS) of one piece after the other."""
    size = int(RATE_HZ * LEVEL_SECONDS / (1 if len(samples) > RATE_HZ else 4))
    points = []
    for start in range(0, len(samples) - size + 1, size):
        power = sum(x * x for x in samples[start:start + size]) / size
        level = 10.0 * math.log10(power) if power > 0 else FLOOR_DB
        points.append(((start + size / 2) / RATE_HZ, max(level, FLOOR_DB)))
    return points


def read_trace(path):
    """name -> [(seconds, gain)] of a table whose first column is the time."""
    with open(path, encoding="ascii") as file:
        names, *rows = [line.rstrip("\n").split(",") for line in file]
    return {name: [(float(row[0]), float(row[column])) for row in rows]
            for column, name in enumerate(names) if column > 0}


class Drawing:
    def __init__(self, seconds, width):
        self.seconds = seconds
        self.width = width
        self.height = 12
        self.parts = []

    def x_at(self, seconds):
        return LEFT + (self.width - LEFT - RIGHT) * seconds / self.seconds

    def add(self, part):
        self.parts.append(part)

    def text(self, x, y, text, colour=DIM, anchor="start", size=12):
        self.add(f'<text x="{x:.1f}" y="{y:.1f}" fill="{colour}" text-anchor="{anchor}" '
                 f'font-size="{size}">{text}</text>')

    def field(self, height, titles, unit, marks):
        """A framed plot with its titles above it and marks (value 0..1 from the bottom, text) beside it; its top."""
        x = LEFT
        for title, colour in titles:
            self.text(x, self.height + 12, title, colour, size=13)
            x += 9 * len(title) + 18
        self.text(self.width - RIGHT, self.height + 12, unit, DIM, "end")
        top = self.height + 20
        self.add(f'<rect x="{LEFT}" y="{top}" width="{self.width - LEFT - RIGHT}" height="{height}" '
                 f'fill="{FIELD}" stroke="{LINE}"/>')
        for share, mark in marks:
            y = top + height * (1.0 - share)
            self.add(f'<path d="M{LEFT} {y:.1f}H{self.width - RIGHT}" stroke="{LINE}" stroke-opacity=".7"/>')
            self.text(LEFT - 8, y + 4, mark, DIM, "end", 11)
        self.height = top + height + GAP - 20
        return top

    def curve(self, top, height, points, colour):
        """points: (seconds, 0..1)."""
        path = "L".join(f"{self.x_at(t):.1f} {top + height * (1.0 - min(max(share, 0.0), 1.0)):.1f}"
                        for t, share in points)
        self.add(f'<path d="M{path}" fill="none" stroke="{colour}" stroke-width="1.6" stroke-linejoin="round"/>')

    def time_axis(self):
        step = next(step for step in (0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 60, 600) if self.seconds / step <= 12)
        y = self.height + 2
        for i in range(int(self.seconds / step + 1e-9) + 1):
            x = self.x_at(i * step)
            if x < self.width - RIGHT - 30:
                self.text(x, y, f"{i * step:g}", DIM, "middle", 11)
        self.text(self.width - RIGHT, y, "s", DIM, "end", 11)
        self.height = y + 12

    def svg(self):
        head = (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {self.width} {self.height}" '
                f'width="{self.width}" height="{self.height}" font-family="ui-monospace,\'DejaVu Sans Mono\',Consolas,monospace">'
                f'<rect width="100%" height="100%" fill="{GROUND}"/>')
        return "\n".join([head, *self.parts, "</svg>"]) + "\n"


def draw(sounds, trace):
    """sounds: (name, file)."""
    samples = [read_samples(path) for _, path in sounds]
    drawing = Drawing(max(len(clip) for clip in samples) / RATE_HZ, WIDTH if len(sounds) > 1 else ALONE_WIDTH)
    for index, (name, path) in enumerate(sounds):
        marks = [(hz / SPECTRUM_HZ, f"{hz / 1000:g}") for hz in (2000, 4000, 6000)]
        top = drawing.field(SPECTRUM_HEIGHT, [(name, COLOURS[index])], "kHz", marks)
        drawing.add(f'<image x="{LEFT}" y="{top}" width="{drawing.x_at(len(samples[index]) / RATE_HZ) - LEFT:.1f}" '
                    f'height="{SPECTRUM_HEIGHT}" preserveAspectRatio="none" href="{spectrogram_url(path)}"/>')
    marks = [(1.0 - db / FLOOR_DB, str(db)) for db in (-20, -40, -60, -80)]
    titles = [(name, COLOURS[index]) for index, (name, _) in enumerate(sounds)]
    top = drawing.field(LEVEL_HEIGHT, titles if len(titles) > 1 else [("level", COLOURS[0])], "dBFS", marks)
    for index, clip in enumerate(samples):
        points = [(t, 1.0 - db / FLOOR_DB) for t, db in level_db(clip)]
        drawing.curve(top, LEVEL_HEIGHT, points, COLOURS[index])
    if trace:
        titles = [(name, COLOURS[2 + index]) for index, name in enumerate(trace)]
        top = drawing.field(GATE_HEIGHT, titles, "squelch gain", [(0.0, "0"), (1.0, "1")])
        for (_, colour), points in zip(titles, trace.values()):
            drawing.curve(top, GATE_HEIGHT, points, colour)
    drawing.time_axis()
    return drawing.svg()


def main(arguments):
    trace = None
    if "--trace" in arguments:
        at = arguments.index("--trace")
        trace = read_trace(arguments[at + 1])
        arguments = arguments[:at] + arguments[at + 2:]
    if len(arguments) < 2 or not all("=" in argument for argument in arguments[1:]):
        sys.exit(__doc__)
    picture = draw([argument.split("=", 1) for argument in arguments[1:]], trace)
    with open(arguments[0], "w", encoding="utf-8") as file:
        file.write(picture)


if __name__ == "__main__":
    main(sys.argv[1:])
