#!/usr/bin/env python3
"""Looks for plain char where bytes are computed with: boardSigns.py BUILD

char has a sign on a PC and none on 32-bit ARM. So the sources of the board's build that go over pixels and over the bytes
of files are compiled once more with a char that has one. None of their functions may become another by that: bytes have
to say signed or unsigned. What differs all the same is listed here with its reason.
"""
import concurrent.futures
import json
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

OBJDUMP = "arm-linux-gnueabihf-objdump"
# Numbers of labels and places in the data, which every other difference moves.
MOVED = re.compile(r"\.L\w+|(?<=\.rodata)[\w.]*\+0x[0-9a-f]+")
SOURCES = re.compile(r"/src/((pixels|paramStore)/\w+|(loading|saving)/(bmp|png|jpeg|direct|picture)\w+)\.cpp$")
MAY_DIFFER = {
    "BmpWriter::write(QIODevice&, QImage const&)": "bytes of the header are handed on, QByteArray stores their eight bits",
    "PictureReader::read(QString const&)": "Qt joins texts of ASCII there",
}


def functions(path):
    """{function: its code}; branches are counted from its beginning, so what stands before it does not matter."""
    result = subprocess.run([OBJDUMP, "-drC", "--no-show-raw-insn", "--no-addresses", path], capture_output=True,
                            text=True, check=True)
    found, function = {}, []
    for line in result.stdout.split("\n"):
        start = re.match(r"^<(.*)>:$", line)
        if start:
            function = found.setdefault(start[1], [])
        function.append(MOVED.sub("", line))
    return found


def differing(command, folder):
    """The functions of one source that a char with a sign makes others."""
    words = [word for word in shlex.split(command["command"]) if word not in ("-Winvalid-pch", "-Werror")]
    place = words.index("-o") + 1
    plain = functions(Path(command["directory"]) / words[place])
    words[place] = str(Path(folder) / Path(words[place]).name)
    launcher = ["ccache"] if shutil.which("ccache") else []
    subprocess.run([*launcher, *words, "-fsigned-char"], cwd=command["directory"], check=True)
    signed = functions(words[place])
    os.remove(words[place])
    return {name for name in plain.keys() | signed.keys() if plain.get(name) != signed.get(name)}


def main():
    build = Path(sys.argv[1]).resolve()
    commands = [command for command in json.loads((build / "compile_commands.json").read_text())
                if SOURCES.search(command["file"]) and str(build) not in command["file"]]
    if len(commands) < 20:
        sys.exit(f"boardSigns: only {len(commands)} sources in {build}")
    with tempfile.TemporaryDirectory() as folder, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        found = set().union(*pool.map(lambda command: differing(command, folder), commands))
    wrong = sorted(found - MAY_DIFFER.keys())
    print("\n".join(f"boardSigns: {name} depends on the sign of char" for name in wrong) if wrong else
          f"boardSigns: {len(commands)} sources; nothing that computes depends on the sign of char")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
