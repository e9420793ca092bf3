"""Files arrive whole or not at all, from servers, folders and neighbours of every kind."""
import contextlib
import email.utils
import hashlib
import http.server
import os
import pathlib
import pty
import re
import shutil
import signal
import ssl
import subprocess
import sys
import tempfile
import threading
import time
import unittest

TOOL, REPOSITORY = sys.argv.pop(1), pathlib.Path(sys.argv.pop(1))
SERIAL = "12345678"
XML = f"Cali-{SERIAL}.xml"
ONE = f"Cali-{SERIAL}-33-0-250-27.dat"
FOLDER = f"12/1234/Califiles SN{SERIAL}"
SAMPLE = {path.name: path.read_bytes() for path in (REPOSITORY / FOLDER).iterdir()}
SETPRIV = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"] if os.geteuid() == 0 else []
NEVER = 60  # seconds after which a run counts as hanging


class Server(http.server.ThreadingHTTPServer):
    """Serves files, and for some paths what a test wants instead: bytes of a whole answer, after
    which the connection closes, or a function of the handler; the last of a list stays."""
    daemon_threads = True

    def __init__(self, files, odd=None, tags=False):
        super().__init__(("127.0.0.1", 0), Handler)
        self.files, self.odd, self.tags = files, odd or {}, tags
        self.requests, self.connections = [], 0
        self.address = f"http://127.0.0.1:{self.server_address[1]}"
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def process_request(self, request, client_address):
        self.connections += 1
        super().process_request(request, client_address)

    def handle_error(self, request, client_address):
        pass


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def do_GET(self):
        name = self.path.rsplit("/", 1)[-1]
        self.server.requests.append((self.command, name))
        odd = self.server.odd.get(name) if self.headers["User-Agent"] == "kalvista" else b""
        if isinstance(odd, list):
            odd = odd.pop(0) if len(odd) > 1 else odd[0]
        if callable(odd):
            odd = odd(self)
        if isinstance(odd, bytes):
            self.wfile.write(odd)
            self.close_connection = True
        elif odd is None and name in self.server.files:
            body = self.server.files[name]
            self.send_response(200)
            self.send_header("Content-Length", str(len(body)))
            self.send_header("Last-Modified", email.utils.formatdate(1700000000, usegmt=True))
            if self.server.tags:
                self.send_header("ETag", f'"{hash(body)}"')
            self.end_headers()
            if self.command == "GET":
                self.wfile.write(body)
        elif odd is None:
            self.send_error(404)

    do_HEAD = do_GET


def answer(body, *headers, status="200 OK"):
    head = "\r\n".join((f"HTTP/1.1 {status}", *headers))
    return head.encode() + b"\r\n\r\n" + body


def sized(body, *headers):
    return answer(body, f"Content-Length: {len(body)}", *headers)


def refused(status):
    return answer(b"", "Content-Length: 0", status=status)


def to(address):
    return answer(b"", f"Location: {address}", "Content-Length: 0", status="302 Found")


def drip(handler):
    handler.wfile.write(answer(b"x" * 900, "Content-Length: 90000"))
    with contextlib.suppress(OSError):
        while True:
            handler.wfile.write(b"x" * 12)
            time.sleep(0.2)


BODY = SAMPLE[ONE]
SEAL = f"Cali-{SERIAL}.sha256"


def seal(files):
    return "".join(f"{hashlib.sha256(body).hexdigest()}  {name}\n"
                   for name, body in sorted(files.items())).encode()


def lost(cause, name=ONE):
    return f"kalvista: the file {name} of camera {SERIAL} could not be had: {cause}\n"


