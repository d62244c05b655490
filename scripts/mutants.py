#!/usr/bin/env python3
"""Breaks the tool one line at a time and counts what the quick native tests notice.

A copy of the tree in build/mutants is changed, built and tested; the working tree stays as it is. A change that does not
compile is replaced by another draw; a file that no native test program contains is left out. The same seed over the same
tree draws the same changes. Not part of ./test: a change takes about half a minute.

  scripts/mutants.py --count 100 --seed 1 --record before.json
  scripts/mutants.py --replay before.json       the same changes, as far as their lines still stand
"""
import argparse
import collections
import itertools
import json
import pathlib
import random
import re
import resource
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
COPY = ROOT / "build/mutants"
BUILD = COPY / "build/native"
ROOMS = ["app", "base", "board", "firmware", "link", "plugins/macro", "power", "report", "switches", "system"]
NEED_WINE = ["windows_test"]


# ---- the ways to break a line: each yields (begin, end, replacement) ------------------------------------------------

def code_of(line):
    """The line with the insides of texts and the comment blanked, so that positions stay."""
    line = re.sub(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])+\'', lambda m: '"' + "_" * (len(m[0]) - 2) + '"', line)
    return re.sub(r"//.*|/\*.*?\*/", lambda m: " " * len(m[0]), line)


def closing(code, at):
    """Where the bracket that opens at `at` closes, or None; and the commas directly inside."""
    depth, commas = 0, []
    for n in range(at, len(code)):
        depth += (code[n] in "([{") - (code[n] in ")]}")
        if depth == 1 and code[n] == ",":
            commas.append(n)
        if depth == 0:
            return n, commas
    return None, commas


def operators(table):
    pattern = re.compile("|".join(re.escape(word) for word in sorted(table, key=len, reverse=True)))
    return lambda line, code: ((m.start(), m.end(), word) for m in pattern.finditer(code) for word in table[m[0]])


def numbers(line, code):
    for m in re.finditer(r"(?<![\w.])(?:0[xX]([0-9A-Fa-f]+)|(\d+))(?![\w.]*\.)", code):
        if m[1]:
            yield m.start(1), m.end(1), f"{int(m[1], 16) + 1:0{len(m[1])}X}"
        else:
            yield m.start(2), m.end(2), str(int(m[2]) + 1)
            if int(m[2]) > 0:
                yield m.start(2), m.end(2), str(int(m[2]) - 1)


def texts(line, code):
    for m in re.finditer(r'"(_+)"', code):
        if line[m.start()] == '"' or m.end() - m.start() == 3:
            last = m.end() - 2
            if line[last].isalnum() and line[last - 1] not in "\\%":
                yield last, last + 1, "q" if line[last] != "q" else "p"


def dropped_statements(line, code):
    head = re.match(r"\s*(?:else )?(?:if \()?", code)
    start = head.end()
    if head[0].endswith("("):
        end = closing(code, start - 1)[0]
        if end is None:
            return
        start = end + 2
    rest = code[start:]
    if re.match(r"[\w:.>\[\]()*-]+\(.*\);\s*$", rest) and closing(rest, rest.index("("))[0] is not None:
        yield start, len(code.rstrip()), ";"
    if re.match(r"[\w:.>\[\]*-]+ [-+|&]?= .*;\s*$|[\w:.>-]+(\+\+|--);\s*$", rest) and not rest.startswith("using"):
        yield start, len(code.rstrip()), ";"


def dropped_returns(line, code):
    early = r"\s*(?:else )?if \(.*\) |\s*(?=\w+;)|\s{4,}"  # not the last word of a function
    m = re.match(rf"({early})((?:return|continue|break)\b[^;]*;)\s*$", code)
    if m:
        yield m.start(2), m.end(2), ";"


def conditions(line, code):
    m = re.search(r"\b(if|while) \(", code)
    end = m and closing(code, m.end() - 1)[0]
    if end:
        inside = line[m.end():end]
        yield m.end(), end, f"!({inside})"
        yield m.end(), end, "false"
        if m[1] == "if":
            yield m.end(), end, "true"
    for m in re.finditer(r"(?:&&|\|\|) [^&|;]*?(?=\)| && | \|\| |;|$)", code):
        if m[0].count("(") == m[0].count(")"):
            yield m.start() - 1, m.end(), ""
    for m in re.finditer(r" \? ", code):
        yield m.start(), m.end(), " && false ? "
        yield m.start(), m.end(), " || true ? "


def dropped_flags(line, code):
    for m in re.finditer(r" \| [\w:]+|\b[\w:]+ \| ", code):
        yield m.start(), m.end(), ""


