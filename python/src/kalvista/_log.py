"""The library's log, as the logger "kalvista" of the logging module.

Nothing is printed. Records carry the library's source name and line as ``source`` and ``line``:
programs search for them. A message that no handler asks for is not even composed.
"""
from __future__ import annotations

import itertools
import logging
import re

log: logging.Logger = logging.getLogger("kalvista")
log.addHandler(logging.NullHandler())

_LEVELS = {"ERROR": logging.ERROR, "WARNING": logging.WARNING, "INFO": logging.INFO, "DEBUG": logging.DEBUG}
_START = re.compile(r"^(ERROR|WARNING|INFO|DEBUG) \[([^\n:\]]*):(-?\d+)\] @ [^\n ]+s :", re.MULTILINE)


def threshold() -> int:
    """Up to which of the library's levels, 0 (error) to 3 (debug), messages are asked for."""
    for level, name in ((3, logging.DEBUG), (2, logging.INFO), (1, logging.WARNING)):
        if log.isEnabledFor(name):
            return level
    return 0


def forward(lines: str) -> None:
    """Hands lines of the library's log on; a message may reach over several."""
    starts = list(_START.finditer(lines))
    for start, following in itertools.zip_longest(starts, starts[1:]):
        message = lines[start.end() : following.start() if following else None].rstrip("\n")
        level, source, line = start.groups()
        log.log(_LEVELS[level], message, extra={"source": source, "line": int(line)})
