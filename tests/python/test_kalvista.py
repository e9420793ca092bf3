"""The package on the sample, and against what the library's queries answer."""
import copy
import dataclasses
import doctest
import gc
import json
import logging
import math
import os
import pathlib
import pickle
import subprocess
import sys
import threading

import kalvista
import pytest

SOURCE = pathlib.Path(__file__).parents[2]
SAMPLE = SOURCE / "examples/repository/12/1234/Califiles SN12345678"
SERIAL = 12345678


def values(calibration):
    """As the library's queries answer: of optics alike and of ranges alike, by the first one."""
    unlisted = -100.0
    seen, optics = set(), []
    for one in calibration.optics:
        if (one.fov, one.text) in seen:
            continue
        seen.add((one.fov, one.text))
        rates = {(r.low, r.high): list(r.frame_rates) for r in reversed(one.ranges)}
        ranges = [[r.low, r.high, unlisted if r.low_extended is None else r.low_extended,
                   unlisted if r.high_extended is None else r.high_extended, r.decimals,
                   rates[r.low, r.high], list(r.table.values())] for r in one.ranges]
        optics.append([one.fov, one.text, one.serial_number, one.sample_point, ranges])
    return [calibration.serial, list(calibration.main.values()), optics]


@pytest.fixture(scope="module")
def models(tmp_path_factory):
    folder = tmp_path_factory.mktemp("models")
    dump = subprocess.run([os.environ["MODEL_DUMP"], folder, SAMPLE], check=True, stdout=subprocess.PIPE,
                          env={**os.environ, "LD_PRELOAD": ""}).stdout
    return folder, {model[0]: model for model in map(json.loads, dump.splitlines())}


def test_every_value_is_the_librarys(models):
    folder, expected = models
    assert len(expected) == 102
    for serial, (*model, missing) in expected.items():
        calibration = kalvista.Calibration.load(folder, serial)
        assert values(calibration) == model
        assert calibration.file_names()[1:] == kalvista.missing_files(folder, serial) == missing.split(";")[:-1]


