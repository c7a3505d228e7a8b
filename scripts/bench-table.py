#!/usr/bin/env python3
"""Prints one table: bench-table.py [--markdown] JSON… LINES…

Each JSON is what the benchmarks wrote, LINES are files of "name value" lines of the programs that measure by
themselves. docs/performance.md explains each row. Ends with 1, without --markdown, when a goal was not met.
"""
import json
import statistics
import sys
from dataclasses import dataclass

UNITS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
FRAME = 16e6  # ns
PEER_IS_MISSING = "an element is missing"  # what a benchmark of GStreamer says without its plug-ins


# Medians of equal things, such as two ways to make the same copies, differ by so much from run to run.
LEVEL = 1.02


@dataclass
class Row:
    """Times in ns unless the unit says otherwise; a goal is a number that the value may not exceed."""
    question: str
    ours: float
    limit: float = None
    peer: float = None
    limit_goal: float = None  # ours / limit at most
    peer_goal: float = None
    most: float = None  # ours at most
    spread: float = None
    unit: str = "ns"

    def met(self):
        checks = [(self.most, self.ours), (self.limit_goal, ratio(self.ours, self.limit)),
                  (self.peer_goal, ratio(self.ours, self.peer))]
        judged = [value <= goal for goal, value in checks if goal is not None and value is not None]
        return all(judged) if judged else None  # nothing to reach, or a peer is not installed

    def goal(self):
        parts = [f"at most {shown(self.most, self.unit)}"] if self.most is not None else []
        for name, value in (("limit", self.limit_goal), ("peer", self.peer_goal)):
            if value is not None:
                parts.append(f"level with {name}" if value == LEVEL else f"{value:.3g} of {name}")
        return ", ".join(parts) or "-"


def ratio(ours, other):
    return None if other is None else ours / other


def shown(value, unit="ns"):
    if value is None:
        return "-"
    if unit != "ns":
        return f"{value:.4g} {unit}".strip()
    for name, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if abs(value) >= size:
            return f"{value / size:.3g} {name}"
    return f"{value:.3g} ns"


def of_each_number(runs, function):
    """What a function makes of each number that several processes measured; what is no number as the first has it."""
    return {key: function([run[key] for run in runs]) if isinstance(value, (int, float)) else value
            for key, value in runs[0].items()}


def deviation(numbers):
    """Divided by the mean."""
    return statistics.stdev(numbers) / statistics.mean(numbers) if any(numbers) else 0


class Times:
    """Medians of the benchmarks by name, how far their repetitions lie apart, and the same of what they counted."""

    def __init__(self, paths):
        runs = []
        for path in paths:
            with open(path) as file:
                runs += json.load(file)["benchmarks"]
        failed = {f"{run['run_name']}: {run['error_message']}" for run in runs if run.get("error_occurred")}
        ours = sorted(why for why in failed if not why.endswith(PEER_IS_MISSING))
        if ours:
            sys.exit("bench: failed: " + "; ".join(ours))
        found = {"median": {}, "cv": {}}
        for run in runs:
            if not run.get("error_occurred") and run.get("aggregate_name") in found:
                found[run["aggregate_name"]].setdefault(run["run_name"].replace("/manual_time", ""), []).append(run)
        self.counted = {name: of_each_number(medians, statistics.median) for name, medians in found["median"].items()}
        # Of one process alone its repetitions say how far numbers lie apart.
        self.counted_spread = {name: of_each_number(found["median"][name], deviation) if len(spreads) > 1 else spreads[0]
                               for name, spreads in found["cv"].items()}
        self.median = {name: run["real_time"] * UNITS[run["time_unit"]] for name, run in self.counted.items()}
        self.spread = {name: run["real_time"] for name, run in self.counted_spread.items()}

    def __getitem__(self, name):
        return self.median.get(name)

    def turns(self, name):
        """What a benchmark measured in turns, and how far the repetitions lie apart."""
        found = next(name_ for name_ in self.counted if name_.split("/iterations:")[0] == name)
        return self.counted[found], self.counted_spread[found]

    def row(self, question, ours, limit=None, peer=None, **goals):
        return Row(question, self[ours], self[limit] if limit else None, self[peer] if peer else None,
                   spread=self.spread.get(ours), **goals)


