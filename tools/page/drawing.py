"""drawing.py - the flight on a time axis as an inline SVG: a lane for each thing that goes on or happens. Colours come
from the page's style sheet, by class."""
import record

AXIS = 30
LABEL_WIDTH = 98
CHARACTER = 6.7  # pixels of a letter of the drawing's 11 px monospace, on the safe side

# name, height, class of its label
LANES = (
    ("Legs", 26),
    ("COM1 active", 34),
    ("COM2 active", 28),
    ("Channel", 34),
    ("Requests", 30),
    ("Refusals", 26),
    ("Messages", 26),
    ("Sounds", 26),
    ("Pilot talks", 18),
    ("Others talk", 18),
    ("TX lamp", 16),
    ("RX lamp", 16),
    ("TEXT lamp", 16),
)
GAP = 6
LEGEND = (
    ("freq", "frequency, as the aircraft reports it"),
    ("chan", "channel the pilot is in"),
    ("moved", "asked, then moved"),
    ("refused", "refused"),
    ("unanswered", "never answered"),
    ("mail", "text message"),
    ("snd", "sound played"),
    ("talk", "talk"),
    ("lamp", "lamp lit"),
)


def escape(text):
    return str(text).replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;").replace('"', "&quot;")


def seconds(ms):
    return f"{ms / 1000:.2f} s"


def megahertz(khz):
    return f"{khz / 1000:.3f}"


