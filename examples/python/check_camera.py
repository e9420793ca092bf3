"""Tells whether the attached camera's calibration is complete: check_camera.py DIRECTORY [SERIAL]"""
import sys

import kalvista


def main(directory: str, serial: str = "") -> int:
    number = int(serial) if serial else kalvista.find_serial()
    if number is None:
        print("no camera is attached; name one by its serial number")
        return 1
    missing = kalvista.missing_files(directory, number)
    for name in missing:
        print(name)
    print(f"camera {number}: {len(missing)} files are missing" if missing else f"camera {number} is ready")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