def step_rows(time):
    step, spread = time.turns("step")
    above = {length: step[f"step{length}"] - step["call"] for length in (20, 200, 2000)}
    for length in (20, 200):
        yield Row(f"engine's part of a step, {length} characters, above the call", above[length], most=20,
                  spread=spread[f"step{length}"])
    yield Row("the same, 200 characters above 20", above[200] - above[20], most=5)
    yield Row("the same, 2000 characters, above the call", above[2000])
    yield Row("a step whose result is a command", step["command"])
    yield Row("an empty indirect call", step["call"])
    yield time.row("pass over 51 steps that do nothing / GStreamer, 50 identities", "pass/51/20",
                   peer="identityChain/50", peer_goal=1 / 6)


def hand_off_rows(time):
    for size, name, goals in (("1920/1080/96", "full HD", {"limit_goal": 1 / 0.95, "peer_goal": LEVEL}),
                              ("4096/3000/24", "4096x3000", {})):
        turns, spread = time.turns(f"handOff/{size}")
        yield Row(f"picture from thread to thread, {name}", turns["disk"], turns["copies"], turns.get("pooledPair"),
                  spread=spread["disk"], **goals)
        yield Row("the same / the two copies as the disk makes them, without waiting", turns["disk"], turns["ownCopies"],
                  spread=spread["disk"])
        yield Row("the same / GStreamer as it comes, without a pool of its own", turns["disk"],
                  peer=turns.get("freshPair"), peer_goal=1 / 3 if size.startswith("4096") else None,
                  spread=spread["disk"])
    yield time.row("bare hand-off", "bareHandOff", most=5000)


def drawing_rows(time):
    turns, spread = time.turns("drawing")

    def row(question, ours, peer, peer_goal=None):
        other = turns.get(peer) if peer == "openCv" else turns[peer]
        return Row(question, turns[ours], peer=other, peer_goal=peer_goal, spread=spread[ours])

    copied = "the same from the step's text on, copy included"
    yield row("full HD colour onto 960x540 / exchange and painter", "option0", "painter", 0.2)
    yield row(copied, "picture0", "painter")
    yield row("full HD colour onto 960x540 / OpenCV, no exchange", "option0", "openCv", 1)
    for kind, name in ((1, "grey"), (2, "overlay in grey"), (3, "overlay in blocks"), (4, "mask")):
        yield row(f"full HD {name} / colour", f"option{kind}", "option0", 1)
        yield row(copied, f"picture{kind}", "picture0", 1)
    for kind, name in ((6, "grey"), (7, "overlay in grey"), (8, "overlay in blocks"), (9, "mask")):
        yield row(f"full HD {name} without scaling / colour", f"option{kind}", "option5", 1)


def pixel_rows(time):
    turns, spread = time.turns("exchange")
    for name, ours in (("in place", "inPlace"), ("while copying", "copying")):
        yield Row(f"exchange of blue and red {name} / copy, OpenCV", turns[ours], turns["copy"], turns.get("openCv"),
                  limit_goal=LEVEL, peer_goal=1, spread=spread[ours])
    for name, rows in (("from a file's band into a picture", "Read"), ("into a file's band", "Written"),
                       ("into the picture that is shown", "Drawn")):
        yield Row(f"the same row by row, {name} / copy by registers, memcpy", turns[f"exchange{rows}"],
                  turns[f"loop{rows}"], turns[f"copy{rows}"], limit_goal=1.05, spread=spread[f"exchange{rows}"])
    for kind, name in enumerate(("any colours", "pure greys")):
        yield time.row(f"grey of full HD, {name} / OpenCV", f"greyOfRgb/{kind}", peer=f"greyByOpenCv/{kind}",
                       peer_goal=1)
        yield time.row(f"grey of full HD, {name} / double loop", f"greyOfRgb/{kind}", peer=f"greyByDoubles/{kind}")
    yield time.row("grey to three bytes / OpenCV", "rgbOfGrey", peer="rgbOfGreyByOpenCv/0", peer_goal=1)