class Drawing:
    def __init__(self, events):
        self.events = events
        self.end = max(events[-1].ms, 1)
        # A short flight fits a desk's screen; a long one scrolls.
        self.width = int(max(1040, 15 * self.end / 1000))
        self.tops = {}
        top = AXIS
        for name, height in LANES:
            self.tops[name] = (top, height)
            top += height + GAP
        self.bottom = top
        self.height = top + 20
        self.parts = []

    def x(self, ms):
        return 2 + (self.width - 4) * ms / self.end

    def add(self, part):
        self.parts.append(part)

    def titled(self, shape, title):
        self.add(f"<g><title>{escape(title)}</title>{shape}</g>")

    def text(self, x, y, text, style="", anchor="start"):
        return f'<text class="{style}" x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}">{escape(text)}</text>'

    def bar(self, lane, start, end, style, title, label=""):
        """From start to end; with its label where there is room."""
        top, height = self.tops[lane]
        left, right = self.x(start), max(self.x(end), self.x(start) + 2)
        shape = (f'<rect class="{style}" x="{left:.1f}" y="{top}" width="{right - left - 1:.1f}" height="{height}" '
                 'rx="3"/>')
        room = int((right - left - 10) / CHARACTER)
        if label and room < len(label) and room >= 5:
            label = label[:room - 1] + "…"
        if label and len(label) <= room:
            shape += self.text(left + 6, top + height / 2 + 4, label, "on-" + style)
        self.titled(shape, title)

    def marks(self, lane, style, marks):
        """marks: (ms, symbol, title, label), by time; the label stands where the next mark leaves room."""
        top, height = self.tops[lane]
        middle = top + height / 2
        for index, (ms, symbol, title, label) in enumerate(marks):
            left = min(self.x(ms), self.width - 10)
            until = self.x(marks[index + 1][0]) if index + 1 < len(marks) else self.width
            shape = f'<g transform="translate({left:.1f} {middle:.1f})">{symbol}</g>'
            room = int((until - left - 22) / CHARACTER)
            if room < len(label) and room >= 6:
                label = label[:room - 1] + "…"
            if len(label) <= room:
                shape += self.text(left + 12, middle + 4, label, "beside " + style)
            self.titled(shape, title)

    def grid(self):
        step = next(step for step in (1, 2, 5, 10, 20, 30, 60) if self.end / 1000 / step <= 30)
        labelled = step * 2 if self.end / 1000 / step > 15 else step
        for i in range(0, int(self.end / 1000) + 1, step):
            x = self.x(i * 1000)
            self.add(f'<path class="grid" d="M{x:.1f} {AXIS - 6}V{self.bottom}"/>')
            if i % labelled == 0:
                anchor = "start" if i == 0 else "middle"
                self.add(self.text(x, AXIS - 14, f"{i} s", "axis", anchor))
        for name, height in LANES:
            top = self.tops[name][0]
            self.add(f'<rect class="field" x="0" y="{top}" width="{self.width}" height="{height}" rx="3"/>')

    def legs(self):
        for number, leg in enumerate(record.legs(self.events), 1):
            self.bar("Legs", leg.start, leg.end, "leg", f"{number}  {leg.title}, from {seconds(leg.start)}",
                     f"{number}  {leg.title}")
            if leg.start > 0:
                x = self.x(leg.start)
                self.add(f'<path class="legline" d="M{x:.1f} {AXIS}V{self.bottom - GAP}"/>')

    def radios(self):
        for radio in record.RADIOS:
            for span in record.frequencies(self.events, radio):
                self.bar(f"{radio} active", span.start, span.end, "freq",
                         f"{radio} active {megahertz(span.value)}, {seconds(span.start)} to {seconds(span.end)}",
                         megahertz(span.value))
        for loss in record.link_losses(self.events):
            top = self.tops["COM1 active"][0]
            bottom = sum(self.tops["COM2 active"])
            left, right = self.x(loss.start), self.x(loss.end)
            shape = f'<rect class="loss" x="{left:.1f}" y="{top}" width="{right - left:.1f}" height="{bottom - top}"/>'
            if right - left > 60:
                shape += self.text((left + right) / 2, top + 21, "no link", "on-loss", "middle")
            self.titled(shape, f"no link to the simulator: {loss.value}, {seconds(loss.start)} to {seconds(loss.end)}")

    def channels(self):
        for span in record.spans(self.events, "channel"):
            self.bar("Channel", span.start, span.end, "chan",
                     f"in “{span.value}”, {seconds(span.start)} to {seconds(span.end)}", span.value)

    def requests(self):
        top, height = self.tops["Requests"]
        middle = top + height / 2
        found = record.requests(self.events)
        for index, request in enumerate(found):
            left, right = self.x(request.start), self.x(request.end)
            until = self.x(found[index + 1].start) if index + 1 < len(found) else self.width
            took = request.end - request.start
            told = {"moved": f"moved {took} ms later", "refused": f"refused {took} ms later",
                    "unanswered": f"no answer for {took / 1000:.1f} s"}[request.outcome]
            shape = (f'<path class="wait {request.outcome}" d="M{left:.1f} {middle}H{right:.1f}"/>'
                     f'<path class="ask" d="M{left:.1f} {middle - 7}l6 7l-6 7z"/>')
            if request.outcome != "unanswered":
                shape += f'<circle class="{request.outcome}" cx="{max(right, left + 9):.1f}" cy="{middle}" r="4"/>'
            label, start = request.channel, max(right, left + 9) + 8
            room = int((until - start - 6) / CHARACTER)
            if room >= 6 and len(label) > room:
                label = label[:room - 1] + "…"
            if len(label) <= room:
                shape += self.text(start, middle + 4, label, "beside")
            self.titled(shape, f"asks for “{request.channel}” at {seconds(request.start)}: {told}")

    def happenings(self):
        cross = '<path class="cross" d="M-5 -5L5 5M-5 5L5 -5"/>'
        envelope = '<path class="mail" d="M-7 -5H7V5H-7zM-7 -5L0 1L7 -5"/>'
        note = '<path class="snd" d="M-5 -2H-2L2 -6V6L-2 2H-5zM5 -3Q7 0 5 3"/>'
        rows = {"refusal": [], "message": [], "sound": []}
        for event in self.events:
            at = f"at {seconds(event.ms)}"
            if event.kind == "refusal":
                rows["refusal"].append((event.ms, cross, f"the {event.what} refuses: {event.value}, {at}", event.value))
            if event.kind == "message":
                rows["message"].append((event.ms, envelope, f"{event.what}: {event.value}, {at}",
                                        f"{event.what}: {event.value}"))
            if event.kind == "sound":
                name = event.value.rsplit(".", 1)[0].replace("_", " ")
                rows["sound"].append((event.ms, note, f"plays {event.value} {at}", name))
        self.marks("Refusals", "refusal", rows["refusal"])
        self.marks("Messages", "message", rows["message"])
        self.marks("Sounds", "sound", rows["sound"])

    def talk_and_lamps(self):
        for talker, lane in (("pilot", "Pilot talks"), ("controller", "Others talk")):
            for span in record.on_spans(self.events, "talk", talker):
                self.bar(lane, span.start, span.end, "talk",
                         f"{talker} talks for {span.end - span.start} ms at {seconds(span.start)}")
        for lamp in record.LAMPS:
            for span in record.on_spans(self.events, "lamp", lamp):
                self.bar(f"{lamp} lamp", span.start, span.end, f"lamp {lamp.lower()}",
                         f"{lamp} lamp lit for {span.end - span.start} ms at {seconds(span.start)}")

    def labels(self):
        texts = [self.text(LABEL_WIDTH - 10, self.tops[name][0] + height / 2 + 4, name, "lane", "end")
                 for name, height in LANES]
        return (f'<svg class="labels" width="{LABEL_WIDTH}" height="{self.height}" '
                f'viewBox="0 0 {LABEL_WIDTH} {self.height}" aria-hidden="true">{"".join(texts)}</svg>')

    def draw(self):
        self.grid()
        self.legs()
        self.radios()
        self.channels()
        self.requests()
        self.happenings()
        self.talk_and_lamps()
        return (f'<div class="chart" tabindex="0">{self.labels()}<svg class="lanes" role="img" '
                f'aria-label="The flight on a time axis" width="{self.width}" height="{self.height}" '
                f'viewBox="0 0 {self.width} {self.height}">'
                + "\n".join(self.parts) + "</svg></div>")


def draw(events):
    return Drawing(events).draw()


def legend():
    items = "".join(f'<li><i class="key {style}"></i>{text}</li>' for style, text in LEGEND)
    return f'<ul class="legend">{items}</ul>'
