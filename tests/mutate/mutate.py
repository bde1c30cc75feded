#!/usr/bin/env python3
"""Changes one operator, constant, condition or call of the library at a time, and tells which changes no test notices.

The sources are copied to build/mutate with every change in them, each behind a switch, and built once. Each test runs
alone to learn which changes it reaches. Then each change runs with the tests that reach it until one fails, crashes or
takes too long. What cannot make a difference stands in equal.txt, with the reason.
"""

import argparse
import concurrent.futures
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from collections import defaultdict
from pathlib import Path

from places import Source

ROOT = Path(__file__).resolve().parents[2]
HERE = Path("tests/mutate")
COPY = ROOT / "build/mutate/source"
BUILT = ROOT / "build/mutate/build"
COPIED = ("CMakeLists.txt", "cmake", "cpp", "po", "public", "tests")
PROGRAMS = ("unit_tests", "public_tests")
JOBS = 2
FIRST = 12  # tests that a change is tried with before the others
SLOW = 1.0  # seconds; tests that take longer come last
MEMORY = 8 << 30
MOST = 2000  # changes of one file


def say(text):
    print(text, file=sys.stderr, flush=True)


# Sources

def all_files():
    paths = [path.relative_to(ROOT) for folder in ("cpp", "public") for path in (ROOT / folder).rglob("*.*")]
    return sorted(str(path) for path in paths if path.suffix in (".cpp", ".h") and "windows" not in path.parts)


def chosen_files(wanted):
    names = all_files()
    for file in wanted:
        if not any(file in (name, Path(name).stem) for name in names):
            raise SystemExit(f"./dev mutate: the library has no {file}")
    return [name for name in names if not wanted or name in wanted or Path(name).stem in wanted]


def find_places(names):
    say(f"Looking for what can be changed in {len(names)} files")
    with concurrent.futures.ProcessPoolExecutor(JOBS) as pool:
        sources = list(pool.map(Source, [ROOT] * len(names), names))
    # The numbers of a file do not depend on which others are chosen: little is compiled anew.
    firsts = {name: 1 + MOST * index for index, name in enumerate(all_files())}
    for source in sources:
        assert len(source.all) <= MOST, source.name
        for number, place in enumerate(source.all, firsts[source.name]):
            place.number = number
    return sources


def write_copy(sources):
    """Files that stay the same keep their time, so that little is compiled anew."""
    tops = [ROOT / top for top in COPIED]
    files = {path.relative_to(ROOT): path for top in tops for path in [top, *top.rglob("*")] if path.is_file()}
    files[Path("cpp/Platform/Mutants.cpp")] = ROOT / HERE / "mutants.cpp"
    changed = {Path(source.name): source.rewritten() for source in sources}
    for old in [path for path in COPY.rglob("*") if path.is_file() and path.relative_to(COPY) not in files]:
        old.unlink()
    for name, path in files.items():
        data, target = changed.get(name) or path.read_bytes(), COPY / name
        if not target.is_file() or target.read_bytes() != data:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(data)
            shutil.copymode(path, target)


def build():
    say("Building build/mutate")
    flags = f"-O0 -w -I{COPY / HERE} -include {COPY / HERE / 'mutants.h'}"
    for command in (["cmake", "-G", "Ninja", "-S", COPY, "-B", BUILT, "-DZO_EXAMPLES=OFF", "-DZO_TOOLS=OFF",
                     "-DCMAKE_BUILD_TYPE=None",
                     f"-DCMAKE_PREFIX_PATH={ROOT / 'build/libraries'}", f"-DCMAKE_CXX_FLAGS={flags}"],
                    ["cmake", "--build", BUILT, "-j", str(JOBS), "--target", *PROGRAMS]):
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            raise SystemExit(f"{done.stdout[-20000:]}\n./dev mutate: the changed copy does not build")


# Tests

def run(program, tests, limit, **variables):
    """Whether the tests pass in that many seconds of the processor; in a folder, and with a clipboard, of their own."""
    folder = tempfile.mkdtemp(prefix="zo-mutate-")
    os.chmod(folder, 0o1777)  # as that of the system
    environment = os.environ | {"TMPDIR": folder, "XDG_RUNTIME_DIR": folder, "GTEST_FILTER": ":".join(tests),
                                "GTEST_FAIL_FAST": "1"} | variables
    process = subprocess.Popen([BUILT / "bin" / program], cwd=folder, env=environment, start_new_session=True,
                               stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        for kind, most in ((resource.RLIMIT_CPU, int(limit) + 1), (resource.RLIMIT_AS, MEMORY)):
            resource.prlimit(process.pid, kind, (most, most))
        return process.wait(4 * limit) == 0
    except (subprocess.TimeoutExpired, ProcessLookupError):
        return False
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)  # with what the tests started
        except ProcessLookupError:
            pass
        process.wait()
        shutil.rmtree(folder, ignore_errors=True)


def all_tests():
    for program in PROGRAMS:
        listed = subprocess.run([BUILT / "bin" / program, "--gtest_list_tests"], stdout=subprocess.PIPE, check=True,
                                text=True).stdout
        for line in listed.splitlines()[1:]:
            name = line.split("#")[0].strip()
            if line.startswith(" "):
                yield program, suite + name
            else:
                suite = name