def file_rows(time):
    goals = {"JPG": (1, 1), "PNG": (None, 1.2), "BMP": (1.1, 1.1), "grey BMP": (1.1, 1.1)}
    for number, name in enumerate(goals):
        load, save = goals[name]
        for grey, kind in enumerate(("colour", "grey")):
            ours = f"loadByStep/{number}/{grey}"
            # The loading step's grey is that of the colours, which a decoder of luma alone does not know.
            other = 2 if grey and name == "JPG" else grey
            yield time.row(f"loading a full HD {name} as {kind} / OpenCV", ours, peer=f"loadByOpenCv/{number}/{other}",
                           peer_goal=load)
            if other != grey:
                yield time.row("the same / OpenCV's decoder of luma alone, other greys", ours,
                               peer=f"loadByOpenCv/{number}/{grey}")
            yield time.row(f"loading a full HD {name} as {kind} / QImage", ours, peer=f"loadByQt/{number}")
        yield time.row(f"saving a full HD {name} / OpenCV", f"saveByStep/{number}", peer=f"saveByOpenCv/{number}",
                       peer_goal=save)
        yield time.row(f"saving a full HD {name} / QImage", f"saveByStep/{number}", peer=f"saveByQt/{number}")
    turns, spread = time.turns("loadPng/1")
    yield Row("loading a full HD PNG as colour / libpng", turns["step"], peer=turns["libpng"], peer_goal=1.05,
              spread=spread["step"])
    yield Row("size of a saved full HD PNG / QImage", time.counted["saveByStep/1"]["bytes"],
              peer=time.counted["saveByQt/1"]["bytes"], peer_goal=1.1, unit="bytes")


def text_rows(time):
    for name, what, missing, most in (("openProject", "opening", "file, table and what was open", 500),
                                      ("closeProject", "closing", "the table", None),
                                      ("writeProject", "writing", "the disk", 500)):
        for steps in (10000, 100000):
            per_step = time[f"{name}/{steps}"] / steps
            yield Row(f"{what} {steps:,} steps, each, without {missing}", per_step, most=most,
                      spread=time.spread.get(f"{name}/{steps}"))


def window_rows(time):
    for number, name in enumerate(("memory disk", "drawing", "saving", "loading")):
        parts = time[f"prepareConfig/{number}"] + time[f"showConfig/{number}"]
        yield Row(f"{name} window opened / preparing run + window alone", time[f"openConfig/{number}"], parts,
                  spread=time.spread.get(f"openConfig/{number}"))


def of_each_plugin(lines, what):
    return {name.split("_")[1]: value for name, value in lines.items()
            if name.startswith(f"{what}_") and name.endswith("_ms")}


def start_rows(lines):
    # Of pairs of starts, so that the bare window is the one in whose neighbourhood ours was shown.
    yield Row("start to shown window, no plug-ins / bare window", lines["workbench_ms"] * 1e6,
              lines["workbench_ms"] / lines["workbench_by_bare"] * 1e6, limit_goal=2, spread=lines["workbench_cv"])
    yield Row("most memory until then / bare window", lines["workbench_bytes"] / 2**20, lines["bare_bytes"] / 2**20,
              limit_goal=2, unit="MiB")
    added = of_each_plugin(lines, "added")
    yield Row("the whole pack adds, for each plug-in", (lines["pack_ms"] - lines["workbench_ms"]) / len(added) * 1e6,
              most=5e6, spread=lines["pack_cv"])
    most = max(added, key=added.get)
    yield Row(f"what the slowest of them ({most}) adds to the others", added[most] * 1e6, most=5e6)
    alone = of_each_plugin(lines, "alone")
    most = max(alone, key=alone.get)
    yield Row(f"the slowest plug-in alone ({most}), its libraries included", alone[most] * 1e6, most=5e6)


