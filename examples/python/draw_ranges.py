"""Draws the temperature ranges of a camera into a picture: draw_ranges.py DIRECTORY SERIAL PICTURE"""
import sys

import kalvista


def main(directory: str, serial: str, picture: str) -> None:
    axes = kalvista.Calibration.load(directory, int(serial)).plot()
    axes.figure.savefig(picture, bbox_inches="tight")


if __name__ == "__main__":
    main(*sys.argv[1:])
