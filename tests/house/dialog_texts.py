#!/usr/bin/env python3
"""Measures every text of every dialog, those set at run time too, in both languages against its control.

dialog_texts.py TAHOMA.TTF: the dialogs' font, as at 100 to 200 % scaling, with a tenth of room for the fonts that take its
place. Prints every text that is cut; the exit code is 1 when there is one.
"""
import re
import struct
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PIXELS = {100: 11, 125: 13, 150: 16, 175: 19, 200: 21}  # of the font's height, 8 points, by the scaling in percent
SPARE = 1.1
# What a control keeps for itself of its width, in pixels at 100 %: margins, box, arrow. Those but the last three have one line.
OWN = {"PUSHBUTTON": 8, "DEFPUSHBUTTON": 8, "AUTOCHECKBOX": 18, "GROUPBOX": 18, "COMBOBOX": 25, "LTEXT": 0, "RTEXT": 0, "CONTROL": 0}
LITERAL = r'"((?:[^"\\]|\\.)*)"'
LETTERS = "".join(map(chr, [*range(65, 91), *range(97, 123)]))

# Texts set at run time, beside the tables of labels in app/dialogs: controls, texts of the string table, others.
AT_RUN_TIME = [
    (r"IDO_SWITCH_1_STARTS", r"IDS_START_.*", ()),
    (r"IDO_SWITCH_[12]", r"IDS_SWITCH_(NORMAL|LEFT_CLICK|RIGHT_CLICK)|IDS_JOYSTICK_BUTTON", ("keys",)),
    (r"IDO_MIDDLE", r"IDS_MIDDLE_.*", ()),
    (r"IDO_ROW_TYPE_\d", r"IDS_ACTION_.*", ()),
    (r"IDO_ROW_VALUE_\d", "", ("keys", "functions")),
    (r"IDO_(PIC|DEVICE)_VERSION", "", ("10.20.300.4000",)),
    (r"IDP_SOURCE", r"IDS_AC_POWER|IDS_BATTERIES", ()),
    (r"IDP_REMAINING", "", ("charging",)),
    (r"IDP_(LOW|CRITICAL)_VALUE", "", ("100%",)),
    (r"IDC_(FIRMWARE_TEXT|MISTAKE|KEYS)", "", ("{}",)),
]


def read(path):
    return (ROOT / path).read_text(encoding="utf-8")


