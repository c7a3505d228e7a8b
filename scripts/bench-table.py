#!/usr/bin/env python3
"""Prints one table from the JSON of the benchmarks and the lines of the window's measurement."""
import json
import sys


def nanoseconds(run):
    return run["real_time"] * {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]


def medians(path):
    with open(path) as file:
        runs = json.load(file)["benchmarks"]
    return {run["run_name"]: nanoseconds(run) for run in runs if run.get("aggregate_name") == "median"}


def shown(value):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if value >= size:
            return f"{value / size:.3g} {unit}"
    return f"{value:.3g} ns"


def beside(time, name, ours, peer, limit):
    """A row with a goal beside a peer; nothing where the peer is not installed."""
    if peer in time:
        yield name, time[ours], time[peer], f"at most {limit}", time[ours] / time[peer] <= limit


def pixel_rows(time):
    for name, ours in (("in place", "exchangeInPlace"), ("while copying", "exchangeCopying")):
        yield from beside(time, f"exchange of blue and red {name} / copy", ours, "copyColour", 1)
        yield from beside(time, f"exchange of blue and red {name} / OpenCV", ours, "exchangeByOpenCv/0", 1)
    for kind, name in enumerate(("any colours", "pure greys")):
        yield from beside(time, f"grey of full HD, {name} / double loop", f"greyOfRgb/{kind}", f"greyByDoubles/{kind}", 1)
        yield from beside(time, f"grey of full HD, {name} / OpenCV", f"greyOfRgb/{kind}", f"greyByOpenCv/{kind}", 1)
    yield from beside(time, "grey to three bytes / OpenCV", "rgbOfGrey", "rgbOfGreyByOpenCv/0", 1)


def drawing_rows(time):
    colour = time["drawOption/0"]
    yield "full HD colour onto 960x540 / exchange and painter", colour, time["drawByPainter"], "at most 0.2", \
        colour / time["drawByPainter"] <= 0.2
    yield from beside(time, "full HD colour onto 960x540 / OpenCV, no exchange", "drawOption/0", "resizeByOpenCv", 1)
    for kind, name in ((1, "grey"), (2, "overlay in grey"), (3, "overlay in blocks"), (4, "mask")):
        yield f"full HD {name} / colour, copy included", time[f"drawPicture/{kind}"], time["drawPicture/0"], \
            "at most 1", time[f"drawPicture/{kind}"] <= time["drawPicture/0"]
        yield f"full HD {name} / colour, window's part", time[f"drawOption/{kind}"], colour, "-", None


def rows(time, window):
    step = (time["pass/51/20"] - time["pass/1/20"]) / 50
    long_step = (time["pass/51/200"] - time["pass/1/20"]) / 50
    call = time["emptyIndirectCall"]
    yield "step that does nothing, 20 characters of option", step, call, "below 1 us", step < 1000
    yield "step that does nothing, 200 characters of option", long_step, call, "below 1 us", long_step < 1000
    copies = time["twoPlainCopies"]
    yield "full HD through a memory disk / two copies", time["handOff"], copies, "at most 1.25", \
        time["handOff"] / copies <= 1.25
    yield "bare hand-off / empty call", time["bareHandOff"], call, "at most 5 us", time["bareHandOff"] <= 5000
    opened = time["openProject/100000"]
    yield "opening 100,000 steps / 10,000", opened, time["openProject/10000"], "about 10 (at most 15)", \
        opened / time["openProject/10000"] <= 15
    written = time["writeProject/100000"]
    yield "writing 100,000 steps / 10,000", written, time["writeProject/10000"], "about 10 (at most 15)", \
        written / time["writeProject/10000"] <= 15
    yield from drawing_rows(time)
    yield from pixel_rows(time)
    for number, name in enumerate(("memory disk", "drawing", "saving", "loading")):
        parts = time[f"prepareConfig/{number}"] + time[f"showConfig/{number}"]
        opened = time[f"openConfig/{number}"]
        yield f"{name} window opened / preparing run + window alone", opened, parts, "at most 1.1", opened / parts <= 1.1
    for number, name in enumerate(("JPG", "PNG", "BMP")):
        for grey, kind in enumerate(("colour", "grey")):
            yield f"loading a full HD {name} as {kind} / QImage", time[f"loadByStep/{number}/{grey}"], \
                time[f"loadByQt/{number}"], "-", None
            yield from beside(time, f"loading a full HD {name} as {kind} / OpenCV", f"loadByStep/{number}/{grey}",
                              f"loadByOpenCv/{number}/{grey}", 1 if name == "JPG" else 1.1)
        yield f"saving a full HD {name} / QImage", time[f"saveByStep/{number}"], time[f"saveByQt/{number}"], "-", None
        yield from beside(time, f"saving a full HD {name} / OpenCV", f"saveByStep/{number}", f"saveByOpenCv/{number}",
                          {"JPG": 1, "PNG": 1.2, "BMP": 1.1}[name])
    frame = 16e6
    yield "window away, 99th percentile / a frame", window["p99_ms"] * 1e6, frame, "at most 1", \
        window["p99_ms"] <= 16
    yield "window away, longest / a frame", window["longest_ms"] * 1e6, frame, "-", None
    yield "window's own work, longest / a frame", window["work_longest_ms"] * 1e6, frame, "at most 1", \
        window["work_longest_ms"] <= 16


def main():
    time = medians(sys.argv[1])
    with open(sys.argv[2]) as file:
        window = {name: float(value) for name, value in (line.split() for line in file if line.strip())}
    print(f"{'question':<50} {'ours':>10} {'beside':>10} {'ratio':>8}  {'goal':<22} met")
    for question, ours, beside, goal, met in rows(time, window):
        word = "-" if met is None else "yes" if met else "NO"
        print(f"{question:<50} {shown(ours):>10} {shown(beside):>10} {ours / beside:>8.2f}  {goal:<22} {word}")


if __name__ == "__main__":
    main()