def task_rows(lines):
    counts = sorted(int(name.split("_")[1]) for name in lines if name.startswith("copies_") and "cv" not in name)
    # One task keeps one processor busy, so it does not count; it is the first row alone.
    yield Row("passes a second of one task", lines["passes_1"], spread=lines["passes_1_cv"], unit="")
    busy = {count: lines[f"passes_{count}_share"] for count in counts if count > 1}
    best, worst = max(busy, key=busy.get), min(busy, key=busy.get)
    yield Row(f"most passes a second of 2 to 64 tasks ({best}) / fewest ({worst}), of a round's mean", busy[best],
              busy[worst], limit_goal=1 / 0.9, spread=max(lines[f"passes_{count}_share_cv"] for count in busy), unit="")
    slow = max(busy, key=lambda count: lines[f"copies_{count}"] / lines[f"large_{count}"])
    yield Row(f"time of a pass with a large picture / copied by a bare thread ({slow})", 1e9 / lines[f"large_{slow}"],
              1e9 / lines[f"copies_{slow}"], spread=lines[f"large_{slow}_cv"])
    # Each task holds two. Two arenas of malloc may each have a hole or two, once, however many tasks there are.
    beyond = {count: (lines[f"resident_{count}"] - lines["resident_1"]) / lines["picture"] - 2 * (count - 1)
              for count in busy}
    most = max(beyond, key=beyond.get)
    yield Row(f"pictures in the memory beyond those that up to 64 tasks hold, at most ({most})", beyond[most], most=4,
              unit="")
    yield Row("window's work a second for four hidden views", lines["hidden_ms"] * 1e6, most=5e6)
    yield Row("window away, 99th percentile / a frame", lines["p99_ms"] * 1e6, FRAME, limit_goal=1,
              spread=lines.get("p99_ms_cv"))
    yield Row("window away, longest / a frame", lines["longest_ms"] * 1e6, FRAME)
    yield Row("window's own work, longest / a frame", lines["work_longest_ms"] * 1e6, FRAME)


def shares_of_rounds(found):
    """{passes_N_share: for each round N tasks' rate / the round's mean}, which the machine's changing speed touches less"""
    busy = {name: all_ for name, all_ in found.items() if name.startswith("passes_") and name != "passes_1"}
    means = [statistics.mean(round_) for round_ in zip(*busy.values())]
    return {f"{name}_share": [rate / mean for rate, mean in zip(all_, means)] for name, all_ in busy.items()}


def read_lines(paths):
    """{name: median of its lines}, of the longest times the longest; and {name_cv: how far they lie apart}"""
    found = {}
    for path in paths:
        with open(path) as file:
            for name, value in (line.split() for line in file if line.strip()):
                found.setdefault(name, []).append(float(value))
    found.update(shares_of_rounds(found))
    values = {name: max(all_) if "longest" in name else statistics.median(all_) for name, all_ in found.items()}
    for name, all_ in found.items():
        if len(all_) > 1 and statistics.mean(all_) > 0:
            values[f"{name}_cv"] = statistics.stdev(all_) / statistics.mean(all_)
    return values


HEADS = ("question", "ours", "limit", "peer", "/limit", "/peer", "spread", "goal", "met")


def cells(row):
    ratios = [f"{value:.2f}" if value is not None else "-"
              for value in (ratio(row.ours, row.limit), ratio(row.ours, row.peer))]
    spread = "-" if row.spread is None else f"{100 * row.spread:.0f} %"
    return (row.question, shown(row.ours, row.unit), shown(row.limit, row.unit), shown(row.peer, row.unit), *ratios,
            spread, row.goal(), {None: "-", True: "yes", False: "NO"}[row.met()])


def main():
    paths = [argument for argument in sys.argv[1:] if argument != "--markdown"]
    time = Times([path for path in paths if path.endswith(".json")])
    lines = read_lines([path for path in paths if not path.endswith(".json")])
    rows = [*step_rows(time), *hand_off_rows(time), *drawing_rows(time), *pixel_rows(time), *file_rows(time),
            *text_rows(time), *window_rows(time), *start_rows(lines), *task_rows(lines)]
    table = [HEADS, *map(cells, rows)]
    if "--markdown" in sys.argv:
        table.insert(1, ["---"] * len(HEADS))
        print("\n".join("| " + " | ".join(line) + " |" for line in table))
        return
    widths = [max(len(line[column]) for line in table) for column in range(len(HEADS))]
    for line in table:
        words = [word.ljust(width) if column in (0, 7, 8) else word.rjust(width)
                 for column, (word, width) in enumerate(zip(line, widths))]
        print("  ".join(words).rstrip())
    missed = sum(row.met() is False for row in rows)
    if missed:
        sys.exit(f"bench: {missed} of the goals not met")


if __name__ == "__main__":
    main()
