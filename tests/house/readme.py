#!/usr/bin/env python3
"""Holds the README to what the program prints: readme.py TABLET

An indented block with a timeline stands so in the demonstration. In one with prompts, "> COMMAND", each command is typed
after the demonstration and brings the lines below it. Prints what differs; the exit code is 1 when something does.
"""
import os
import re
import subprocess
import sys
from pathlib import Path

README = Path(__file__).resolve().parents[2] / "README.md"
BLOCK = re.compile(r"(?:^ {4}.*\n|^\n(?= {4}))+", re.MULTILINE)
TIMELINE = re.compile(r"^ +\d+\.\d{3}  ", re.MULTILINE)
PROMPT = re.compile(r"^> ", re.MULTILINE)


def play(tablet, commands):
    ours, its = os.openpty()
    with subprocess.Popen([tablet], stdin=its, stdout=subprocess.PIPE, env=dict(os.environ, TERM="dumb"),
                          text=True) as program:
        os.write(ours, "".join(command + "\n" for command in commands + ["exit"]).encode())
        return program.stdout.read().split("\nThe tablet is yours", 1)


def main(tablet):
    blocks = [re.sub("^ {4}", "", block, flags=re.MULTILINE) for block in BLOCK.findall(README.read_text(encoding="utf-8"))]
    typed = [part.split("\n", 1) for block in blocks for part in PROMPT.split(block)[1:]]
    demonstration, talk = play(tablet, [command for command, _ in typed])
    printed = PROMPT.split(talk)[1:]
    quoted = [block.strip("\n") for block in blocks if TIMELINE.search(block) and not PROMPT.search(block)]
    offences = [f"the demonstration does not print:\n{block}" for block in quoted if block not in demonstration]
    offences += [f'"{command}" brings:\n{brought}' for (command, lines), brought in zip(typed, printed)
                 if lines.rstrip("\n") != brought.rstrip("\n")]
    if not quoted or not typed or len(printed) <= len(typed):
        offences.append("nothing is quoted, or the prompt does not come")
    print("\n".join(offences) or f"README: {len(quoted)} of the demonstration, {len(typed)} commands, no offence")
    return 1 if offences else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
