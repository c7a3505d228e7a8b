#!/usr/bin/env python3
"""Times the start of the workbench: benchStart.py PROGRAM PLUGIN_FOLDER SCRATCH_FOLDER

PROGRAM ends once its window was painted; it is started again and again, in random order, as a bare window, as the
workbench without plug-ins, and with all plug-ins of PLUGIN_FOLDER. Prints "name value" lines: medians of milliseconds and
of the most resident bytes, and how far the milliseconds lie apart.

What a plug-in adds to the others or takes alone, and how much longer than the bare window the workbench takes, are
medians over pairs of starts, one right after the other: what else the machine does meanwhile touches both.
"""
import os
import random
import shutil
import statistics
import sys
import time
from pathlib import Path

ROUNDS = 15
PAIRS = 31
WINDOW_PAIRS = 101  # the ratio of two whole starts has a goal close by
PLUGIN_FOLDERS = ("baseArithm", "extArithm", "DataSource")


def start(command):
    """(milliseconds until the process ended, most resident bytes)"""
    begun = time.perf_counter()
    child = os.posix_spawn(command[0], command, os.environ)
    _, status, usage = os.wait4(child, 0)
    if status:
        sys.exit(f"benchStart: {' '.join(command)} ended with {status}")
    return (time.perf_counter() - begun) * 1e3, usage.ru_maxrss * 1024


def placed(program, folder, plugins=()):
    """The program in a folder of its own, with plug-ins beside it."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    shutil.copy2(program, folder)
    for plugin in plugins:
        (folder / plugin.parent.name).mkdir(exist_ok=True)
        shutil.copy2(plugin, folder / plugin.parent.name)
    return str(folder / program.name)


def pairs(one, other, number):
    """[(milliseconds of one, of the other)], each pair in the other order than the one before"""
    start(one)
    start(other)
    found = []
    for i in range(number):
        times = {command: start(command)[0] for command in ((one, other) if i % 2 else (other, one))}
        found.append((times[one], times[other]))
    return found


def difference(one, other):
    """milliseconds that one takes more, the median of pairs"""
    return statistics.median(whole - part for whole, part in pairs(one, other, PAIRS))


def main():
    program, folder, scratch = (Path(argument).resolve() for argument in sys.argv[1:4])
    plugins = [plugin for name in PLUGIN_FOLDERS for plugin in sorted((folder / name).glob("*.so"))]
    alone = placed(program, scratch / "alone")
    commands = {"bare": (alone, "bare"), "workbench": (alone, "workbench"),
                "pack": (placed(program, scratch / "pack", plugins), "workbench")}
    for command in commands.values():
        start(command)  # files come from the cache from now on
    order = [name for name in commands for _ in range(ROUNDS)]
    random.shuffle(order)
    results = {name: [] for name in commands}
    for name in order:
        results[name].append(start(commands[name]))
    for plugin in plugins:
        others = [other for other in plugins if other != plugin]
        without = (placed(program, scratch / f"without_{plugin.stem}", others), "workbench")
        print(f"added_{plugin.stem}_ms {difference(commands['pack'], without):.2f}")
        only = (placed(program, scratch / plugin.stem, [plugin]), "workbench")
        print(f"alone_{plugin.stem}_ms {difference(only, commands['workbench']):.2f}")
    starts = pairs(commands["workbench"], commands["bare"], WINDOW_PAIRS)
    ratio = statistics.median(whole / bare for whole, bare in starts)
    print(f"workbench_by_bare {ratio:.3f}")
    for name, values in results.items():
        times = [value[0] for value in values]
        print(f"{name}_ms {statistics.median(times):.2f}")
        print(f"{name}_cv {statistics.stdev(times) / statistics.mean(times):.3f}")
        print(f"{name}_bytes {statistics.median(value[1] for value in values):.0f}")


if __name__ == "__main__":
    main()
