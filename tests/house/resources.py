#!/usr/bin/env python3
"""Checks the program's resources.

The script: every id of the header has its resource, both languages have the same texts with the same placeholders and
access keys, menus with the same commands and dialogs with the same controls. The pictures and sounds are what their generators write now. When the
Windows resource compiler is here, the compiled resources hold what the script says. Prints every offence; the exit
code is 1 when there is one.
"""
import re
import shutil
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
RESOURCES = ROOT / "resources"
sys.dont_write_bytecode = True
sys.path.insert(0, str(RESOURCES / "art"))
import icons
import sounds

LANGUAGES = {"LANG_NEUTRAL, SUBLANG_NEUTRAL": 0, "LANG_ENGLISH, SUBLANG_ENGLISH_UK": 0x0809,
             "LANG_DUTCH, SUBLANG_NEUTRAL": 0x0013}
ENGLISH, DUTCH = 0x0809, 0x0013
TYPES = {"ICON": 14, "MENU": 4, "DIALOGEX": 5, "VERSIONINFO": 16, "24": 24, "WAVE": "WAVE"}  # script's word: type when compiled
STRINGS = 6
PREFIXES = {"IDI": "ICON", "IDW": "WAVE", "IDM": "MENU", "IDD": "DIALOGEX"}
CONTROL = re.compile(r"IDO_|IDP_|IDC_FIRMWARE_")  # names of controls
LONGEST_TEXT = 254  # what the tool reads of a text
COMPILER = "x86_64-w64-mingw32-windres"

PLACEHOLDER = re.compile(r"%[-+ #0]*[\d.]*(?:l|h|ll)?[a-zA-Z%]")
TOKEN = re.compile(r'\s+|//[^\n]*|(#include[^\n]*)|("(?:[^"\\]|\\.)*")|(\w+)|([,|{}])')


def read_ids():
    found = re.findall(r"^#define (\w+) (\d+)$", (RESOURCES / "resource_ids.h").read_text(encoding="utf-8"), re.M)
    return {name: int(number) for name, number in found}


def tokens_of(path):
    text, position = (ROOT / path).read_text(encoding="utf-8"), 0
    while position < len(text):
        found = TOKEN.match(text, position)
        if not found:
            raise SystemExit(f"{path}: cannot read {text[position:position + 30]!r}")
        position = found.end()
        include, *words = found.groups()
        if include and '"' in include and include.endswith('.rc"'):
            yield from tokens_of(include.split('"')[1])
        elif any(words):
            yield next(word for word in words if word)


class Script:
    """What the resource script says: texts[language][id], and resources[type, id, language] = file or menu."""

    def __init__(self, path, ids):
        self.ids = ids
        self.offences = []
        self.texts = {ENGLISH: {}, DUTCH: {}}
        self.resources = {}
        self.words = tokens_of(path)
        language = 0
        for word in self.words:
            if word == "LANGUAGE":
                language = LANGUAGES[" ".join((next(self.words) + next(self.words), next(self.words)))]
            elif word == "STRINGTABLE":
                self._read_texts(self.texts[language])
            else:
                kind = next(self.words)
                body = next(self.words)
                name = word if kind == "DIALOGEX" and word not in ids else self.number(word)
                self.resources[TYPES[kind], name, language] = self._read_body(kind, body)

    def number(self, word):
        if word in ("1", "VS_VERSION_INFO"):
            return 1
        if word not in self.ids:
            raise SystemExit(f"resource_ids.h does not name {word}")
        return self.ids[word]

    def _read_texts(self, table):
        assert next(self.words) == "BEGIN"
        while (word := next(self.words)) != "END":
            number, text = self.number(word), unquote(next(self.words))
            if number in table:
                self.offences.append(f"{word}: two texts in one language")
            table[number] = text

    def _read_body(self, kind, word):
        if kind == "MENU":
            return self._read_popup(word)
        if kind == "DIALOGEX":
            return self._read_controls(word)
        if kind != "VERSIONINFO":
            return unquote(word)
        while word != "BEGIN":
            word = next(self.words)
        depth = 1
        while depth:
            depth += {"BEGIN": 1, "END": -1}.get(next(self.words), 0)
        return None

    def _read_controls(self, word):
        """The names of the header's controls, in order."""
        while word != "BEGIN":
            word = next(self.words)
        controls = []
        while (word := next(self.words)) != "END":
            if CONTROL.match(word):
                controls.append(word)
        return controls

    def _read_popup(self, begin):
        """The items in order: (text, command), (text, [items]) of a submenu, or ("", None) for a separator."""
        assert begin == "BEGIN"
        items = []
        while (word := next(self.words)) != "END":
            text = next(self.words)
            if word == "POPUP":
                items.append((unquote(text), self._read_popup(next(self.words))))
            elif text == "SEPARATOR":
                items.append(("", None))
            else:
                assert word == "MENUITEM" and next(self.words) == ","
                items.append((unquote(text), self.number(next(self.words))))
        return items


def unquote(literal):
    return re.sub(r"\\(.)", lambda found: {"n": "\n", "r": "\r", "t": "\t"}.get(found[1], found[1]), literal[1:-1])


def access_keys(text):
    return [key.lower() for key in re.findall(r"&(\w)", text)]