def test_threads_get_their_own_calibrations(models):
    folder, expected = models
    wrong = []

    def load(first):
        for i in range(1000):
            serial = (first + i) % 8
            if values(kalvista.Calibration.load(folder, serial)) != expected[serial][:-1]:
                wrong.append(serial)

    threads = [threading.Thread(target=load, args=(first,)) for first in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong


def test_resident_memory_does_not_grow():
    def resident():
        gc.collect()
        return int(pathlib.Path("/proc/self/statm").read_text().split()[1]) * os.sysconf("SC_PAGESIZE")

    after = []
    for _ in range(2):  # the first round fills what stays
        for _ in range(10000):
            kalvista.Calibration.load(SAMPLE, SERIAL)
        after.append(resident())
    assert after[1] - after[0] < 1 << 20


BAD = {"empty": ("", "no element"), "comments": ("<CaliData>\n<!--\n</CaliData>\n", "comments"), "root": ("<a>\n</a>\n", "no element")}


@pytest.mark.parametrize("text, reason", BAD.values(), ids=BAD)
def test_damaged_files(tmp_path, text, reason):
    (tmp_path / "Cali-7.xml").write_text(text)
    with pytest.raises(kalvista.FormatError, match=reason) as raised:
        kalvista.Calibration.load(tmp_path, 7)
    assert raised.value.path == str(tmp_path / "Cali-7.xml") and isinstance(raised.value, ValueError)
    assert kalvista.missing_files(tmp_path, 7) == ["Cali-7.xml"]


def test_what_is_not_there_is_not_made(tmp_path):
    absent = tmp_path / "absent"
    for ask in (lambda: kalvista.Calibration.load(absent, 7), lambda: kalvista.Configuration.read(absent),
                lambda: kalvista.Document(os.fsencode(absent), "a"), lambda: kalvista.Calibration.load(SAMPLE, SERIAL).find(33, "x")):
        with pytest.raises(FileNotFoundError) as raised:
            ask()
        again = pickle.loads(pickle.dumps(raised.value))
        assert (type(again), str(again), again.path) == (kalvista.NotFoundError, str(raised.value), raised.value.path)
    assert kalvista.missing_files(absent, 7) == ["Cali-7.xml"] and not absent.exists()
    with pytest.raises(kalvista.FormatError, match="no regular file"):
        kalvista.Document(tmp_path, "a")


@pytest.mark.parametrize("directory, serial, error", [
    (None, 1, TypeError), (".", None, TypeError), (".", "1", TypeError), (".", -1, kalvista.FormatError),
    (".", 2**40, kalvista.FormatError), (b"\xff\xfe", 1, kalvista.NotFoundError), ("a\0b", 1, kalvista.FormatError),
    ("x" * 300, 1, kalvista.FormatError)])
def test_wrong_arguments(directory, serial, error):
    for ask in (kalvista.Calibration.load, kalvista.missing_files, lambda d, s: kalvista.Configuration.default_document(s, d)):
        if error is not kalvista.NotFoundError or ask == kalvista.Calibration.load:
            with pytest.raises(error):
                ask(directory, serial)


def test_records_are_values():
    calibration = kalvista.Calibration.load(SAMPLE, SERIAL)
    document = kalvista.Document(SOURCE / "examples/imager.xml", "imager")
    for one in (calibration, calibration.main, calibration.optics[0], kalvista.Configuration.read(document.path), document):
        pickled = [pickle.loads(pickle.dumps(one, protocol)) for protocol in range(pickle.HIGHEST_PROTOCOL + 1)]
        for other in (*pickled, copy.copy(one), copy.deepcopy(one)):
            assert other == one and hash(other) == hash(one)
    with pytest.raises(AttributeError):
        calibration.serial = 1
    assert set(calibration.file_names()) == set(os.listdir(SAMPLE))
    assert calibration._repr_html_().count("<tr>") == 1 + sum(len(one.ranges) for one in calibration.optics)


def test_pictures_of_any_text(monkeypatch):
    calibration = kalvista.Calibration.load(SAMPLE, SERIAL)
    hostile = dataclasses.replace(calibration, optics=(dataclasses.replace(calibration.optics[0], text="$\\a<b>\udcff"),))
    assert "&lt;b&gt;\ufffd" in hostile._repr_html_()
    with monkeypatch.context() as without, pytest.raises(ImportError, match="pip install"):
        without.setitem(sys.modules, "matplotlib", None)
        hostile.plot()
    pytest.importorskip("matplotlib")
    hostile.plot().figure.canvas.draw()


def test_document(tmp_path):
    path = tmp_path / "a.xml"
    path.write_bytes(b"<a>\n<i>0x10</i><n>ten</n><f>1.5</f><g>nan</g><e></e><t>\xff</t>\n<k><v>1</v></k><k><v>2</v></k>\n</a>\n")
    document = kalvista.Document(path, "a")
    assert (document.get_int("i"), document.get_float("f"), document.get_text("e")) == (16, 1.5, "")
    assert math.isnan(document.get_float("g")) and document.get_text("t").encode(errors="surrogateescape") == b"\xff"
    assert [child.get_int("v") for child in document.children("k")] == [1, 2] and document.count("k") == 2
    assert document.get_int("absent", None) is None
    for read, error in ((document.get_int, kalvista.FormatError), (document.get_float, kalvista.FormatError)):
        with pytest.raises(error):
            read("n")
        with pytest.raises(kalvista.NotFoundError):
            read("absent")


def test_log_goes_to_logging_only(tmp_path, caplog, capfd):
    (tmp_path / "broken.xml").write_text("<imager>\nERROR [x:1] in\n<!--\n</imager>\n")
    with caplog.at_level(logging.DEBUG, "kalvista"), pytest.raises(kalvista.FormatError):
        kalvista.Configuration.read(tmp_path / "broken.xml")
    assert ("IRDeviceParams", 141, logging.ERROR) in {(r.source, r.line, r.levelno) for r in caplog.records}
    assert any(r.message == "ERROR [x:1] in<!--" for r in caplog.records)
    caplog.clear()
    kalvista.Calibration.load(SAMPLE, SERIAL)
    assert not caplog.records and capfd.readouterr() == ("", "")


def test_forked_process_goes_on(tmp_path):
    before = os.getcwd()
    kalvista.find_serial()
    assert os.getcwd() == before
    child = os.fork()
    if child == 0:
        try:
            os.closerange(3, 64)  # as services do
            (tmp_path / "own.txt").write_text("own")
            with open(tmp_path / "own.txt"), pytest.raises(kalvista.FormatError):
                kalvista.Configuration.read(SOURCE / "README.md")
            os._exit(0 if kalvista.Calibration.load(SAMPLE, SERIAL).serial == SERIAL else 1)
        finally:
            os._exit(1)
    assert os.waitpid(child, 0)[1] == 0 and (tmp_path / "own.txt").read_text() == "own"


def test_names_of_files_in_an_ascii_locale():
    ask = "import kalvista as k; print(ascii(k.Calibration(1, k.Constants({}), (k.Optics(33, chr(246), 0, True, (k.Range(0, 1, None, None, 1, (), k.Constants({})),)),)).file_names()))"
    names = subprocess.run([sys.executable, "-c", ask], check=True, stdout=subprocess.PIPE, text=True,
                           env={**os.environ, "LC_ALL": "C", "PYTHONUTF8": "0", "PYTHONCOERCECLOCALE": "0"}).stdout
    assert r"\udcc3\udcb6" in names


TREE = """mount -t tmpfs none /sys/bus || exit 77
mkdir -p /sys/bus/usb/tree /sys/bus/usb/devices && cd /sys/bus/usb
for serial in 11 22; do mkdir tree/$serial; ln -s ../tree/$serial devices
  for row in idVendor=0403 idProduct=$2 serial=$serial; do echo ${row#*=} >tree/$serial/${row%=*}; done; done
exec "$0" -c "$1" """
FIND = """import kalvista, os
assert kalvista.find_serial() in (11, 22) and [kalvista.find_serial(n) for n in (11, 22, 33)] == [11, 22, None]
assert os.getcwd() == "/sys/bus/usb"
os.chmod("devices", 0); os.setuid(65534)
try: kalvista.find_serial()
except kalvista.Error as error: assert error.path == "/sys/bus/usb/devices"
else: raise SystemExit(1)
"""


def test_attached_cameras():
    product = os.environ["USB_PRODUCT_ID"]
    status = subprocess.run(["unshare", "-m", "sh", "-c", TREE, sys.executable, FIND, product]).returncode
    if os.getuid() != 0 or status == 77:
        pytest.skip("a USB tree of its own needs root, who may mount it")
    assert status == 0


def test_page_and_examples(tmp_path, monkeypatch):
    monkeypatch.chdir(SAMPLE)
    failed, count = doctest.testfile(str(SOURCE / "docs/python.md"), module_relative=False,
                                     optionflags=doctest.NORMALIZE_WHITESPACE | doctest.IGNORE_EXCEPTION_DETAIL)
    assert count > 10 and failed == 0
    examples = SOURCE / "examples/python"
    subprocess.run([sys.executable, examples / "check_camera.py", SAMPLE, str(SERIAL)], check=True)
    pytest.importorskip("matplotlib")
    subprocess.run([sys.executable, examples / "draw_ranges.py", SAMPLE, str(SERIAL), tmp_path / "a.png"], check=True)
    assert (tmp_path / "a.png").stat().st_size > 1000