def swapped_arguments(line, code):
    for at in (n for n, c in enumerate(code) if c in "({"):
        end, commas = closing(code, at)
        edges = [at, *commas, end]
        parts = [line[a + 1:b].strip() for a, b in zip(edges, edges[1:])] if end and commas else []
        if any(re.fullmatch(r"(const )?[\w:<>]+[&*]? \w+", part) for part in parts):
            continue  # a function's own parameters
        for n in range(len(parts) - 1):
            if parts[n] != parts[n + 1]:
                yield edges[n] + 1, edges[n + 2], f"{' ' if n else ''}{parts[n + 1]}, {parts[n]}"


WAYS = {
    "comparison": operators({" == ": [" != "], " != ": [" == "], " < ": [" <= "], " <= ": [" < "], " > ": [" >= "],
                             " >= ": [" > "], " && ": [" || "], " || ": [" && "]}),
    "arithmetic": operators({" + ": [" - "], " - ": [" + "], " * ": [" / "], " / ": [" * "], " += ": [" -= "],
                             " -= ": [" += "], "++": ["--"], "--": ["++"]}),
    "constant": numbers,
    "truth": operators({"true": ["false"], "false": ["true"], "TRUE": ["FALSE"], "FALSE": ["TRUE"]}),
    "text": texts,
    "dropped statement": dropped_statements,
    "dropped return": dropped_returns,
    "condition": conditions,
    "dropped flag": dropped_flags,
    "swapped arguments": swapped_arguments,
}


def mutants_of(line):
    code = code_of(line)
    if not code.strip() or re.match(r"\s*(#|static_assert|using |namespace |template)", code):
        return {}
    found = {way: {line[:a] + new + line[b:] for a, b, new in make(line, code)} - {line} for way, make in WAYS.items()}
    return {way: sorted(lines) for way, lines in found.items() if lines}


# ---- the tree ------------------------------------------------------------------------------------------------------

def sources():
    return sorted(f for room in ROOMS for f in (COPY / room).rglob("*") if f.suffix in (".cpp", ".h"))


def lines_of(file):
    return file.read_text(encoding="utf-8").split("\n")


def copy_tree():
    listed = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, capture_output=True, text=True).stdout
    names = {name for name in listed.split("\0") if (ROOT / name).is_file()}
    for name in names:
        target = COPY / name
        if not target.exists() or target.read_bytes() != (ROOT / name).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, target)
    for file in COPY.rglob("*"):
        if file.is_file() and not file.is_relative_to(COPY / "build") and str(file.relative_to(COPY)) not in names:
            file.unlink()


def draw(chance, files):
    """Changes without end: a line first, then a way to break it, then the place in the line."""
    lines = [(file, n, line) for file in files for n, line in enumerate(lines_of(file)) if mutants_of(line)]
    chance.shuffle(lines)
    for file, n, line in lines:
        ways = mutants_of(line)
        changed = chance.choice(ways[chance.choice(sorted(ways))])
        before = [text.strip() for text in lines_of(file)[:n]]
        yield {"file": str(file.relative_to(COPY)), "line": line.strip(), "occurrence": before.count(line.strip()),
               "replacement": changed.strip()}


def find(mutant):
    """(file, line number) where the line stands now: in its file, in one of that name, or once in all rooms."""
    files = sources()
    own = [f for f in files if str(f.relative_to(COPY)) == mutant["file"]]
    named = [f for f in files if f.name == pathlib.Path(mutant["file"]).name]
    for file in own + named:
        places = [n for n, text in enumerate(lines_of(file)) if text.strip() == mutant["line"]]
        if len(places) > mutant["occurrence"]:
            return file, places[mutant["occurrence"]]
    places = [(f, n) for f in files for n, text in enumerate(lines_of(f)) if text.strip() == mutant["line"]]
    return places[0] if len(places) == 1 else None


# ---- build and test ------------------------------------------------------------------------------------------------

def configure():
    # What is no longer used because of a change is no reason to refuse it; a function that returns nothing at all is.
    rules = (COPY / "CMakeLists.txt").read_text()
    (COPY / "CMakeLists.txt").write_text(rules.replace("-Werror)", "-Werror=return-type)"))
    one_file_a_unit = "-DCMAKE_UNITY_BUILD=OFF"  # a change compiles again what it touches and no more
    subprocess.run(["cmake", "--preset", "native", one_file_a_unit], cwd=COPY, check=True, stdout=subprocess.DEVNULL)


def build(targets):
    return subprocess.run(["ninja", "-C", BUILD, *targets], capture_output=True).returncode == 0


def ninja(*arguments):
    return subprocess.run(["ninja", "-C", BUILD, *arguments], check=True, capture_output=True, text=True).stdout


def reached_programs(programs):
    """For each source file the programs that it is part of."""
    files_of, current = {}, None
    for line in ninja("-t", "deps").split("\n"):
        if line.startswith(" "):
            files_of[current].append((BUILD / line.strip()).resolve())
        elif ": #deps" in line:
            current = line.split(":")[0]
            files_of[current] = []
    reached = collections.defaultdict(list)
    for program in programs:
        objects = ninja("-t", "inputs", f"bin/{program}").split("\n")
        for file in {file for name in objects for file in files_of.get(name.strip(), [])}:
            reached[file].append(program)
    return reached