def trace(test):
    """The seconds that a test takes, none when it fails, and a byte for each change: whether it reaches it."""
    program, name = test
    with tempfile.NamedTemporaryFile() as file:
        file.write(bytes(1 + MOST * len(all_files())))
        file.flush()
        start = time.monotonic()
        passed = run(program, [name], 120, ZO_MUTANTS_REACHED=file.name)
        return time.monotonic() - start if passed else None, Path(file.name).read_bytes()


def trace_all(pool):
    """The seconds of each test, and by the number of each change the tests that reach it."""
    tests = list(all_tests())
    say(f"Running {len(tests)} tests without a change, each alone")
    seconds, reaching = {}, defaultdict(list)
    for test, (taken, reached) in zip(tests, pool.map(trace, tests)):
        if taken is None:
            print(f"{test[1]}: left out, as it fails alone or in the changed copy")
            continue
        seconds[test] = taken
        for number in (at.start() for at in re.finditer(b"\1", reached)):
            reaching[number].append(test)
    return seconds, reaching


def is_noticed(place, tests, seconds):
    """Asks the quickest tests first, and the slow ones when no other notices the change."""
    ordered = sorted(tests, key=seconds.get)
    slow = sum(seconds[test] > SLOW for test in tests)
    quick = ordered[:len(ordered) - slow]
    for stage in (quick[:FIRST], quick[FIRST:], ordered[len(quick):]):
        for program in PROGRAMS:
            some = [test for test in stage if test[0] == program]
            limit = 5 + 3 * sum(seconds[test] for test in some)
            if some and not run(program, [name for _, name in some], limit, ZO_MUTANT=str(place.number)):
                return True
    return False


# Report

def read_equal(path):
    """Entries of four lines, of which the last is the reason: the others are what `key_of` tells."""
    text = "\n".join(line.strip() for line in path.read_text(encoding="utf-8").splitlines() if line[:1] != "#")
    entries = [block.strip().split("\n") for block in text.split("\n\n") if block.strip()]
    for entry in entries:
        if len(entry) != 4:
            raise SystemExit(f"{path}: an entry has not four lines: {entry[0]}")
    return {tuple(entry[:3]) for entry in entries}


def key_of(source, place):
    return f"{source.name}: {place.function}", source.line_text(place.line), place.change


def tell_stale(equal, sources):
    there = {key_of(source, place) for source in sources for place in source.all}
    for entry in sorted(equal - there):
        if any(entry[0].startswith(f"{source.name}: ") for source in sources):
            print("equal.txt tells of what is not there: " + " | ".join(entry))


def tell_survivor(source, place, tests):
    names = [name for _, name in tests]
    reached = "no test reaches it"
    if names:
        reached = "reached by " + ", ".join(names[:3]) + (f" and {len(names) - 3} more" if names[3:] else "")
    print(f"{source.name}:{place.line}: {place.change}; {reached}", flush=True)


def print_table(rows):
    print(f"\n{'':<52} {'mutants':>8} {'noticed':>8} {'share':>6} {'equal':>6} {'skipped':>8}")
    for name, tried, noticed, equal, skipped in [*rows, ("all", *map(sum, list(zip(*rows))[1:]))]:
        share = f"{100 * noticed / tried:.0f} %" if tried else "-"
        print(f"{name:<52} {tried:>8} {noticed:>8} {share:>6} {equal:>6} {skipped:>8}")


def print_list(sources):
    for source in sources:
        for place in source.all:
            print(f"{source.name}:{place.line}: {place.function}: {place.change}")
        for line, reason in source.skipped:
            print(f"{source.name}:{line}: skipped: {reason}")


def mutate(options, sources):
    equal = read_equal(ROOT / HERE / "equal.txt")
    tell_stale(equal, sources)
    write_copy(sources)
    build()
    rows = []
    with concurrent.futures.ThreadPoolExecutor(JOBS) as pool:
        seconds, reaching = trace_all(pool)
        say("Trying the changes")
        for source in sources:
            left = [place for place in source.all if key_of(source, place) not in equal]
            # Only the compiler evaluates the others, as far as the tests tell.
            tried = running = [place for place in left if reaching[place.number] or not place.constant]
            if options.sample is not None and options.sample < len(running):
                tried = random.Random(f"{options.seed} {source.name}").sample(running, options.sample)
            tried.sort(key=lambda place: place.number)
            found = pool.map(lambda place: is_noticed(place, reaching[place.number], seconds), tried)
            noticed = 0
            for place, is_so in zip(tried, found):
                noticed += is_so
                if not is_so:
                    tell_survivor(source, place, reaching[place.number])
            rows.append((source.name, len(tried), noticed, len(source.all) - len(left),
                         len(source.skipped) + len(left) - len(running)))
    print_table(rows)


def main():
    parser = argparse.ArgumentParser(prog="./dev mutate", description=__doc__.splitlines()[0])
    parser.add_argument("--sample", type=int, metavar="N", help="try N changes of each file, drawn by lot")
    parser.add_argument("--seed", type=int, default=1, help="of the lot; 1 without this")
    parser.add_argument("--list", action="store_true", help="only tell what can be changed, and what is skipped")
    parser.add_argument("files", nargs="*", metavar="FILE", help="a path, or a name such as Math2; all without one")
    options = parser.parse_args()
    sources = find_places(chosen_files(options.files))
    if options.sample is not None:
        print(f"seed {options.seed}")
    if options.list:
        print_list(sources)
    else:
        mutate(options, sources)


if __name__ == "__main__":
    main()