class Font:
    def __init__(self, data):
        word = lambda at: struct.unpack_from(">H", data, at)[0]
        long = lambda at: struct.unpack_from(">I", data, at)[0]
        table = {data[at:at + 4]: long(at + 8) for at in range(12, 12 + 16 * word(4), 16)}
        self.em, last = word(table[b"head"] + 18), word(table[b"hhea"] + 34) - 1
        self.ascent, self.descent = word(table[b"OS/2"] + 74), word(table[b"OS/2"] + 76)
        maps = table[b"cmap"]
        unicode = next(maps + long(at + 4) for at in range(maps + 4, maps + 4 + 8 * word(maps + 2), 8) if long(at) == 0x30001)
        size, self.advance = word(unicode + 6), {}
        for at in range(unicode + 14, unicode + 14 + size, 2):  # the end of a segment; its start, delta, offset follow in lists
            delta, offset = word(at + 2 + 2 * size), word(at + 2 + 3 * size)
            for number, code in enumerate(range(word(at + 2 + size), min(word(at), 0xfffe) + 1)):
                glyph = word(at + 2 + 3 * size + offset + 2 * number) if offset else code
                self.advance[chr(code)] = word(table[b"hmtx"] + 4 * min((glyph + delta) & 0xffff, last))

    def scaled(self, units, pixels):
        return (2 * units * pixels + self.em) // (2 * self.em)

    def width(self, text, pixels):
        return sum(self.scaled(self.advance[letter], pixels) for letter in text)

    def dialog_units(self, pixels):
        """Pixels for 4 horizontal and 8 vertical ones, as Windows measures them; the latter are the height of a line."""
        height = self.scaled(self.ascent, pixels) + self.scaled(self.descent, pixels)
        return (self.width(LETTERS, pixels) // 26 + 1) // 2, height


def controls_of(script):
    """Dialog, kind, id, text, width and lines of each control."""
    for line in script.splitlines():
        if begin := re.match(r"(\w+) DIALOGEX", line):
            dialog = begin[1]
        if not (control := re.match(r"\s+(\w+) (.*)", line)) or control[1] not in OWN:
            continue
        kind, words = control[1], re.findall(r'"(?:[^"\\]|\\.)*"|[^,\s][^,]*', control[2])
        text = "" if kind == "COMBOBOX" else words.pop(0)[1:-1]
        width, height = map(int, words[5:7] if kind == "CONTROL" else words[3:5])
        yield dialog, kind, words[0], text, width, height // 8 if OWN[kind] == 0 else 1


def lines(text, room, width):
    """How many lines the text needs in the room; too many when a word does not fit."""
    count = 0
    for paragraph in text.split("\n"):
        line, count = "", count + 1
        for word in paragraph.split(" "):
            if line and width(line + " " + word) > room:
                line, count = "", count + 1
            line = f"{line} {word}" if line else word
            count += 99 * (width(line) > room)
    return count


def dialogs(language, dutch):
    """The controls, each once for every text that it shows."""
    code = "".join(read(file) for file in sorted((ROOT / "app/dialogs").glob("*.cpp")))
    editor, keys = read("plugins/macro/macro_editor.rc"), read("plugins/macro/macro_keys.cpp")
    strings = dict(re.findall(rf"(IDS_\w+) {LITERAL}", read(f"resources/strings_{'dutch' if dutch else 'english'}.rc")))
    macro = dict(re.findall(rf"#define (TEXT_\w+) {LITERAL}", read(f"plugins/macro/macro_{language}.rc")))
    table = read(f"plugins/tables/sarvikkey_{language}.ini").partition("[WindowsFunctions]")
    update = ["".join(re.findall(LITERAL, text)) for text in re.findall(r"Text =\s+TEXT\((.*?)\);", code, re.S)]
    others = {
        "keys": re.findall(r"CmdName\d+=(.*)", table[0]),
        "functions": re.findall(r"CmdName\d+=(.*)", table[2]),
        "charging": [f"100% ({strings['IDS_CHARGING']})"],
        "IDC_FIRMWARE_TEXT": [text.replace("%s", "time-out").replace("%d", "-104") for text in update],
        "IDC_MISTAKE": [macro["TEXT_PLACE"] + macro[name] for name in re.findall(r"IDS_\w+ (TEXT_\w+)", editor)],
        "IDC_KEYS": [pair[dutch] for pair in re.findall(rf"{{{LITERAL}, {LITERAL}, 0x", keys)],
    }
    labels = dict(re.findall(r"\{(ID[OP]\w+), (IDS_\w+)\}", code))
    editor = re.sub(r"\bTEXT_\w+", lambda name: f'"{macro[name[0]]}"', editor)
    for dialog, kind, control, text, width, height in controls_of(read("resources/dialogs.rc") + editor):
        texts = [strings[labels[control]] if control in labels else text]
        for which, ids, names in AT_RUN_TIME:
            if re.fullmatch(which, control):
                texts += [string for name, string in strings.items() if re.fullmatch(ids, name)]
                texts += [text for name in names for text in others.get(name.format(control), [name])]
        for text in texts:
            shown = re.sub(r"&|\\r", "", text).replace(r"\n", "\n").replace("%%", "%").replace("%d", "9")
            yield dialog, control, kind, shown, width, height


def main():
    font, count, offences = Font(Path(sys.argv[1]).read_bytes()), 0, []
    for dutch, language in enumerate(("English", "Nederlands")):
        for dialog, control, kind, text, width, height in dialogs(language, dutch):
            count += 1
            for percent, pixels in PIXELS.items():
                room = (width * font.dialog_units(pixels)[0] / 4 - OWN[kind] * percent / 100) / SPARE
                if lines(text, room, lambda part: font.width(part, pixels)) > height:
                    offences.append(f"{dialog}, {control}: cut at {percent} %: {text!r}")
    print("\n".join(offences) if offences else f"texts of dialogs: {count}, none is cut")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main())
