#!/usr/bin/env python3
"""Makes the program's four sounds and writes them to resources/sounds: mono, 16 bit.

A sound is a few struck notes, each a handful of overtones that die away, the high ones sooner.
"""
import io
import math
import sys
import wave
from dataclasses import dataclass
from pathlib import Path

sys.dont_write_bytecode = True
FOLDER = Path(__file__).resolve().parents[1] / "sounds"
RATE = 22050  # samples a second
FADE_OUT = 0.03  # seconds at the end of every sound, down to silence

# Overtone (times the note's pitch) and its strength.
SOFT = ((1, 1.0), (2, 0.25), (3, 0.06))
BELL = ((1, 1.0), (2, 0.15), (4, 0.12))
SHARP = ((1, 1.0), (2, 0.3), (3, 0.5), (5, 0.25))

F4, A4, C5, E5, F5, A5, D6, G6 = 349.23, 440.00, 523.25, 659.26, 698.46, 880.00, 1174.66, 1567.98


@dataclass
class Note:
    start: float  # seconds
    pitch: float  # hertz
    decay: float  # seconds in which the note falls to about a third
    length: float  # seconds until it is damped
    attack: float = 0.008  # seconds


@dataclass
class Sound:
    peak: float  # the loudest sample, of 1
    length: float  # seconds
    overtones: tuple
    notes: list


SOUNDS = {
    # A warm chord, built up from below.
    "start": Sound(0.45, 1.05, SOFT, [Note(0, F4, 0.40, 1.05, 0.02), Note(0.13, A4, 0.40, 0.92, 0.02),
                                      Note(0.26, C5, 0.40, 0.79, 0.02), Note(0.39, F5, 0.35, 0.66, 0.02)]),
    # Two calm notes, falling.
    "low_alarm": Sound(0.50, 1.10, BELL, [Note(0, A5, 0.22, 0.50), Note(0.38, E5, 0.28, 0.72)]),
    # Three quick notes upwards, three times over: something must be done now.
    "critical_alarm": Sound(0.60, 1.30, SHARP, [Note(group * 0.45 + place * 0.12, pitch, 0.25, 0.11, 0.004)
                                                for group in range(3)
                                                for place, pitch in enumerate((A5, D6, G6))]),
    # One short tap, to judge the new volume by.
    "volume_step": Sound(0.45, 0.09, SOFT, [Note(0, C5 * 2, 0.03, 0.09, 0.004)]),
}


def shape(time, note):
    """Loudness of a note, 0 to 1, `time` seconds after its start: rises, decays, and is damped without a click."""
    rise = 0.5 - 0.5 * math.cos(math.pi * min(1.0, time / note.attack))
    damp = 0.5 - 0.5 * math.cos(math.pi * min(1.0, (note.length - time) / 0.02))
    return rise * damp * math.exp(-time / note.decay)


def samples_of(sound):
    total = [0.0] * round(sound.length * RATE)
    for note in sound.notes:
        first = round(note.start * RATE)
        for number in range(min(round(note.length * RATE), len(total) - first)):
            time = number / RATE
            tone = sum(strength * math.exp(-time * (overtone - 1) / note.decay)
                       * math.sin(2 * math.pi * overtone * note.pitch * time)
                       for overtone, strength in sound.overtones)
            total[first + number] += shape(time, note) * tone
    fade = round(FADE_OUT * RATE)
    for number in range(fade):
        total[-1 - number] *= number / fade
    scale = sound.peak * 32767 / max(abs(value) for value in total)
    return [round(value * scale) for value in total]


def wave_file(samples):
    content = io.BytesIO()
    with wave.open(content, "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(b"".join(value.to_bytes(2, "little", signed=True) for value in samples))
    return content.getvalue()


def files():
    """Every file of the folder: name and bytes."""
    return {f"{name}.wav": wave_file(samples_of(sound)) for name, sound in SOUNDS.items()}


if __name__ == "__main__":
    FOLDER.mkdir(exist_ok=True)
    for name, content in files().items():
        (FOLDER / name).write_bytes(content)
