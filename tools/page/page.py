#!/usr/bin/env python3
"""page.py OUT PACKAGE [--full] [--restarts] - makes OUT/index.html of what run.sh left in OUT: the flight on a time
axis with its checks, the pictures, the sounds. One page that needs no network and nothing outside OUT; python3-minimal
is enough. Ends with 1, and says why, if the record is not one of a whole flight or if something is missing that a
newcomer is to see or hear; the page is written all the same, as far as it goes."""
import os
import re
import sys

import drawing
import record
from drawing import escape

WINDOWS = (
    ("panel_general_connected_100.png", "GENERAL"),
    ("panel_boeing_connected_100.png", "BOEING"),
    ("panel_airbus_connected_100.png", "AIRBUS"),
    ("messages_clearance_100.png", "Text messages"),
    ("settings_general_en_100.png", "Settings, General"),
    ("settings_voice_en_100.png", "Settings, Voice"),
    ("settings_radio_en_100.png", "Settings, Radio"),
    ("settings_about_en_100.png", "Settings, About"),
)
# picture, title, sounds: (file, what it is)
VOICE = (
    ("voice_received.svg", "A voice through the radio, as others are heard",
     (("voice_before.wav", "before"), ("voice_received.wav", "after"))),
)
OWN_VOICE = (
    ("voice_own.svg", "The own voice as it is sent, with noise reduction", (("voice_own.wav", "as sent"),)),
)
SOUNDS = (
    ("radio_tail.svg", "Squelch tail after a transmission", (("radio_tail.wav", "squelch tail"),)),
    ("text_alert.svg", "Chime for a text message", (("text_alert.wav", "chime"),)),
)
FILES = ("timeline.txt", "restarts.txt", "flight.tsv", "circuit.txt", "client.log", "hopline_worker.log",
         "simulator.log")
HEADS = {".png": b"\x89PNG\r\n\x1a\n", ".wav": b"RIFF", ".svg": b"<svg"}
WAV_HEADER = 44


def problem_of(path):
    """Why the file is nothing to show; empty if it is fine."""
    try:
        with open(path, "rb") as file:
            content = file.read()
    except OSError:
        return "is missing"
    kind = os.path.splitext(path)[1]
    if not content.startswith(HEADS.get(kind, b"")) or not content:
        return "is damaged"
    if kind == ".wav" and not any(content[WAV_HEADER:]):
        return "is silent"
    return ""


