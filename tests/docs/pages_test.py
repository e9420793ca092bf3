"""Runs the commands of a page's console blocks and holds their output against the page.

pages_test.py PAGE [PROGRAM...]: standard error is part of the output, and "..." stands for any text.
Without one of the programs the page is skipped.
"""
import doctest
import re
import shutil
import subprocess
import sys

MATCHING = doctest.ELLIPSIS | doctest.NORMALIZE_WHITESPACE


def transcripts(page):
    for block in re.findall(r"^```console\n(.*?)^```", page, re.DOTALL | re.MULTILINE):
        for part in re.split(r"^\$ ", block, flags=re.MULTILINE)[1:]:
            yield re.match(r"((?:[^\n]*\\\n)*[^\n]*\n)(.*)", part, re.DOTALL).groups()


missing = [program for program in sys.argv[2:] if shutil.which(program) is None]
if missing:
    print("skipped, not installed:", *missing)
    sys.exit(77)
failures = count = 0
for count, (command, wanted) in enumerate(transcripts(open(sys.argv[1]).read()), start=1):
    ran = subprocess.run(["bash", "-c", command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                         text=True, stdin=subprocess.DEVNULL)
    if ran.returncode != 0 or not doctest.OutputChecker().check_output(wanted, ran.stdout, MATCHING):
        failures += 1
        print(f"$ {command}the page says:\n{wanted}but it was (status {ran.returncode}):\n{ran.stdout}")
print(f"{count} commands, {failures} failures")
sys.exit(failures > 0 or count == 0)
