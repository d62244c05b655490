#!/usr/bin/env python3
"""Holds the floors of the house: which file may include which.

A file includes only what stands on its own floor or below, no two files include each other in a circle, and a pure
core names no Windows header. Prints every offence with its file and line; the exit code is 1 when there is one.
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
ROOMS = ("base", "app", "link", "switches", "firmware", "board", "power", "report", "resources")

# Floor of each file, by the first pattern that fits (a file and its header stand together).
PURE_FILES = (
    "base/(text|profile_section)",
    "app/command_line",
    "link/(frame|message_type)",
    "firmware/(hex_file|flash_image|boot_sequence)",
    "board/(codec_parameters|codec_download|gain_tables)",
    "power/alarm_decision",
    "report/xml_writer",
)
RECORD_FILES = (
    "app/(folders|diagnostic_log|windows_version|tray_state)",
    "link/(link_state|device_identity|serial_input)",
    "switches/(switch_state|button_action|joystick_library|macro_library|mouse_filter_library|maker_applications)",
    "board/(board_library|platform_info|audio_settings)",
    r"power/(battery_status|battery_details)\.h",
    r"firmware/(bootloader|update_guard)\.h",
)
PURE = re.compile(rf"({'|'.join(PURE_FILES)})\.")
FLOORS = [
    (0, r"base/.*|resources/.*"),
    (1, "|".join(PURE_FILES)),
    (2, "|".join(RECORD_FILES)),
    (3, r"app/app_state"),
    (5, r"app/main_window|link/pic_(messages|receiver)"),
    (6, r"app/entry"),
    (4, r"(app|link|switches|firmware|board|power|report)/.*"),
]
NAMES = {0: "base", 1: "pure core", 2: "records and bindings", 3: "state", 4: "operations", 5: "hubs", 6: "entry"}
PURE_HEADERS_ALLOWED = re.compile(r"<[a-z_0-9]+>")  # the standard library: no suffix
INCLUDE = re.compile(r'^\s*#\s*include\s+(["<][^">]+[">])')


def floor_of(path):
    for floor, pattern in FLOORS:
        if re.match(rf"(?:{pattern})(?:\.|$)", path) or re.fullmatch(pattern, path):
            return floor
    raise SystemExit(f"{path}: stands on no floor")


def includes_of(path):
    for number, line in enumerate((ROOT / path).read_text(encoding="utf-8").splitlines(), 1):
        if found := INCLUDE.match(line):
            yield number, found.group(1)


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


def main():
    offences = []
    graph = {}
    for room in ROOMS:
        for file in sorted((ROOT / room).glob("*.[ch]*")):
            path = file.relative_to(ROOT).as_posix()
            floor = floor_of(path)
            pure = PURE.match(path)
            graph[path] = []
            for number, include in includes_of(path):
                target = include[1:-1]
                if include.startswith("<"):
                    if pure and not PURE_HEADERS_ALLOWED.fullmatch(include):
                        offences.append(f"{path}:{number}: a pure core includes {include}")
                    continue
                if target.split("/")[0] not in ROOMS:
                    offences.append(f"{path}:{number}: {target} is outside the tool")
                    continue
                graph[path].append(target)
                if pure and not PURE.match(target):
                    offences.append(f"{path}:{number}: a pure core includes {target}")
                if floor_of(target) > floor:
                    offences.append(f"{path}:{number}: {target} ({NAMES[floor_of(target)]}) stands above {NAMES[floor]}")
    if circle := find_circle(graph):
        offences.append("circle: " + " -> ".join(circle))
    print("\n".join(offences) if offences else f"floors: {len(graph)} files, no offence")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main())
