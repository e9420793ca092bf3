"""Measures loading the sample in Python: load.py LIBRARY_LOAD DIRECTORY SERIAL PAGE

LIBRARY_LOAD is LibraryLoad.cpp as a shared object. The table goes between the marks of the page. Ends
with 1 when a target is missed. What is measured how stands on the page.
"""
from __future__ import annotations

import ctypes
import marshal
import pathlib
import statistics
import sys
import time
import xml.etree.ElementTree as ElementTree
from typing import Any, Callable

import kalvista

ROUNDS, SAMPLE_SECONDS = 31, 0.02
BEGIN, END = "<!-- measured in Python: begin -->\n", "<!-- measured in Python: end -->\n"
MOST_OF_LOAD, MOST_OF_TREE = 3.0, 0.3
WHOLE_NUMBERS = {"TecA", "TecB", "TecC", "TecD", "AddedOffset", "FlagCycles", "FlagCycles_Ignore", "E1", "E3"}


def values_of_tree(path: str, serial: int) -> tuple[Any, ...]:
    """The values of a calibration as tuples and dictionaries, as quickly as ElementTree gives them."""
    root = ElementTree.parse(path).getroot()
    optics = root.iterfind("Temperature/Optics/OpticsDef")
    return serial, _constants(root.find("Main")), tuple([_optics(one) for one in optics])


def _constants(element: Any) -> dict[str, float]:
    return {key.tag: int(key.text) if key.tag in WHOLE_NUMBERS else float(key.text) for key in element}


def _optics(one: ElementTree.Element) -> tuple[Any, ...]:
    text = one.findtext
    return (int(text("FOV", "0")), text("Text", ""), int(text("SerNo", "0")), text("SamplePointCali", "").lower() == "true",
            tuple([_range(each) for each in one.iterfind("TempRanges/TemperatureRange")]))


def _range(one: ElementTree.Element) -> tuple[Any, ...]:
    low, high, low_extended, high_extended = map(one.findtext, ("TempLo", "TempHi", "TempLoExt", "TempHiExt"))
    return (float(low or 0), float(high or 0), low_extended and float(low_extended), high_extended and float(high_extended),
            int(one.findtext("Decimal", "1")), tuple([int(rate.text or 0) for rate in one.iterfind("Framerates/Framerate/FR")]),
            _constants(one.find("TableParams")))


def plain(value: Any) -> Any:
    """A record as a tuple, a mapping as a dictionary, numbers in the library's precision."""
    if isinstance(value, (kalvista.Constants, dict)):
        return {key: plain(number) for key, number in value.items()}
    if isinstance(value, tuple):
        return tuple(map(plain, value))
    if isinstance(value, float):
        return ctypes.c_float(value).value
    return plain(tuple(vars(value).values())) if hasattr(value, "__dataclass_fields__") else value


def per_run(work: Callable[[], object], times: int) -> float:
    before = time.process_time()
    for _ in range(times):
        work()
    return (time.process_time() - before) / times


def medians(contestants: dict[str, Callable[[], object]]) -> dict[str, tuple[float, float]]:
    """The median and the least time of each, in turns."""
    times = {name: max(1, int(SAMPLE_SECONDS / per_run(work, 50))) for name, work in contestants.items()}
    samples: dict[str, list[float]] = {name: [] for name in contestants}
    for _ in range(ROUNDS):
        for name, work in contestants.items():
            samples[name].append(per_run(work, times[name]))
    return {name: (statistics.median(all_of_it), min(all_of_it)) for name, all_of_it in samples.items()}


def measure(library_load: str, directory: str, serial: int) -> str:
    loader = ctypes.CDLL(library_load).loadTimes
    folder, path = directory.encode(), f"{directory}/Cali-{serial}.xml"
    values = plain(kalvista.Calibration.load(directory, serial))
    image = marshal.dumps(values)
    assert plain(values_of_tree(path, serial)) == marshal.loads(image) == values and loader(folder, serial, 1)
    return report(medians({
        "`Calibration.load`": lambda: kalvista.Calibration.load(directory, serial),
        "`ConfigCali::load`, in C++": lambda: loader(folder, serial, 1),
        "making the objects": lambda: marshal.loads(image),
        "`ElementTree`": lambda: values_of_tree(path, serial),
    }))


def report(figures: dict[str, tuple[float, float]]) -> str:
    load, library, objects, tree = (median for median, _ in figures.values())
    targets = (("3 times `ConfigCali::load` and making the objects", load / (MOST_OF_LOAD * library + objects), 1.0),
               ("reading the same values with `ElementTree`", load / tree, MOST_OF_TREE))
    lines = [f"Measured on Python {sys.version.split()[0]}.", "", "| median (minimum) of | µs |", "| --- | --- |"]
    lines += [f"| {name} | {median * 1e6:.1f} ({least * 1e6:.1f}) |" for name, (median, least) in figures.items()]
    lines += ["", "| `Calibration.load` against | at most | measured | verdict |", "| --- | --- | --- | --- |"]
    lines += [f"| {name} | {most:.2f} | {ratio:.2f} | {'reached' if ratio <= most else 'MISSED'} |" for name, ratio, most in targets]
    return "\n".join(lines) + "\n"


def main(library_load: str, directory: str, serial: str, page: str) -> int:
    table = measure(library_load, directory, int(serial))
    print(table)
    text = pathlib.Path(page).read_text()
    before, rest = text.split(BEGIN)
    pathlib.Path(page).write_text(f"{before}{BEGIN}\n{table}\n{END}{rest.split(END)[1]}")
    return 1 if "MISSED" in table else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
