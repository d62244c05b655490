#!/usr/bin/env python3
"""Checks the tool's compiled resources (the .res file that it is given): what no compiler and no other test would miss.

Numbers of their own for all names; every picture, sound, menu, dialog and text there in all its languages, with the same
placeholders, commands and number of access keys; no text that the compiler spoilt; pictures and sounds as their generators
write them. Prints every offence; the exit code is 1 when there is one.
"""
import re
import struct
import sys
from pathlib import Path

RESOURCES = Path(__file__).resolve().parents[2] / "resources"
sys.dont_write_bytecode = True
sys.path.insert(0, str(RESOURCES / "art"))
import icons
import sounds

NEUTRAL, ENGLISH, DUTCH = 0, 0x0809, 0x0013
MENU, DIALOG, STRINGS, ICON, WAVE = 4, 5, 6, 14, "WAVE"
KINDS = {"IDI": (ICON, (NEUTRAL,)), "IDW": (WAVE, (NEUTRAL,)), "IDM": (MENU, (ENGLISH, DUTCH)), "IDD": (DIALOG, (ENGLISH, DUTCH))}
LONGEST_TEXT = 254  # what the tool reads of a text
PLACEHOLDER = re.compile(r"%[-+ #0]*[\d.]*(?:l|h|ll)?[a-zA-Z%]")
POPUP = 0x10


def text_at(data, at):
    """A text and the place after its terminator."""
    end = next(end for end in range(at, len(data), 2) if data[end:end + 2] == b"\0\0")
    return data[at:end].decode("utf-16-le"), end + 2


def name_at(data, at):
    return (struct.unpack_from("<H", data, at + 2)[0], at + 4) if data[at:at + 2] == b"\xff\xff" else text_at(data, at)


def read_resources(data):
    """(type, name, language) to bytes."""
    at, found = 0, {}
    while at < len(data):
        length, header = struct.unpack_from("<II", data, at)
        kind, end = name_at(data, at + 8)
        name, end = name_at(data, end)
        language = struct.unpack_from("<H", data, (end + 3) // 4 * 4 + 6)[0]
        found[kind, name, language] = data[at + header:at + header + length]
        at += (header + length + 3) // 4 * 4
    return found


def read_texts(resources, language):
    texts = {}
    for (kind, block, of), data in resources.items():
        if (kind, of) != (STRINGS, language):
            continue
        at = 0
        for number in range(16 * (block - 1), 16 * block):
            end = at + 2 + 2 * struct.unpack_from("<H", data, at)[0]
            texts[number] = data[at + 2:end].decode("utf-16-le")
            at = end
    return {number: text for number, text in texts.items() if text}


def read_menu(data):
    """Flags (which tell the nesting), command (None of a popup) and text of the items, as they come."""
    at, items = 4, []
    while at < len(data):
        flags, command = struct.unpack_from("<HH", data, at)
        text, at = text_at(data, at + (2 if flags & POPUP else 4))
        items.append((flags, None if flags & POPUP else command, text))
    return items


def access_keys(texts):
    return [key.lower() for text in texts for key in re.findall(r"&(\w)", text)]


def check_numbers(ids, resources, texts):
    owner = {}
    for name, number in ids:
        prefix = name.split("_")[0]
        if (other := owner.setdefault((prefix, number), name)) != name:
            yield f"{name}: has the number of {other}"
        kind, languages = KINDS.get(prefix, (None, ()))
        for language in languages:
            if (kind, number, language) not in resources:
                yield f"{name}: no resource in language 0x{language:04x}"
        if prefix == "IDS":
            yield from (f"{name}: no text in language 0x{language:04x}" for language in texts if number not in texts[language])


def check_texts(texts):
    for number, english in texts[ENGLISH].items():
        pair = english, texts[DUTCH].get(number, "")
        if len({tuple(PLACEHOLDER.findall(text)) for text in pair}) > 1:
            yield f"text {number}: placeholders differ: {pair}"
        if len({len(access_keys([text])) for text in pair}) > 1:
            yield f"text {number}: only one language has an access key: {pair}"
        for text in pair:
            if len(text) > LONGEST_TEXT:
                yield f"text {number}: more than {LONGEST_TEXT} characters: {text}"
            if re.search("[\u0080-\u00a0\u00c2\u00c3]", text):  # bytes of UTF-8 taken for characters
                yield f"text {number}: spoilt by the compiler: {text}"


def check_menus(resources):
    for (kind, name, language), data in resources.items():
        if kind != MENU:
            continue
        items = read_menu(data)
        if [item[:2] for item in items] != [item[:2] for item in read_menu(resources[kind, name, ENGLISH])]:
            yield f"menu {name}: commands of language 0x{language:04x} differ from the English ones"
        keys = access_keys(text for *_, text in items)
        if len(keys) != len(set(keys)):
            yield f"menu {name}, language 0x{language:04x}: two items have the same access key"


def check_files(resources):
    for generator, kind in ((icons, ICON), (sounds, WAVE)):
        wanted, there = generator.files(), {path.name: path.read_bytes() for path in generator.FOLDER.iterdir()}
        for name in sorted(wanted.keys() | there.keys()):
            if wanted.get(name) != there.get(name):
                yield f"{generator.FOLDER.name}/{name}: not what {Path(generator.__file__).name} writes"
        if len(there) != sum(key[0] == kind for key in resources):
            yield f"the script does not name each file of {generator.FOLDER.name} once"


def main():
    resources = read_resources(Path(sys.argv[1]).read_bytes())
    header = (RESOURCES / "resource_ids.h").read_text(encoding="utf-8")
    ids = [(name, int(number)) for name, number in re.findall(r"^#define (\w+) (\d+)$", header, re.M)]
    texts = {language: read_texts(resources, language) for language in (ENGLISH, DUTCH)}
    offences = [*check_numbers(ids, resources, texts), *check_texts(texts), *check_menus(resources), *check_files(resources)]
    print("\n".join(offences) or f"resources: {len(resources)}, texts: {len(texts[ENGLISH])}, no offence")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main())
