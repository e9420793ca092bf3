"""Plants one fault after the other in the copies that mutants.sh has built, and counts what is caught."""

from __future__ import annotations

import random
import re
import subprocess
import sys
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
TEST_SECONDS = 300


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


def succeeds(command: list[str], folder: Path, seconds: int) -> bool:
    try:
        return subprocess.run(command, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              stdin=subprocess.DEVNULL, timeout=seconds).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def try_fault(copy: Path, fault: Fault) -> str:
    """Gives "caught", "unseen", or "uncompiled"."""
    file = copy / fault.file
    whole = file.read_text()
    lines = whole.split("\n")
    lines[fault.line] = fault.after
    file.write_text("\n".join(lines))
    try:
        if not succeeds(["cmake", "--build", "build"], copy, TEST_SECONDS):
            return "uncompiled"
        # In namespaces of its own, so that two copies can use the same port.
        tests = ["unshare", "--net", "sh", "-c", "ip link set lo up && exec ctest --test-dir build --stop-on-failure "
                 "--timeout 100 --output-on-failure -E 'docs.fleet|headers'"]
        return "unseen" if succeeds(tests, copy, TEST_SECONDS) else "caught"
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
    for copy in sorted(path for path in work.iterdir() if path.is_dir()):
        copies.put(copy)
    jobs = copies.qsize()
    faults = all_faults(work / "1", house)
    random.Random(seed).shuffle(faults)
    known = known_equivalents(list_file)
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
            result = try_fault(copy, fault)
        finally:
            copies.put(copy)
        if result != "uncompiled":
            tally[result] += 1
        if result == "unseen":
            print(f"unseen  {key[0]} => {key[1]}  # line {fault.line + 1}", flush=True)

    with ThreadPoolExecutor(jobs) as pool:
        list(pool.map(one, faults[: count * 3]))
    total = tally["caught"] + tally["unseen"]
    print(f"{tally['caught']} of {total} caught ({100 * tally['caught'] / max(total, 1):.1f} %), "
          f"{tally['equivalent']} known to change nothing; {len(faults)} places, sample {seed}")
    return 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]), sys.argv[2], int(sys.argv[3]), int(sys.argv[4]), Path(sys.argv[5])))
