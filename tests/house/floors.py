#!/usr/bin/env python3
"""Holds the floors of the house: which room may include which.

A room includes rooms on lower floors and nothing beside or above it; no two files include each other in a circle; and what
the library of pure cores is made of reaches no Windows header. Prints every offence with its file and line; the exit code
is 1 when there is one.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
FLOORS = (  # ground first
    ("base", "resources"),
    ("system",),
    ("link",),
    ("board", "power", "firmware"),
    ("switches", "report"),
    ("app",),
)
FLOOR_OF = {room: floor for floor, rooms in enumerate(FLOORS) for room in rooms}
INCLUDE = re.compile(r'^\s*#\s*include\s+(["<])([^">]+)[">]')
CORES = re.compile(r"add_library\(veltra_cores STATIC([^)]*)\)")


def room_of(path):
    return path.split("/")[0]


def includes_of(path):
    for number, line in enumerate((ROOT / path).read_text(encoding="utf-8").splitlines(), 1):
        if found := INCLUDE.match(line):
            yield number, found.group(1) == "<", found.group(2)


def files():
    for room in FLOOR_OF:
        for file in sorted((ROOT / room).rglob("*.[ch]*")):
            yield file.relative_to(ROOT).as_posix()


def climbs(path, target):
    """An include that leaves the tool, or stays on its floor in another room, or goes up."""
    here, there = room_of(path), room_of(target)
    if there not in FLOOR_OF:
        return f"{target} is outside the tool"
    if here != there and FLOOR_OF[there] >= FLOOR_OF[here]:
        return f"{target} does not stand below {here}"
    return None


def find_circle(graph):
    done = set()

    def walk(path, trail):
        if path in trail:
            return trail[trail.index(path):] + [path]
        if path in done:
            return None
        for target in graph.get(path, ()):
            if circle := walk(target, trail + [path]):
                return circle
        done.add(path)
        return None

    for start in sorted(graph):
        if circle := walk(start, []):
            return circle
    return None


def core_files(graph):
    """The sources of the cores and all that they include."""
    waiting = CORES.search((ROOT / "cmake/tool.cmake").read_text(encoding="utf-8")).group(1).split()
    cores = set()
    while waiting:
        path = waiting.pop()
        if path not in cores:
            cores.add(path)
            waiting += graph[path]
    return cores


def main():
    offences = []
    graph = {}
    for path in files():
        graph[path] = []
        for number, is_system, target in includes_of(path):
            if is_system:
                continue
            if offence := climbs(path, target):
                offences.append(f"{path}:{number}: {offence}")
            graph[path].append(target)
    if circle := find_circle(graph):
        offences.append("circle: " + " -> ".join(circle))
    cores = core_files(graph)
    for path in sorted(cores):
        for number, is_system, target in includes_of(path):
            if is_system and "." in target:  # the standard library's headers have no suffix
                offences.append(f"{path}:{number}: a pure core includes <{target}>")
    print("\n".join(offences) if offences else f"floors: {len(graph)} files, {len(cores)} of cores, no offence")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main())
