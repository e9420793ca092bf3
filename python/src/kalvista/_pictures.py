"""A calibration to look at: as bars over temperature, and as a table."""
from __future__ import annotations

import html
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    from ._records import Calibration, Optics, Range

_HEAD = ("Optics", "Range in °C", "Extended", "Decimals", "Frame rates")


def _extended(one: Range) -> tuple[float, float]:
    low = one.low if one.low_extended is None else min(one.low, one.low_extended)
    high = one.high if one.high_extended is None else max(one.high, one.high_extended)
    return low, high


def _optics_text(optics: Optics) -> str:
    """What can be shown anywhere: bytes that were no text have become marks of replacement."""
    text = optics.text.encode(errors="surrogateescape").decode(errors="replace")
    return f"{optics.fov}° {text}".rstrip()


def _rates_text(one: Range) -> str:
    return ", ".join(map(str, one.frame_rates)) or "any"


def _limit_text(limit: float | None) -> str:
    return "-" if limit is None else f"{limit:g}"


def plot(calibration: Calibration, axes: Any) -> Any:
    if axes is None:
        axes = _new_axes()
    rows = [(index, optics, one) for index, optics in enumerate(calibration.optics) for one in optics.ranges]
    for row, (index, _, one) in enumerate(rows):
        low, high = _extended(one)
        color = f"C{index}"
        axes.barh(row, high - low, left=low, color=color, alpha=0.35)
        axes.barh(row, one.high - one.low, left=one.low, color=color)
        axes.annotate(f"{_rates_text(one)} Hz", (high, row), xytext=(4, 0), textcoords="offset points", va="center")
    # A dollar sign would begin a formula.
    axes.set_yticks(range(len(rows)), [_optics_text(optics).replace("$", r"\$") for _, optics, _ in rows])
    axes.invert_yaxis()
    axes.margins(x=0.2)
    axes.set_xlabel("Temperature in °C")
    axes.set_title(f"Calibration of camera {calibration.serial}")
    return axes


def _new_axes() -> Any:
    try:
        from matplotlib import pyplot
    except ImportError as error:
        raise ImportError('plot() needs matplotlib; install it with: pip install "kalvista[plot]"') from error
    return pyplot.subplots()[1]


def html_table(calibration: Calibration) -> str:
    rows = [
        (
            _optics_text(optics),
            f"{one.low:g} to {one.high:g}",
            f"{_limit_text(one.low_extended)} to {_limit_text(one.high_extended)}",
            str(one.decimals),
            _rates_text(one),
        )
        for optics in calibration.optics
        for one in optics.ranges
    ]
    head = "".join(f"<th>{text}</th>" for text in _HEAD)
    body = "".join(f"<tr>{''.join(f'<td>{html.escape(cell)}</td>' for cell in row)}</tr>" for row in rows)
    caption = f"Calibration of camera {calibration.serial}"
    return f"<table><caption>{caption}</caption><thead><tr>{head}</tr></thead><tbody>{body}</tbody></table>"
