#!/usr/bin/env python3
"""check_rooms.py [FOLDER] - holds the code to the order of the rooms in docs/architecture.md.

The table there names for each room those that it may use; base/ everybody may. Checked are the includes of the code and
what each room's CMakeLists.txt links. Prints every line that goes the wrong way and ends with 1; with 0 when there is
none.
"""
import re
import sys
from pathlib import Path

root = Path(sys.argv[1] if len(sys.argv) > 1 else __file__).resolve()
root = root if root.is_dir() else root.parents[1]


def read_order():
    """The rooms of the table under "Rooms", each with the rooms it may use."""
    order = {}
    for line in (root / "docs/architecture.md").read_text(encoding="utf-8").splitlines():
        row = re.match(r"\| `([a-z_/]+)/` \| ([^|]*) \|", line)
        if row:
            order[row[1]] = set(re.findall(r"`([a-z_/]+)/`", row[2])) | {"base"}
    return order


def room_of(path, order):
    """The innermost room that a file (relative to the root) stands in; None outside of all."""
    return next((str(p) for p in Path(path).parents if str(p) in order), None)


def wrong_circles(order):
    """A table that allows a circle would allow everything on it."""
    def reaches(start, goal, seen=()):
        return any(n == goal or (n not in seen and reaches(n, goal, (*seen, n)))
                   for n in order.get(start, ()) if n != start)
    return [f"docs/architecture.md: {room}/ stands on a circle" for room in order if reaches(room, room)]


def wrong_includes(order):
    wrong = []
    for file in sorted(f for room in order for f in (root / room).rglob("*") if f.suffix in {".h", ".cpp", ".inc"}):
        here = file.relative_to(root)
        room = room_of(here, order)
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
            include = re.match(r'\s*#\s*include\s*"([^"]+)"', line)
            if not include:
                continue
            target = room_of(include[1], order)
            if target is None:
                wrong.append(f"{here}:{number}: {line.strip()} is in no room")
            elif target != room and target not in order[room]:
                wrong.append(f"{here}:{number}: {room}/ may not use {target}/: {line.strip()}")
    return sorted(set(wrong))


def wrong_links(order):
    library = {room.replace("/", "_"): room for room in order}
    wrong = []
    for room in order:
        text = (root / room / "CMakeLists.txt").read_text(encoding="utf-8") if room in library.values() else ""
        for uses in re.findall(r"add_room\([^)]*?\bUSES\s+([a-z_\s]+)", text):
            for name in uses.split():
                target = library.get(name)
                if target != room and target not in order[room]:
                    wrong.append(f"{room}/CMakeLists.txt: {room}/ may not be linked with {name}")
    return wrong


def main():
    order = read_order()
    if len(order) < 5:
        sys.exit("check_rooms.py: docs/architecture.md has no table of rooms")
    wrong = wrong_circles(order) + wrong_includes(order) + wrong_links(order)
    print("\n".join(wrong) if wrong else f"rooms: {len(order)} rooms, every arrow goes one way")
    sys.exit(1 if wrong else 0)


main()
