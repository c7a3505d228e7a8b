#!/usr/bin/env python3
"""Times the start of the workbench: benchStart.py PROGRAM PLUGIN_FOLDER SCRATCH_FOLDER

PROGRAM ends once its window was painted; it is started again and again, in random order, as a bare window, as the
workbench without plug-ins, and as the workbench with those of PLUGIN_FOLDER. Prints "name value" lines: medians of
milliseconds and of the most resident bytes.
"""
import os
import random
import shutil
import statistics
import sys
import time
from pathlib import Path

ROUNDS = 15
PLUGIN_FOLDERS = ("baseArithm", "extArithm", "DataSource")


def start(command):
    """(milliseconds until the process ended, most resident bytes)"""
    begun = time.perf_counter()
    child = os.posix_spawn(command[0], command, os.environ)
    _, status, usage = os.wait4(child, 0)
    if status:
        sys.exit(f"benchStart: {' '.join(command)} ended with {status}")
    return (time.perf_counter() - begun) * 1e3, usage.ru_maxrss * 1024


def placed(program, folder, plugins):
    """The program in a folder of its own, with the plug-ins of another beside it."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    shutil.copy2(program, folder)
    count = 0
    for name in PLUGIN_FOLDERS if plugins else ():
        if (plugins / name).is_dir():
            shutil.copytree(plugins / name, folder / name)
            count += sum(1 for _ in (folder / name).glob("*.so*"))
    return str(folder / program.name), count


def main():
    program, plugins, scratch = (Path(argument).resolve() for argument in sys.argv[1:4])
    alone, _ = placed(program, scratch / "alone", None)
    full, count = placed(program, scratch / "full", plugins)
    commands = {"bare": [alone, "bare"], "workbench": [alone, "workbench"], "plugins": [full, "workbench"]}
    for command in commands.values():
        start(command)  # files come from the cache from now on
    order = [name for name in commands for _ in range(ROUNDS)]
    random.shuffle(order)
    results = {name: [] for name in commands}
    for name in order:
        results[name].append(start(commands[name]))
    for name, values in results.items():
        print(f"{name}_ms {statistics.median(value[0] for value in values):.2f}")
        print(f"{name}_bytes {statistics.median(value[1] for value in values):.0f}")
    print(f"plugin_count {count}")


if __name__ == "__main__":
    main()