HALF = BODY[:len(BODY) // 2]
FILE = f"/12/1234/Califiles%20SN{SERIAL}/{ONE}: "
NETWORK = '; check the network and the proxy, or use "kalvista copy"'
ELSEWHERE = "; get a whole one from elsewhere"
UNTOLD = f"{FILE}the answer does not tell its length, so that a broken line could not be noticed{NETWORK}"
PAGE = f": the file that came is a web page instead of calibration data{ELSEWHERE}"
TOO_SLOW = f"{FILE}less than 100 bytes a second arrived for 2 seconds, the limit of --timeout{NETWORK}"
# What a server answers for one file, the exit status, and what the sentence says behind the address
# of the server, or a part where other words are the network library's. Nothing of that name may arrive.
BAD_ANSWERS = {
    "absent": (answer(b"no", status="410 Gone"), 1,
               f"{FILE}the server answered with status 410; check the serial number, or get the "
               "calibration from elsewhere"),
    "forbidden": (refused("403 No"), 3, f"{FILE}the server answered with status 403{NETWORK}"),
    "out of order": (refused("503 Later"), 3, f"{FILE}the server answered with status 503{NETWORK}"),
    "a part": (answer(HALF, f"Content-Length: {len(HALF)}", status="206 Part"), 3,
               f"{FILE}the server answered with status 206{NETWORK}"),
    "half": (answer(HALF, f"Content-Length: {len(BODY)}"), 3, "bytes remaining to read"),
    "half of unknown length": (answer(HALF), 3, UNTOLD),
    "half of no encoding": (answer(HALF, "Transfer-Encoding: "), 3, UNTOLD),
    "half of pieces": (answer(b"5\r\nhello\r\n", "Transfer-Encoding: chunked"), 3, NETWORK),
    "packed": (sized(b"\x1f\x8b\x08", "Content-Encoding: compress"), 3,
               f"{FILE}the answer is compressed, though that was not asked for{NETWORK}"),
    "packed in secret": (sized(b"\x1f\x8b"), 1,
                         f": the file that came is compressed{ELSEWHERE}"),
    "a page": (sized(b" \t\r\n<!DOCTYPE HTML><p>Sign in"), 1, PAGE),
    "a page of XHTML": (sized(b'\xef\xbb\xbf<?xml version="1.0"?><!-- x --><html xmlns="x">'), 1, PAGE),
    "empty": (sized(b""), 1, f": the file that came is empty{ELSEWHERE}"),
    "drops": (drip, 3, TOO_SLOW),
    "silence": (lambda handler: time.sleep(NEVER), 3, TOO_SLOW),
    "too much": (answer(b"x", "Content-Length: 1000000000001"), 3,
                 f"{FILE}the file is larger than 1.0 TB, the limit of --max-size{NETWORK}"),
    "another protocol": (to("ftp://127.0.0.1/x"), 3, "ftp"),
    "a file of this machine": (to("file:///etc/passwd"), 3, "file"),
    "round and round": (to("x"), 3, "(10) redirects"),
    "no server": (to("http://127.0.0.1:9/x"), 3, "127.0.0.1"),
    "escapes": (to("http://\x1b[2J.invalid/"), 3, ""),
}


class Acquisition(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(prefix="kalvista test ")
        self.addCleanup(self.folder.cleanup)
        os.chmod(self.folder.name, 0o755)
        os.chdir(self.folder.name)
        shutil.copytree(REPOSITORY, "repository")
        self.new()

    def new(self, mode=0o777):
        shutil.rmtree("cali", ignore_errors=True)
        os.mkdir("cali")
        os.chmod("cali", mode)

    def start(self, *arguments, before=(), **more):
        return subprocess.Popen([*before, TOOL, *arguments, "--calibration-dir", "cali"],
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, **more)

    def run_tool(self, *arguments, **more):
        process = self.start(*arguments, **more)
        out, err = (text.decode() for text in process.communicate(timeout=NEVER))
        return process.returncode, out, err

    def download(self, server, *arguments, **more):
        return self.run_tool("download", SERIAL, "--mirror", server.address, *arguments, **more)

    def mount(self, *arguments):
        pathlib.Path(arguments[-1]).touch()
        if not SETPRIV or subprocess.run(["mount", *arguments], check=False).returncode:
            self.skipTest("only root may mount a file system")
        self.addCleanup(subprocess.run, ["umount", arguments[-1]], check=True)

    def held(self):
        return {path.name: path.read_bytes() for path in pathlib.Path("cali").iterdir()}

    def test_bad_answers(self):
        others = {name: body for name, body in SAMPLE.items() if name != ONE}
        for kind, (odd, status, words) in BAD_ANSWERS.items():
            with self.subTest(kind), Server(SAMPLE, {ONE: odd, "x": odd}) as server:
                self.new()
                options = ("--timeout", "2", "--max-size", "1000000")
                code, _, err = self.download(server, *options)
                self.assertEqual(code, status, err)
                if words.startswith(("/", ":")):
                    self.assertEqual(err, lost(server.address + words))
                self.assertIn(words, err)
                self.assertIn(ONE, err)
                self.assertFalse(any(ord(letter) < 32 and letter != "\n" for letter in err), err)
                self.assertLessEqual(err.count("\n"), 3, err)
                self.assertNotIn(ONE, self.held())
                self.assertTrue(self.held().items() <= others.items())
                self.assertLessEqual(server.requests.count(("GET", ONE)), 3)
        # What is wrong for all is not tried again and again for each.
        for odd, most in ((answer(HALF, "Content-Length: 9999"), 76), (BAD_ANSWERS["no server"][0], 10)):
            with Server({XML: SAMPLE[XML]}, {name: odd for name in SAMPLE if name != XML}) as server:
                self.new()
                self.assertIn("kalvista: 33 files of", self.download(server)[2])
                self.assertLessEqual(len(server.requests), most)

    def test_good_answers(self):
        pieces = answer(b"%x\r\n%s\r\n0\r\n\r\n" % (len(BODY), BODY), "Transfer-Encoding: chunked")
        gone = answer(b"", f"Location: {ONE}", "Content-Encoding: gzip", status="302 Found")
        for odd in (pieces, [answer(HALF, "Content-Length: 9999"), refused("408 Slow"),
                             sized(BODY, "Content-Encoding:identity")],
                    [refused("500 Oh"), refused("429 Slow"), gone, sized(BODY)]):
            with self.subTest(odd), Server(SAMPLE, {ONE: odd}) as server:
                self.new()
                code, out, err = self.download(server)
                self.assertEqual((code, err), (0, ""))
                self.assertIn("34 files added", out)
                self.assertEqual(self.held(), SAMPLE)
                self.assertLessEqual(server.connections, 10)

    def test_ways_to_a_server(self):
        with Server(SAMPLE) as server:
            code, _, err = self.run_tool("download", SERIAL, "--mirror", "http://files.invalid/x",
                                         env={**os.environ, "http_proxy": server.address})
            self.assertEqual((code, self.held()), (0, SAMPLE), err)
            self.assertLessEqual(server.connections, 9)
        self.new()
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", "key",
                        "-out", "certificate", "-subj", "/CN=127.0.0.1"], check=True,
                       stderr=subprocess.DEVNULL)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain("certificate", "key")
        with Server(SAMPLE) as server:
            server.socket = context.wrap_socket(server.socket, server_side=True)
            server.address = server.address.replace("http", "https")
            code, _, err = self.download(server)
            self.assertEqual((code, "certificate" in err, self.held()), (3, True, {}), err)

    def test_progress(self):
        size = sum(len(body) for name, body in SAMPLE.items() if name not in (ONE, XML)) / 1000
        # The files that come only when this is shown.
        awaited = {XML: rb"0 of 2 files, 0 bytes, 0 bytes/s\r", SEAL: rb"0 of 2 files, 0 bytes, 0",
                   ONE: rb"32 of 33 files, %.1f kB, [\d.]+ k?B.*/s, \d+ seconds? left\r" % size}
        for options, seen in (([], True), (["--json"], False), (["-v", "error"], False)):
            shown = bytearray()

            def until(text):
                while seen and not re.search(text, shown):
                    time.sleep(0.01)
            slow = {name: lambda _, text=text: until(text) for name, text in awaited.items()}
            with self.subTest(options), Server(SAMPLE, slow) as server:
                self.new()
                terminal, end = pty.openpty()
                process = subprocess.Popen([TOOL, "download", SERIAL, "--mirror", server.address,
                                            "--calibration-dir", "cali", "--timeout", "20", *options],
                                           stdout=subprocess.DEVNULL, stderr=end)
                os.close(end)
                with contextlib.suppress(OSError):
                    while block := os.read(terminal, 65536):
                        shown += block
                os.close(terminal)
                self.assertEqual((process.wait(NEVER), shown.endswith(b"\r\x1b[K")), (0, seen), shown)

    def test_nothing_at_all(self):
        came = "SERVER: the file that came "
        optics = SAMPLE[XML].replace(b"<FOV>", b"<Serial>9</Serial><FOV>")  # a number of their own
        for xml, cause in (
                (None, f"SERVER{FILE.replace(ONE, XML)}the server answered with status 404; check the "
                       "serial number, or get the calibration from elsewhere"),
                (b"nonsense", f"{came}is no calibration: it does not load{ELSEWHERE}"),
                (b"<CaliData>", f"{came}breaks off before its end{ELSEWHERE}"),
                (b"<CaliData>\n<Temperature><Optics></Optics></Temperature>\n</CaliData>\n",
                 f"{came}is no calibration: it has no optics{ELSEWHERE}"),
                (optics.replace(b"<Temperature>", b"<Serial>5</Serial>\n<Temperature>"),
                 f"{came}belongs to another camera{ELSEWHERE}"),
                (optics.replace(b"</Temperature>", b"</Temperature>\n<SerialNumber>5</SerialNumber>"),
                 f"{came}belongs to another camera{ELSEWHERE}")):
            with self.subTest(xml), Server({XML: xml} if xml else {}) as server:
                self.new()
                address = server.address.replace("//", "//me:secret@") + "/@"
                code, out, err = self.run_tool("setup", SERIAL, "--mirror", address, "--json")
                self.assertEqual((code, err.replace(server.address + "/@", "SERVER")),
                                 (1, lost(cause, XML)))
                self.assertNotIn("secret", out)
                self.assertIn('"changed"', out)
        with Server({XML: optics}) as server:
            self.assertRegex(self.download(server)[2], "^kalvista: 33 files of .*, such as "
                             f"Cali-{SERIAL}-33-M20-100-27.dat, could .* 404;")
        code, _, err = self.download(server)
        self.assertEqual((code, err.partition(" of ")[0]), (3, "kalvista: 2 files"), err)

    def test_recalibrated_camera(self):
        other = {**SAMPLE, ONE: BODY[::-1]}
        for tags in (False, True):
            self.new()
            with Server(SAMPLE, tags=tags) as first:
                self.download(first)
                del first.requests[:]
                self.assertIn("nothing had to be changed", self.download(first)[1])
                self.assertEqual([name for method, name in first.requests if method == "GET"], [SEAL])
            with Server(other, tags=tags) as second:
                # Without a tag, size and time tell nothing of a file whose bytes changed.
                code, _, err = self.download(second)
                differs = (f"kalvista: warning: 1 file of camera {SERIAL} differs from {second.address}, "
                           f"such as {ONE}; replace all of them with --update\n")
                self.assertEqual((code, err), (0, differs if tags else ""))
                self.assertEqual(self.held(), SAMPLE)
                if tags:
                    self.assertIn("1 file replaced", self.download(second, "--update")[1])
                    self.assertEqual(self.held(), other)
        pathlib.Path("other").mkdir()
        for name, body in SAMPLE.items():
            pathlib.Path("other", name).write_bytes(body)
        self.assertIn("1 file replaced", self.run_tool("copy", SERIAL, "other")[1])
        self.assertEqual(self.held(), SAMPLE)
        # With another XML file all of it is needed.
        new = {**other, XML: SAMPLE[XML] + b"\n"}
        for files, status in (({name: new[name] for name in new if name != ONE}, 1), (new, 0)):
            with Server(files) as server:
                self.assertEqual(self.download(server, "--update")[0], status)
                self.assertEqual(self.held(), SAMPLE if status else new)

    def test_seals(self):
        sealed = {**SAMPLE, SEAL: seal(SAMPLE)}
        other = {**SAMPLE, ONE: BODY[::-1]}
        other_sealed = {**other, SEAL: seal(other)}
        again = "; have the repository sealed again"
        unfit = f"SERVER: the file that came does not fit the seal {SEAL}"
        # What lies there, what a server has, how it answers for the seal, whether it may replace;
        # then the exit status, what lies there, and what is said.
        for kind, before, files, odd, update, status, after, said in (
                ("comes along", {}, sealed, None, False, 0, sealed, ""),
                ("comes later", SAMPLE, sealed, None, False, 0, sealed, ""),
                ("forbidden", {}, SAMPLE, refused("403 No"), False, 0, SAMPLE, ""),
                ("a page", {}, SAMPLE, sized(b"<html>no</html>"), False, 0, SAMPLE, ""),
                ("cut short", {}, SAMPLE, sized(sealed[SEAL][:-9]), False, 1, SAMPLE,
                 lost(f"SERVER: the seal is cut short, or none{again}", SEAL)),
                ("of other files", {}, SAMPLE, sized(other_sealed[SEAL]), False, 1,
                 {name: body for name, body in other_sealed.items() if name != ONE},
                 lost(unfit + ELSEWHERE)),
                ("of other files, beside these", SAMPLE, SAMPLE, sized(other_sealed[SEAL]), False,
                 0, SAMPLE, lost(f"SERVER: the seal does not fit the file {ONE} beside it{again}", SEAL)
                 .replace(":", ": the calibration is complete, and could not be compared:", 1)),
                ("there, and a file damaged", {**sealed, ONE: BODY[::-1]}, SAMPLE, None, False, 0,
                 sealed, ""),
                ("there, and a file that does not fit", {k: v for k, v in sealed.items() if k != ONE},
                 other, None, False, 1, {k: v for k, v in sealed.items() if k != ONE},
                 lost(f"{unfit} that is present{ELSEWHERE}")),
                ("renewed", sealed, other_sealed, None, True, 0, other_sealed, ""),
                ("gone", sealed, other, None, True, 0, other,
                 f"kalvista: warning: the seal of camera {SERIAL} was of its former files and is gone; "
                 f'the new ones came without one, which "kalvista seal {SERIAL}" makes\n')):
            with self.subTest(kind), Server(files, {SEAL: odd} if odd else {}, tags=True) as server:
                self.new()
                for name, body in before.items():
                    pathlib.Path("cali", name).write_bytes(body)
                code, _, err = self.download(server, *(["--update"] if update else []))
                self.assertEqual((code, err.replace(server.address, "SERVER")), (status, said))
                self.assertEqual(self.held(), after)

    def test_signals(self):
        stuck = {f"Kennlinie-{SERIAL}-33-0-250-27.prn": lambda handler: time.sleep(NEVER)}
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGKILL):
            with self.subTest(number), Server(SAMPLE, stuck) as server:
                self.new()
                process = self.start("download", SERIAL, "--mirror", server.address)
                while process.poll() is None and not any(name in stuck
                                                         for _, name in server.requests):
                    time.sleep(0.01)
                process.send_signal(number)
                process.communicate(timeout=NEVER)
                self.assertEqual(process.returncode, -number)
                if number != signal.SIGKILL:
                    self.assertEqual(self.held(), {})
        # What a killed run left goes with the next one; what only looks so stays.
        for name in (".kalvista-work-abcdef", ".kalvista-notes-99999999"):
            os.makedirs(f"cali/{name}/kept")
        os.mkdir("cali/.kalvista-work-ghijkl")
        self.assertEqual(self.run_tool("copy", SERIAL, "repository")[0], 0)
        self.assertEqual(sorted(set(os.listdir("cali")) - set(SAMPLE)),
                         [".kalvista-notes-99999999", ".kalvista-work-abcdef",
                          ".kalvista-work-ghijkl"])

    def test_runs_side_by_side(self):
        def slowly(handler):
            time.sleep(0.2)
        second = {name.replace(SERIAL, "12340000"): body.replace(SERIAL.encode(), b"12340000")
                  for name, body in SAMPLE.items()}
        inside = ["unshare", "--pid", "--fork", "--mount-proc"] if SETPRIV else []
        with Server({**SAMPLE, **second}, {XML: slowly}) as server:
            runs = [self.start("download", serial, "--mirror", server.address, before=before)
                    for serial in (SERIAL, SERIAL, "12340000") for before in ([], inside)]
            for process in runs:
                err = process.communicate(timeout=NEVER)[1].decode()
                self.assertEqual(process.returncode, 0, err)
        self.assertEqual(self.held(), {**SAMPLE, **second})

    def test_odd_folders(self):
        pathlib.Path("odd one").mkdir()
        for name, body in SAMPLE.items():
            pathlib.Path("odd one", name).write_bytes(body)
        path = pathlib.Path("odd one", ONE)
        secret = pathlib.Path("secret")
        secret.write_text("of root")
        here = f"{os.getcwd()}/odd one"
        mend = "; mend the repository"
        irregular = lost(f"{here}/{ONE}: it is no regular file{mend}")
        for kind, make, status, said in (
                ("pipe", os.mkfifo, 3, irregular),
                ("device", lambda path: os.symlink("/dev/zero", path), 3, irregular),
                ("way out", lambda path: os.symlink(secret.resolve(), path), 3,
                 lost(f"{here}/{ONE}: it is a link that leads out of {here}{mend}")),
                ("way round", lambda path: os.symlink(path.name, path), 3,
                 lost(f"{here}/{ONE}: Too many levels of symbolic links{mend}")),
                ("twice", lambda path: (path.write_bytes(b"1"), (path.parent / "b").mkdir(),
                                        (path.parent / "b" / path.name).write_bytes(b"12")), 1,
                 lost(f"{here}/{ONE} and {here}/b/{ONE}: they have one name and differ; take away the "
                      "one that does not hold, or name the folder of the other")),
                ("way inside", lambda path: os.symlink(f"b/{path.name}", path), 0, ""),
                # Of files of the system the kernel tells no size.
                ("growing", lambda path: (shutil.rmtree(path.parent / "b"),
                                          self.mount("--bind", "/proc/version", path)), 3,
                 lost(f"{here}/{ONE}: it changed while it was copied; check the disks, and try again"))):
            with self.subTest(kind):
                self.new()
                path.unlink(missing_ok=True)
                make(path)
                code, _, err = self.run_tool("copy", SERIAL, "odd one")
                self.assertEqual((code, err), (status, said))
                self.assertEqual(ONE in self.held(), status == 0)
                self.assertEqual(len(self.held()), 34 if status == 0 else 33)

    def test_mirror(self):
        os.rename("repository", "source")
        os.mkdir("empty")
        second = {name.replace(SERIAL, "12340000"): body.replace(SERIAL.encode(), b"12340000")
                  for name, body in SAMPLE.items()}
        for name, body in second.items():
            pathlib.Path("empty", name).write_bytes(body)
        pathlib.Path("serials").write_text(f"{SERIAL} 12340000 # two\n\n77\n")
        mirror = ("mirror", "cali", "--serials", "serials", "--from", "empty", "--from", "source",
                  "--address", "https://files.example.com/x")

        def made():
            return {path.name: path.read_bytes()
                    for path in pathlib.Path("cali").rglob("*") if path.is_file()}
        code, out, err = self.run_tool(*mirror)
        self.assertEqual((code, "2 cameras of 3: 70 files (71 added" in out), (1, True), out + err)
        self.assertEqual(err, "kalvista: camera 77: the file Cali-77.xml of camera 77 could not be had: "
                         f"{os.getcwd()}/empty: it holds no such file, or only where this user may not "
                         "enter; look for it elsewhere\n")
        before = made()
        self.assertEqual({name: body for name, body in before.items() if name in SAMPLE}, SAMPLE)
        self.assertEqual(before[SEAL], seal(SAMPLE))
        self.assertIn("nothing had to be changed", self.run_tool(*mirror)[1])
        self.assertEqual(made(), before)
        pathlib.Path("empty", ONE.replace(SERIAL, "12340000")).write_bytes(b"new")
        self.assertIn("(2 added or replaced)", self.run_tool(*mirror)[1])
        with Server(made()) as server:
            code, out, err = self.run_tool("mirror", "empty", "--serials", "serials", "--mirror",
                                           server.address)
            self.assertEqual((code, "2 cameras of 3: 70 files" in out), (1, True), out + err)

    def test_unreadable_files_are_mended_by_their_owner(self):
        def as_user(*arguments):
            return self.run_tool(*arguments, before=SETPRIV, preexec_fn=lambda: os.umask(0o022))
        self.assertEqual(as_user("copy", SERIAL, "repository")[0], 0)
        os.link(f"cali/{ONE}", "trap")
        for path in pathlib.Path("cali").iterdir():
            path.chmod(0)
        code, out, err = as_user("setup", SERIAL, "--from", "repository")
        self.assertEqual((code, "(1 file added, 33 files made readable, " in out), (0, True), err + out)
        modes = {path.stat().st_mode & 0o777 for path in pathlib.Path("cali").glob("[CK]*")}
        self.assertEqual(modes, {0o444, 0o644})

    def test_full_disk(self):
        self.mount("-t", "tmpfs", "-o", "size=64k", "tmpfs", "cali")
        address, needed = Server(SAMPLE).address, sum(map(len, SAMPLE.values())) - len(SAMPLE[XML])
        for from_where, words in (
                (["copy", SERIAL, "repository"],
                 rf"{needed / 1000:.1f} kB are needed, and [\d.]+ (bytes|kB) are free;"),
                (["download", SERIAL, "--mirror", address],
                 rf"No space left on device; {address}/\S+ alone needs [\d.]+ (bytes|kB),")):
            code, _, err = self.run_tool(*from_where)
            self.assertEqual(code, 3, err)
            self.assertRegex(err, "^kalvista: no space is left for the files: "
                                  rf"{words} make room and try again\n$")
            self.assertTrue(self.held().items() <= SAMPLE.items())


unittest.main(verbosity=2)