def run(program, cpu_seconds):
    """The first test that fails, or an empty text. Its time is the processor's: a busy machine is no fault."""
    def limit():
        resource.setrlimit(resource.RLIMIT_CPU, (cpu_seconds, cpu_seconds + 5))
        resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    log = BUILD / "mutant.log"
    with open(log, "wb") as out:
        try:
            status = subprocess.run([BUILD / "bin" / program, "--gtest_fail_fast"], cwd=BUILD, preexec_fn=limit,
                                    stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT,
                                    timeout=900).returncode
        except subprocess.TimeoutExpired:
            status = "no end"
    if status == 0:
        return ""
    said = log.read_text(errors="replace")
    names = (re.findall(r"^\[  FAILED  \] ([\w./]+)", said, re.M) or
             re.findall(r"^\[ RUN      \] ([\w./]+)", said, re.M)[-1:])
    how = "" if status == 1 else f" ({status})"
    return f"{program}: {names[0] if names else 'before its first test'}{how}"


def baseline(wanted):
    """The test programs and the processor's seconds of each, quickest first. All must pass on the unbroken tree."""
    programs = re.findall(r"^bin/(\w+_test):", ninja("-t", "targets", "all"), re.M)
    programs = [p for p in programs if p in wanted or not wanted and p not in NEED_WINE]
    if not build(programs):
        sys.exit("the unbroken tree does not build")
    seconds = {}
    for program in programs:
        before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
        if failed := run(program, 600):
            sys.exit(f"the unbroken tree fails: {failed}")
        seconds[program] = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before
    return dict(sorted(seconds.items(), key=lambda item: item[1]))


def try_out(file, number, replacement, programs):
    """What noticed the change (empty: nothing), or None when it does not compile."""
    whole = file.read_bytes()
    lines = lines_of(file)
    indent = lines[number][:len(lines[number]) - len(lines[number].lstrip())]
    lines[number] = indent + replacement
    try:
        file.write_text("\n".join(lines), encoding="utf-8")
        for name, seconds in programs.items():  # one by one: what the first notices, the others need not be linked for
            if not build([name]):
                return None
            if said := run(name, int(seconds * 10) + 20):
                return said
        return ""
    finally:
        file.write_bytes(whole)


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--count", type=int, help="how many (100; with --replay: as many as still stand)")
    options.add_argument("--seed", type=int, default=1)
    options.add_argument("--record", type=pathlib.Path, help="writes what was chosen and what noticed it")
    options.add_argument("--replay", type=pathlib.Path, help="first what was recorded there")
    options.add_argument("--tests", default="", help="test programs, separated by commas (all)")
    options = options.parse_args()

    recorded = json.loads(options.replay.read_text()) if options.replay else []
    copy_tree()
    configure()
    programs = baseline([p for p in options.tests.split(",") if p])
    reached = reached_programs(programs)
    standing = [m for m in recorded if find(m)]
    for m in recorded:
        if m not in standing:
            print(f"no longer stands: {m['file']}: {m['line']}")
    count = options.count or (len(standing) if recorded else 100)

    tried, refused = [], []
    for mutant in itertools.chain(standing, draw(random.Random(options.seed), sorted(reached.keys() & set(sources())))):
        if len(tried) == count:
            break
        file, number = find(mutant)
        if any(m["place"] == (file, number) for m in tried):
            continue
        said = try_out(file, number, mutant["replacement"], {p: programs[p] for p in programs if p in reached[file]})
        if said is None:
            refused.append(mutant)
            if mutant in standing:
                print(f"no longer compiles: {mutant['file']}: {mutant['replacement']}")
            continue
        tried.append({**mutant, "noticed": said, "place": (file, number)})
        print(f"{len(tried):3} {'noticed' if said else 'ESCAPED'} {file.relative_to(COPY)}:{number + 1}:",
              f"{mutant['line']}  =>  {mutant['replacement']}{'  [' + said + ']' if said else ''}", flush=True)
        if options.record:
            kept = [{key: value for key, value in m.items() if key != "place"} for m in tried]
            options.record.write_text(json.dumps(kept, indent=1, ensure_ascii=False) + "\n")

    escaped = [m for m in tried if not m["noticed"]]
    for m in escaped:
        print(f"\n{m['place'][0].relative_to(COPY)}:{m['place'][1] + 1}\n  - {m['line']}\n  + {m['replacement']}")
    if recorded:
        print(f"\n{len(recorded) - len(standing)} of {len(recorded)} recorded lines no longer stand")
    print(f"\n{len(tried) - len(escaped)} noticed, {len(escaped)} escaped of {len(tried)}"
          f" ({len(refused)} others did not compile)")


main()