def check_ids(ids, script):
    used = {}
    for name, number in ids.items():
        prefix = name.split("_")[0]
        if number in used.setdefault(prefix, {}):
            yield f"{name}: has the number of {used[prefix][number]}"
        used[prefix][number] = name
        if prefix in PREFIXES:
            languages = (ENGLISH, DUTCH) if prefix in ("IDM", "IDD") else (0,)
            for language in languages:
                if (TYPES[PREFIXES[prefix]], number, language) not in script.resources:
                    yield f"{name}: no {PREFIXES[prefix]} in language 0x{language:04x}"
        if prefix == "IDS":
            for language, texts in script.texts.items():
                if not texts.get(number):
                    yield f"{name}: no text in language 0x{language:04x}"
                elif len(texts[number]) > LONGEST_TEXT:
                    yield f"{name}: more than {LONGEST_TEXT} characters in language 0x{language:04x}"


def check_texts(english, dutch):
    for number in english.keys() & dutch.keys():
        pair = english[number], dutch[number]
        if len({tuple(PLACEHOLDER.findall(text)) for text in pair}) > 1:
            yield f"text {number}: placeholders differ: {pair}"
        if len({len(access_keys(text)) for text in pair}) > 1:
            yield f"text {number}: only one language has an access key: {pair}"


def check_menus(script):
    def commands(items):
        return [commands(item) if isinstance(item, list) else item for _, item in items]

    def doubled_keys(items):
        keys = [key for text, _ in items for key in access_keys(text)]
        yield from (key for key in set(keys) if keys.count(key) > 1)
        for _, item in items:
            if isinstance(item, list):
                yield from doubled_keys(item)

    menus = {key: menu for key, menu in script.resources.items() if key[0] == TYPES["MENU"]}
    for (kind, number, language), menu in menus.items():
        if commands(menu) != commands(menus.get((kind, number, ENGLISH), [])):
            yield f"menu {number}: commands of language 0x{language:04x} differ from the English ones"
        for key in doubled_keys(menu):
            yield f"menu {number}, language 0x{language:04x}: two items have the access key {key}"


def check_dialogs(ids, script):
    dialogs = {key: controls for key, controls in script.resources.items() if key[0] == TYPES["DIALOGEX"]}
    used = [control for (_, _, language), controls in dialogs.items() if language == ENGLISH for control in controls]
    for (_, name, language), controls in dialogs.items():
        if controls != dialogs.get((TYPES["DIALOGEX"], name, ENGLISH)):
            yield f"dialog {name}: controls of language 0x{language:04x} differ from the English ones"
    for name in ids:
        if CONTROL.match(name) and used.count(name) != 1:
            yield f"{name}: is not one control of one dialog"


def check_files(script):
    for generator, kind in ((icons, "ICON"), (sounds, "WAVE")):
        wanted = generator.files()
        there = {path.name: path.read_bytes() for path in generator.FOLDER.iterdir()}
        for name in sorted(wanted.keys() | there.keys()):
            if wanted.get(name) != there.get(name):
                yield f"{generator.FOLDER.name}/{name}: not what {Path(generator.__file__).name} writes"
        folder = generator.FOLDER.relative_to(ROOT).as_posix()
        named = [file for (type_, *_), file in script.resources.items() if type_ == TYPES[kind]]
        if sorted(named) != sorted(f"{folder}/{name}" for name in wanted):
            yield f"the script does not name each file of {folder} once"


def compiled_resources(path):
    """Reads a compiled resource file: (type, id, language) to bytes."""
    data, position, found = path.read_bytes(), 0, {}

    def name_at(offset):
        if data[offset:offset + 2] == b"\xff\xff":
            return struct.unpack_from("<H", data, offset + 2)[0], offset + 4
        end = offset
        while data[end:end + 2] != b"\0\0":
            end += 2
        return data[offset:end].decode("utf-16-le"), end + 2

    while position < len(data):
        length, header = struct.unpack_from("<II", data, position)
        kind, offset = name_at(position + 8)
        name, offset = name_at(offset)
        language = struct.unpack_from("<H", data, (offset + 3) // 4 * 4 + 6)[0]
        found[kind, name, language] = data[position + header:position + header + length]
        position += (header + length + 3) // 4 * 4
    return found


def check_compiled(script):
    with tempfile.TemporaryDirectory() as folder:
        output = Path(folder) / "resources.res"
        command = [COMPILER, "-c", "65001", "-I.", "-O", "res", "resources/veltratool.rc", str(output)]
        compiler = subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False)
        if compiler.returncode != 0:
            yield f"{COMPILER}: {compiler.stderr.strip()}"
            return
        compiled = compiled_resources(output)
    for kind, name, language in script.resources:
        if (kind, name, language) not in compiled:
            yield f"type {kind}, id {name}, language 0x{language:04x}: not compiled"
    for language, texts in script.texts.items():
        there = {}
        for (kind, block, other), data in compiled.items():
            if kind != STRINGS or other != language:
                continue
            for index in range(16):
                length = 2 * struct.unpack_from("<H", data)[0]
                if length:
                    there[(block - 1) * 16 + index] = data[2:2 + length].decode("utf-16-le")
                data = data[2 + length:]
        for number in sorted(there.keys() | texts.keys()):
            if there.get(number) != texts.get(number):
                yield (f"text {number}, language 0x{language:04x}: the script has {texts.get(number)!r}, "
                       f"compiled {there.get(number)!r}")


def main():
    ids = read_ids()
    script = Script("resources/veltratool.rc", ids)
    offences = script.offences + [*check_ids(ids, script), *check_texts(script.texts[ENGLISH], script.texts[DUTCH]),
                                  *check_menus(script), *check_dialogs(ids, script), *check_files(script)]
    compiler = shutil.which(COMPILER)
    if compiler:
        offences += check_compiled(script)
    print("\n".join(offences) if offences else
          f"resources: {len(script.resources)}, texts in two languages: {len(script.texts[ENGLISH])}, no offence")
    if not compiler:
        print(f"{COMPILER} is missing: the compiled resources were not looked at")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main())
