#!/usr/bin/env python3
"""Looks at what the objects of the board's build call: boardCalls.py BUILD

32-bit ARM divides 64-bit numbers by calling a function, and an exception costs more than a pass. So neither may be in
what a pass or a pixel goes through. What divides all the same is listed here with its reason; whatever else does, an
entry that no longer does, and anything that throws are errors.
"""
import concurrent.futures
import os
import re
import subprocess
import sys
from pathlib import Path

OBJDUMP = "arm-linux-gnueabihf-objdump"
# Of the programs, the store and the plug-ins; what only tests are made of may do as it likes.
FOLDERS = ("src", "pack/build/common", "pack/build/algorithms", "pack/build/sources")
CALL = re.compile(r"R_ARM_\w+\s+(__aeabi_u?ldivmod|__cxa_throw|__cxa_allocate_exception)\b")
FUNCTION = re.compile(r"^[0-9a-f]+ <(.*)>:$")

MAY_DIVIDE = {
    "BmpWriter::canWrite": "once a file: whether the rows fit into what a file may hold",
    "BmpWriter::write": "once a file: rows that are written at once",
    "PictureReader::read": "once a file: whether its header is believable",
    "PictureDecoder::decode": "once a file: whether its header is believable",
    "PluginLibrary::PluginLibrary": "when a library is loaded: whether its tables lie inside of it",
    "Drawing::PolysDrawingOpt::draw": "twice a polygon, when it is painted: the place of its label",
    "TestPattern::paint": "twice a picture: where the object has got to, which 32 bits do not hold for long",
    "TestPatternPlayer::takeDue": "before a sleep: the standard library's seconds of a point of time",
    "TestPatternPlayer::reportNoMemory": "before a sleep",
    "FolderPlayer::takeDue": "before a sleep",
    "FolderPlayer::pause": "before a sleep",
}


def calls(path):
    """{(function, what it calls)} of an object."""
    result = subprocess.run([OBJDUMP, "-drC", "--no-show-raw-insn", path], capture_output=True, text=True, check=True)
    found, function = set(), ""
    for line in result.stdout.split("\n"):
        start = FUNCTION.match(line)
        if start:
            function = re.split(r"\(|\s\[clone", start[1].replace("(anonymous namespace)::", ""))[0]
        call = CALL.search(line)
        if call:
            found.add((function, call[1]))
    return found


def main():
    build = Path(sys.argv[1])
    objects = [path for folder in FOLDERS for path in (build / folder).rglob("*.o") if "_autogen" not in str(path)]
    if len(objects) < 50:
        sys.exit(f"boardCalls: only {len(objects)} objects in {build}")
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        found = set().union(*pool.map(calls, objects))
    dividing = {function for function, call in found if "divmod" in call}
    wrong = [f"{function} calls {call}" for function, call in sorted(found)
             if "divmod" not in call or function not in MAY_DIVIDE]
    wrong += [f"{function} no longer divides 64-bit numbers: take it off the list" for function in MAY_DIVIDE
              if function not in dividing]
    print("\n".join(f"boardCalls: {line}" for line in wrong) if wrong else
          f"boardCalls: {len(objects)} objects; nothing throws, {len(dividing)} functions divide 64-bit numbers, as listed")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