class Page:
    def __init__(self, folder, package, is_full, has_restarts):
        self.folder = folder
        self.package = package
        self.is_full = is_full
        self.has_restarts = has_restarts
        self.problems = []
        self.required = set()
        try:
            self.events = record.parse(self.read("flight.tsv"))
        except record.RecordError as error:
            self.events = None
            self.problems.append(f"flight.tsv: {error}")

    def read(self, name):
        try:
            with open(os.path.join(self.folder, name), encoding="utf-8", errors="replace") as file:
                return file.read()
        except OSError:
            return ""

    def need(self, name):
        """The file is one the page must have; what to write in its place if it is not there."""
        self.required.add(name)
        problem = problem_of(os.path.join(self.folder, name))
        if not problem:
            return ""
        self.problems.append(f"{name} {problem}")
        return f'<p class="missing">{escape(name)} {problem}</p>'

    def tile(self, title, value, style=""):
        return f'<div class="tile {style}"><b>{escape(value)}</b><span>{escape(title)}</span></div>'

    def tiles(self):
        tiles = []
        if self.events:
            end = self.events[-1]
            style = "good" if end.what == end.value else "bad"
            tiles.append(self.tile("checks passed", f"{end.what} / {end.value}", style))
            outcomes = [request.outcome for request in record.requests(self.events)]
            tiles.append(self.tile("moves made of those asked for", f"{outcomes.count('moved')} / {len(outcomes)}"))
            others = f"{outcomes.count('refused')}, {outcomes.count('unanswered')}"
            tiles.append(self.tile("refused, unanswered", others))
            tiles.append(self.tile("flown", f"{end.ms / 1000:.0f} s"))
        else:
            tiles.append(self.tile("no whole flight was recorded", "FAILED", "bad"))
        if os.path.exists(self.package):
            name = os.path.basename(self.package)
            size = f"{os.path.getsize(self.package) / 1e6:.1f} MB"
            tiles.append(self.tile(f"ready to install, in dist/, {size}", name, "wide"))
        else:
            self.problems.append(f"{self.package} is missing")
            tiles.append(self.tile("the package is missing", "FAILED", "bad"))
        return f'<div class="tiles">{"".join(tiles)}</div>'

    def flight(self):
        if not self.events:
            return f'<p class="missing">{escape(self.problems[0])}</p>'
        return drawing.draw(self.events) + drawing.legend() + self.checks()

    def checks(self):
        cards = []
        for number, leg in enumerate(record.legs(self.events), 1):
            if not leg.checks:
                continue
            items = "".join(f'<li class="{check.what}">{escape(check.value)}</li>' for check in leg.checks)
            cards.append(f"<section><h3><i>{number}</i>{escape(leg.title)}</h3><ul>{items}</ul></section>")
        return f'<div class="checks">{"".join(cards)}</div>'

    def picture(self, name, caption):
        file = f"pictures/{name}"
        shown = self.need(file) or f'<a href="{file}"><img src="{file}" alt="{escape(caption)}" loading="lazy"></a>'
        return f"<figure>{shown}<figcaption>{escape(caption)}</figcaption></figure>"

    def pictures(self):
        windows = "".join(self.picture(*row) for row in WINDOWS)
        return f'<div class="windows">{windows}</div>{self.all_pictures()}'

    def all_pictures(self):
        folder = os.path.join(self.folder, "pictures")
        names = sorted(name for name in os.listdir(folder) if name.endswith(".png")) if os.path.isdir(folder) else []
        shown = [name for name, _ in WINDOWS]
        names = [name for name in names if name not in shown]
        if not self.is_full:
            return ""
        if not names:
            self.problems.append("pictures/ has none of the other pictures")
        groups = {}
        for name in names:
            groups.setdefault("_".join(name.split("_")[: 2 if name.startswith("panel") else 1]), []).append(name)
        text = ""
        for group, members in groups.items():
            text += (f"<details><summary>{escape(group.replace('_', ' '))}: {len(members)} more pictures</summary>"
                     '<div class="all">' + "".join(self.picture(name, name[len(group) + 1:-4]) for name in members)
                     + "</div></details>")
        return text

    def sounds(self):
        text = ""
        for picture, title, players in VOICE + (OWN_VOICE if self.is_full else ()) + SOUNDS:
            shown = self.need(picture) or (f'<div class="wide"><img src="{picture}" '
                                           f'alt="{escape(title)}: spectrogram and level"></div>')
            controls = "".join(
                self.need(file) or f'<label>{what}<audio controls preload="metadata" src="{file}"></audio></label>'
                for file, what in players)
            style = "voice" if (picture, title, players) in VOICE + OWN_VOICE else "sound"
            text += (f'<figure class="{style}"><figcaption>{title}</figcaption><div class="players">{controls}</div>'
                     f'{shown}</figure>')
        return f'<div class="sounds">{text}</div>'

    def files(self):
        links = "".join(f'<li><a href="{name}">{name}</a></li>' for name in FILES
                        if os.path.exists(os.path.join(self.folder, name)))
        text = ("<details><summary>The timeline, as it was printed</summary>"
                f'<pre>{escape(self.read("timeline.txt"))}</pre></details>')
        if self.has_restarts:
            self.need("restarts.txt")
            text += ("<details open><summary>Simulator, worker, plugin and voice client, killed and started again"
                     f'</summary><pre>{escape(self.read("restarts.txt"))}</pre></details>')
        return text + f'<ul class="files">{links}</ul>'

    def subtitle(self):
        if not self.events:
            return "The real plugin in a stand-in voice client"
        flight = self.events[0]
        return (f"The real plugin and its worker in a stand-in voice client under Wine, {flight.value} on the "
                f"{flight.what} circuit")

    def html(self):
        with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "style.css"), encoding="utf-8") as file:
            style = file.read()
        body = (
            f'<header><h1>Corvalis</h1><p>{self.subtitle()}</p>{self.tiles()}</header><main>'
            f'<h2>The flight</h2>{self.flight()}'
            f'<h2>The windows</h2>{self.pictures()}'
            f'<h2>The sounds</h2>{self.sounds()}'
            f'<h2>What else was left</h2>{self.files()}</main>'
        )
        return ('<!DOCTYPE html>\n<html lang="en"><head><meta charset="utf-8">'
                '<meta name="viewport" content="width=device-width,initial-scale=1"><title>Corvalis: the flight</title>'
                f"<style>\n{style}</style></head>\n<body>{body}</body></html>\n")

    def check_references(self, html):
        """What the page names lies beside it, and what it must have, it names."""
        named = set(re.findall(r'(?:src|href)="([^"]*)"', html))
        for name in sorted(named):
            if not os.path.isfile(os.path.join(self.folder, name)) or name.startswith(("/", "..")):
                self.problems.append(f"the page names {name}, which is not beside it")
        for name in sorted(self.required - named):
            if not any(problem.startswith(name + " ") for problem in self.problems):
                self.problems.append(f"{name} is not on the page")


def main(arguments):
    options = [argument for argument in arguments if argument.startswith("--")]
    names = [argument for argument in arguments if not argument.startswith("--")]
    if len(names) != 2 or not set(options) <= {"--full", "--restarts"}:
        sys.exit(__doc__)
    page = Page(names[0], names[1], "--full" in options, "--restarts" in options)
    html = page.html()
    page.check_references(html)
    with open(os.path.join(page.folder, "index.html"), "w", encoding="utf-8") as file:
        file.write(html)
    for problem in page.problems:
        print(f"The page: {problem}", file=sys.stderr)
    return 1 if page.problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
