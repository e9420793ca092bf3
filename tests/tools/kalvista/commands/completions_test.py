"""Types into bash, zsh and fish, and holds what their completions offer against a table.

On the sample machine: camera 12345678 is attached; 5 is calibrated, with a text that must stay a text.
"""
import os
import pathlib
import pty
import shlex
import shutil
import subprocess
import sys

TABLE = """
kalvista ser | serial
kalvista check | 12345678 5
kalvista check 1 | 12345678
kalvista check --calibration-dir none | 12345678
kalvista check 5 --exp | --explain
kalvista check --calibration-dir none --exp | --explain
kalvista --json -v error ser | serial
kalvista -v | debug error info warning
kalvista lint hos | hosts.ini
kalvista config 5 -o ima | imager.xml
kalvista config --calibration-dir ~/own 6 --fov | 33 60
kalvista config 5 --fov 33 --text | $(touch${IFS}gone)
kalvista config --calibration-dir=own 6 --fov 60 --framerate | 27 80
"""
rows = [[part.strip() for part in line.split("|")] for line in TABLE.strip().splitlines()]
# A word that is to be completed from nothing follows a blank.
rows = [(typed + ("" if typed.split()[-1] in ("ser", "1", "--exp", "hos", "ima") else " "), offers.split())
        for typed, offers in rows]

cali = pathlib.Path("/usr/share/libkalvista/cali")
sample = next(pathlib.Path("/media/usb").rglob("Cali-12345678.xml")).read_text()
(cali / "Cali-5.xml").write_text(sample.replace(">macro<", ">$(touch${IFS}gone)<"))
for folder in ("none", "own"):
    pathlib.Path(folder).mkdir()
pathlib.Path("own/Cali-6.xml").write_text(sample)
os.environ["HOME"] = os.getcwd()
for shell in ("bash", "zsh", "fish"):
    with open("_kalvista" if shell == "zsh" else "kalvista." + shell, "w") as script:
        subprocess.run(["kalvista", "generate", shell], stdout=script, check=True)

# Each has a key that inserts all that is offered; the line becomes the arguments of a command that
# writes them down.
START = {
    "bash": (["bash", "--norc", "--noprofile"],
             "source kalvista.bash; bind '\"\\C-xa\": insert-completions'; HISTFILE=\n"),
    "zsh": (["zsh", "-f"],
            "fpath=($PWD $fpath); autoload -U compinit; compinit -u -D; bindkey -e\n"
            "zle -C all complete-word _generic; bindkey '^Xa' all\n"
            "zstyle ':completion:all::::' completer _all_matches _complete\n"
            "zstyle ':completion:all:*' insert yes\n"),
}


def typed_into(shell):
    child, terminal = pty.fork()
    if child == 0:
        os.environ["TERM"] = "dumb"
        os.execvp(START[shell][0][0], START[shell][0])
    out = pathlib.Path("typed." + shell)
    lines = START[shell][1]
    for typed, _ in rows:
        lines += f"{typed}\x18a\x01printf '%s\\n' \x05 >>{out}; echo . >>{out}\n"
    for line in (lines + "exit\n").splitlines(keepends=True):
        os.write(terminal, line.encode())
    try:
        while os.read(terminal, 65536):
            pass
    except OSError:  # the shell has ended
        os.waitpid(child, 0)
    for (typed, _), words in zip(rows, out.read_text().split("\n.\n")):
        yield words.split("\n")[len(shlex.split(typed)) - (not typed.endswith(" ")):]


def asked_of_fish():
    for typed, _ in rows:
        script = f"source kalvista.fish; complete -C {shlex.quote(typed)}"
        lines = subprocess.run(["fish", "-N", "-c", script], stdout=subprocess.PIPE, text=True).stdout
        yield [line.split("\t")[0] for line in lines.splitlines()]


failures = 0
missing = [shell for shell in ("bash", "zsh", "fish") if shutil.which(shell) is None]
for shell in {"bash", "zsh", "fish"} - set(missing):
    seen = list(asked_of_fish() if shell == "fish" else typed_into(shell))
    for (typed, wanted), offered in zip(rows, seen):
        if sorted(offered) != sorted(wanted):
            failures += 1
            print(f"{shell}: {typed!r} offers {offered}, expected {wanted}")
    failures += len(seen) != len(rows) or pathlib.Path("gone").exists()
print(f"{failures} failures", *["; not installed:", *missing] if missing else "")
sys.exit(1 if failures else 77 if missing else 0)
