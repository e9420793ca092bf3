"""Plants one fault after the other in the copies that mutants.sh has built, and counts what is caught."""

from __future__ import annotations

import os
import random
import re
import shlex
import subprocess
import sys
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from queue import SimpleQueue
from typing import Iterator, NamedTuple

# A token and what it is exchanged for; the first group is replaced.
EXCHANGES = [
    (r" (<) ", "<="), (r" (<=) ", "<"), (r" (>) ", ">="), (r" (>=) ", ">"),
    (r" (==) ", "!="), (r" (!=) ", "=="), (r" (&&) ", "||"), (r" (\|\|) ", "&&"),
    (r" (\+) ", "-"), (r" (-) ", "+"), (r" (\*) ", "/"), (r"(\+\+)", "--"), (r" (\+=) ", "-="),
    (r"\b(true)\b", "false"), (r"\b(false)\b", "true"), (r"(?:\(|&& |\|\| |return )(!)\b", ""),
    (r"(?<![\w.\"'])([0-9]+)(?![\w.\"'])", "+1"),
]
STATEMENT = re.compile(r"^\s+(?!return\b|using\b|static\b|const\b|auto\b|namespace\b|friend\b|break\b)[\w.:>*\[\]-]+ ?(?:\(|=|<<|\+=).*;$")
# For each house, what is built and which tests run, one stage after the other; the first fails soonest. Without
# pages, packages and Python, which take too long for every fault.
OTHERS = "docs|headers|python|packaging"
SLOWER = "differential|Interface|OnlineRepository"
LIBRARY = "^LibraryTest|Process|Thread|Interface|CameraDiscovery|DefaultRoute|OnlineRepository|fuzz|differential"
STAGES = {
    "src": [("kalvista", "-R '{mirrored}'"),
            ("kalvista", f"-E '{{mirrored}}|{OTHERS}|{SLOWER}'"), ("all", f"-R '{SLOWER}'")],
    "tools/kalvista": [("all", "-R '{mirrored}'"), ("all", f"-E '{{mirrored}}|{OTHERS}|{LIBRARY}|LargeFiles'"),
                       ("all", "-R 'docs.(tool|schemas)|LargeFiles'")],
}
UNCOMPILED = 77
# The first expectation that is not met ends a test. In namespaces of its own, so that two copies can use the same
# port and the same places in /tmp, and nothing outlives its time. What a hung or greedy fault takes is bounded.
STAGE = """cmake --build build --target {target} >/dev/null 2>&1 || exit {uncompiled}
ulimit -d 8000000
export GTEST_THROW_ON_FAILURE=1
exec timeout --signal=KILL {seconds} unshare --net --mount --pid --fork --kill-child --mount-proc sh -c '
mount -t tmpfs none /tmp && ip link set lo up && exec ctest --test-dir build --stop-on-failure "$@"' sh {tests}"""


class Fault(NamedTuple):
    file: str
    line: int
    before: str
    after: str


def code_of(line: str) -> str:
    """The line with texts and comments blanked out, so that no token is found in them."""
    line = re.sub(r'"(?:\\.|[^"\\])*"', lambda text: '"' + " " * (len(text.group()) - 2) + '"', line)
    return re.sub(r"//.*", lambda text: " " * len(text.group()), line)


def faults_of_line(line: str) -> Iterator[str]:
    code = code_of(line)
    for pattern, exchange in EXCHANGES:
        for found in re.finditer(pattern, code):
            token = str(int(found[1]) + 1) if exchange == "+1" else exchange
            yield line[: found.start(1)] + token + line[found.end(1) :]
    for text in re.finditer(r'"[^"\\%]{2,}"', line):
        if not code.lstrip().startswith("#"):
            yield line[: text.start() + 1] + "#" + line[text.start() + 2 :]
    if STATEMENT.match(code) and code.count("(") == code.count(")"):
        yield re.match(r"\s*", line)[0] + ";"  # type: ignore[index]


def all_faults(copy: Path, house: str) -> list[Fault]:
    faults = []
    for file in sorted((copy / house).rglob("*")):
        if file.suffix not in (".cpp", ".h"):
            continue
        for number, line in enumerate(file.read_text().split("\n")):
            if line.lstrip().startswith(("#", "//", "template", "static_assert")):
                continue
            name = str(file.relative_to(copy))
            faults += [Fault(name, number, line, after) for after in faults_of_line(line)]
    return faults


