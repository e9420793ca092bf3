"""Builds the extension module: the binding, and all of the library's sources, which library/ leads to."""
import os
import re
from pathlib import Path

from pybind11.setup_helpers import ParallelCompile, Pybind11Extension
from setuptools import setup

LIBRARY = Path("library")


def version() -> str:
    header = (LIBRARY / "include/kalvista/version.h").read_text()
    return ".".join(re.findall(r"#define KALVISTA_VERSION_\w+ (\d+)", header))


def constants() -> "list[tuple[str, str | None]]":
    """What the library is built with: the defaults of its own build, or the environment's."""
    defaults = re.findall(r'set\((KALVISTA_\w+) "(.*?)" CACHE', (LIBRARY / "cmake/BuildConstants.cmake").read_text())
    return [(name, f'"{os.environ.get(name, default)}"') for name, default in defaults]


def sources() -> "list[str]":
    return sorted(str(path) for folder in (LIBRARY / "src", Path("src/native")) for path in folder.rglob("*.cpp"))


ParallelCompile(default=0).install()
setup(
    version=version(),
    ext_modules=[
        Pybind11Extension(
            "kalvista._kalvista",
            sources(),
            include_dirs=[str(LIBRARY / "include"), str(LIBRARY / "src")],
            define_macros=constants(),
            cxx_std=17,
            extra_compile_args=["-O3", "-g0"],
            # Nothing but the module's entry is seen from outside, least of all a library that is loaded beside it.
            extra_link_args=["-Wl,--version-script=module.map"],
        )
    ],
)
