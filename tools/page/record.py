"""record.py - reads the flight's record (tests/client/circuit/flight_record.h), holds it to what a flight is, and makes
of its events what lasts: frequencies, channels, requests, talk, lamps, legs."""
from collections import namedtuple

VERSION = "flight-record 1"
RADIOS = ("COM1", "COM2")
TALKERS = ("pilot", "controller")
LAMPS = ("TX", "RX", "TEXT")

# What may stand in the column "what"; None: anything.
EVENTS = {
    "flight": ("short", "full"),
    "leg": ("",),
    "active": RADIOS,
    "standby": RADIOS,
    "link": ("up", "down"),
    "channel": ("",),
    "request": ("",),
    "refusal": ("server", "aircraft"),
    "answer": ("aircraft",),
    "message": None,
    "sound": ("",),
    "talk": TALKERS,
    "lamp": LAMPS,
    "pilot": ("",),
    "check": ("ok", "failed"),
    "end": None,
}
# Without one of these a lane of the drawing stays empty: whoever watched the flight has missed it.
NEEDED = ("leg", "active", "channel", "request", "refusal", "message", "sound", "talk", "lamp", "check")
COM_BAND_KHZ = range(118000, 137000)

Event = namedtuple("Event", "ms kind what value")
Span = namedtuple("Span", "start end value")
Request = namedtuple("Request", "start end channel outcome")  # moved, refused, unanswered
Leg = namedtuple("Leg", "start end title checks")  # checks: events


class RecordError(Exception):
    """The record is not one of a whole flight."""


def parse(text):
    """The events of a whole flight; RecordError if it is none."""
    lines = text.splitlines()
    if not lines or lines[0] != VERSION:
        raise RecordError(f"the first line is not \"{VERSION}\"")
    events = []
    for number, line in enumerate(lines[1:], 2):
        cells = line.split("\t")
        if len(cells) != 4 or not cells[0].isdigit():
            raise RecordError(f"line {number} is no event: {line!r}")
        events.append(Event(int(cells[0]), *cells[1:]))
    check_each(events)
    check_whole(events)
    return events


def check_each(events):
    for before, event in zip([None] + events, events):
        if event.kind not in EVENTS:
            raise RecordError(f"unknown event {event.kind!r}")
        allowed = EVENTS[event.kind]
        if allowed is not None and event.what not in allowed:
            raise RecordError(f"{event.kind} of {event.what!r}")
        if before and event.ms < before.ms:
            raise RecordError(f"{event.kind} at {event.ms} ms stands after {before.ms} ms")
        if event.kind in ("active", "standby"):
            if not event.value.isdigit() or int(event.value) and int(event.value) not in COM_BAND_KHZ:
                raise RecordError(f"{event.what} at {event.value!r} kHz")
        if event.kind in ("talk", "lamp") and event.value not in ("on", "off"):
            raise RecordError(f"{event.what} is {event.value!r}")


def check_whole(events):
    if not events or events[0].kind != "flight" or events[-1].kind != "end":
        raise RecordError("it does not go from the beginning of a flight to its end")
    for kind in NEEDED:
        if not any(event.kind == kind for event in events):
            raise RecordError(f"nothing of the kind {kind!r} was seen in the whole flight")
    checks = [event for event in events if event.kind == "check"]
    counted = (str(sum(event.what == "ok" for event in checks)), str(len(checks)))
    if counted != (events[-1].what, events[-1].value):
        raise RecordError(f"its end counts {events[-1].what} of {events[-1].value} checks, "
                          f"there are {' of '.join(counted)}")
    for kind, names in (("talk", TALKERS), ("lamp", LAMPS)):
        for name in names:
            states = [event.value for event in events if event.kind == kind and event.what == name]
            if any(a == b for a, b in zip(["off"] + states, states)):
                raise RecordError(f"{kind} {name} goes on or off twice")
    for name in TALKERS:
        if any(span.end == events[-1].ms for span in on_spans(events, "talk", name)):
            raise RecordError(f"{name} never stops talking")
    asked = 0
    for event in events:
        asked += event.kind == "request"
        if event.kind == "refusal" and event.what == "server" and not asked:
            raise RecordError("the server refuses what nobody asked for")


def spans(events, kind, what=""):
    """Each value from its event to the next one's."""
    end = events[-1].ms
    found = [event for event in events if event.kind == kind and event.what == what]
    ends = [event.ms for event in found[1:]] + [end]
    return [Span(event.ms, until, event.value) for event, until in zip(found, ends) if until > event.ms]


def on_spans(events, kind, name):
    return [span for span in spans(events, kind, name) if span.value == "on"]


def frequencies(events, radio):
    """Spans of kHz; none where it is unknown."""
    return [span._replace(value=int(span.value)) for span in spans(events, "active", radio) if span.value != "0"]


def link_losses(events):
    """From a loss to the return; what comes before the first connection is none."""
    losses, down = [], None
    first = next((event.ms for event in events if event.kind == "link" and event.what == "up"), None)
    for event in events:
        if event.kind != "link" or first is None or event.ms < first:
            continue
        if event.what == "down" and down is None:
            down = event
        elif event.what == "up" and down is not None:
            losses.append(Span(down.ms, event.ms, down.value))
            down = None
    return losses


def requests(events):
    """What became of each: the pilot is moved there, the server refuses, or neither until the next one."""
    found = []
    for index, event in enumerate(events):
        if event.kind != "request":
            continue
        found.append(outcome_of(event, events[index + 1:]))
    return found


def outcome_of(request, later):
    for event in later:
        if event.kind == "channel" and event.value == request.value:
            return Request(request.ms, event.ms, request.value, "moved")
        if event.kind == "refusal" and event.what == "server":
            return Request(request.ms, event.ms, request.value, "refused")
        if event.kind == "request":
            break
    return Request(request.ms, event.ms, request.value, "unanswered")


def legs(events):
    starts = [index for index, event in enumerate(events) if event.kind == "leg"]
    return [Leg(events[start].ms, events[end].ms, events[start].value,
                [event for event in events[start:end] if event.kind == "check"])
            for start, end in zip(starts, starts[1:] + [len(events) - 1])]