def mirrored_suites(copy: Path, file: str) -> str:
    """The tests in the folder that lies like the file's, as a pattern; one that fits none where there are none."""
    folder = copy / "tests" / Path(file).relative_to("src" if file.startswith("src/") else "").parent
    texts = [test.read_text() for test in sorted(folder.glob("*Test.cpp"))]
    suites = {suite for text in texts for suite in re.findall(r"^TEST(?:_F|_P)?\((\w+),", text, re.M)}
    scripts = [f"tool[.]{folder.name}"] if any(folder.glob("*_test.py")) else []
    return "|".join(scripts + [f"[.]{suite}[.]" for suite in sorted(suites)]) or "no such test"


def run_stage(copy: Path, file: str, stage: tuple[str, str], seconds: int) -> int:
    target, tests = stage
    script = STAGE.format(target=target, seconds=seconds, uncompiled=UNCOMPILED,
                          tests=tests.format(mirrored=mirrored_suites(copy, file)))
    return run_shell(script, copy)


def run_shell(script: str, copy: Path) -> int:
    # A command that each step is handed to, such as one that waits until the machine has time.
    wrapper = shlex.split(os.environ.get("RUN_BY", ""))
    # Each copy stands where the first was built, whose paths the build knows.
    there = 'mount --bind "$0" ../built && cd ../built && '
    return subprocess.run([*wrapper, "unshare", "--mount", "sh", "-c", there + script, copy], cwd=copy,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                          stdin=subprocess.DEVNULL).returncode


def time_limit(copy: Path, house: str) -> int:
    """For each stage, far more than the tests take when nothing is wrong, as they must be to begin with."""
    longest = 0
    for stage in STAGES[house]:
        run_shell("true", copy)  # has the waiting, if any, over
        begin = time.monotonic()
        if run_stage(copy, house + "/none", stage, 3600) != 0:
            failed = copy / "build/Testing/Temporary/LastTestsFailed.log"
            sys.exit(f"without any fault it fails: {failed.read_text() if failed.exists() else stage[0]}")
        longest = max(longest, int(time.monotonic() - begin))
    return 60 + 3 * longest


def try_fault(copy: Path, house: str, fault: Fault, seconds: int) -> str:
    """Gives "caught", "unseen", or "uncompiled"."""
    file = copy / fault.file
    whole = file.read_text()
    lines = whole.split("\n")
    lines[fault.line] = fault.after
    file.write_text("\n".join(lines))
    try:
        for stage in STAGES[house]:
            status = run_stage(copy, fault.file, stage, seconds)
            if status != 0:
                return "uncompiled" if status == UNCOMPILED else "caught"
        return "unseen"
    finally:
        file.write_text(whole)


def known_equivalents(list_file: Path) -> set[tuple[str, str]]:
    """Lines "file: code => changed code  # reason"; blanks around the code do not count."""
    known = set()
    for line in list_file.read_text().splitlines():
        if line and not line.startswith("#"):
            before, after = line.split("  # ")[0].split(" => ")
            known.add((before, after))
    return known


def main(work: Path, house: str, count: int, seed: int, list_file: Path) -> int:
    copies: SimpleQueue[Path] = SimpleQueue()
    for copy in sorted(work.glob("[0-9]*")):
        copies.put(copy)
    jobs = copies.qsize()
    faults = all_faults(work / "1", house)
    random.Random(seed).shuffle(faults)
    known = known_equivalents(list_file)
    seconds = time_limit(work / "1", house)
    print(f"{len(faults)} places; a stage may take {seconds} seconds", flush=True)
    tally = {"caught": 0, "unseen": 0, "equivalent": 0}

    def one(fault: Fault) -> None:
        if tally["caught"] + tally["unseen"] >= count:
            return
        key = (f"{fault.file}: {fault.before.strip()}", fault.after.strip())
        if key in known:
            tally["equivalent"] += 1
            return
        copy = copies.get()
        try:
            result = try_fault(copy, house, fault, seconds)
        finally:
            copies.put(copy)
        if result != "uncompiled":
            tally[result] += 1
        tried = tally["caught"] + tally["unseen"]
        if result == "caught" and tried % 10 == 0:
            print(f"{tally['caught']} of {tried} caught", flush=True)
        if result == "unseen":
            print(f"unseen of {tried}  {key[0]} => {key[1]}  # line {fault.line + 1}", flush=True)

    with ThreadPoolExecutor(jobs) as pool:
        list(pool.map(one, faults[: count * 3]))
    total = tally["caught"] + tally["unseen"]
    print(f"{tally['caught']} of {total} caught ({100 * tally['caught'] / max(total, 1):.1f} %), "
          f"{tally['equivalent']} known to change nothing; {len(faults)} places, sample {seed}")
    return 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]), sys.argv[2], int(sys.argv[3]), int(sys.argv[4]), Path(sys.argv[5])))
