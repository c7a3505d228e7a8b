"""Lets clang check the thread annotations of src/threadAnnotations.h, and this check by a source that it must refuse.

Needs no build: the headers of the forms are made in a folder of their own. The sources are compiled without precompiled
headers, so one that does not include what it uses is found here, too.
"""
import concurrent.futures
import json
import os
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

REFUSED_SOURCE = "tests/annotations/unguarded.cpp"


def clang():
    return shutil.which("clang++-14") or shutil.which("clang++")


def make_form_headers(root, folder):
    host_bins = subprocess.run(["pkg-config", "--variable=host_bins", "Qt5Core"], capture_output=True, text=True)
    uic = shutil.which("uic", path=host_bins.stdout.strip()) or "uic"
    for form in (root / "src/forms").glob("*.ui"):
        subprocess.run([uic, str(form), "-o", f"{folder}/ui_{form.stem}.h"], check=True)


def complaints(root, source, flags):
    """Each as (file, line, text)."""
    result = subprocess.run([clang(), *flags, str(source)], cwd=root, capture_output=True, text=True)
    found = re.findall(r"^(\S+?):(\d+):\d+: (?:fatal )?error: (.*)$", result.stderr, re.M)
    if result.returncode != 0 and not found:
        return [(str(source), 0, result.stderr.strip().split("\n")[-1])]
    return [(name, int(line), text) for name, line, text in found]


def qt_flags():
    modules = ["Qt5Widgets", "Qt5Gui", "Qt5Core", "Qt5Test"]
    return subprocess.run(["pkg-config", "--cflags", *modules], capture_output=True, text=True, check=True).stdout.split()


def own_flags(root, forms):
    """For a source of ours; forms is the folder of the headers that are made from the forms."""
    return ["-std=c++17", "-fPIC", "-fsyntax-only", "-ferror-limit=0", "-Wthread-safety", "-Wthread-safety-beta",
            "-Werror", "-include", f"{root}/src/threadAnnotations.h", f"-I{root}/src", f"-I{root}/src/paramStore",
            f"-I{root}/sdk/include", f"-I{forms}", *qt_flags()]


def complaint_about(root: Path, name, text):
    """What clang says first of locks when the file has this text, in it or in what uses it; empty when nothing."""
    path = root / name
    with tempfile.TemporaryDirectory() as folder:
        make_form_headers(root, folder)
        changed = Path(folder, "changed")
        changed.write_text(text)
        overlay = Path(folder, "overlay.yaml")
        entry = {"name": path.name, "type": "file", "external-contents": str(changed)}
        roots = [{"name": str(path.parent), "type": "directory", "contents": [entry]}]
        overlay.write_text(json.dumps({"version": 0, "roots": roots}))
        users = [path]
        if path.suffix == ".h":
            everything = sorted((root / "src").rglob("*.cpp"))
            users = [user for user in everything if user.parent == path.parent or f'{path.name}"' in user.read_text()]
        for user in users:
            for _, _, what in complaints(root, user, [*own_flags(root, folder), "-ivfsoverlay", str(overlay)]):
                if "-Wthread-safety" in what:
                    return what
    return ""


def check_refused(root, flags):
    source = root / REFUSED_SOURCE
    expected = {number for number, line in enumerate(source.read_text().split("\n"), 1) if line.endswith("// refused")}
    got = {line for _, line, _ in complaints(root, source, flags)}
    if expected and expected == got:
        return []
    return [f"locks: {REFUSED_SOURCE}: lines to be refused are {sorted(expected)}, refused were {sorted(got)}"]


def check(root: Path, sources):
    if not clang():
        return ["locks: clang is missing"]
    with tempfile.TemporaryDirectory() as folder, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        make_form_headers(root, folder)
        flags = own_flags(root, folder)
        own = [path for path in sources if str(path.relative_to(root)).startswith("src/")]
        found = [hit for hits in pool.map(lambda path: complaints(root, path, flags), own) for hit in hits]
        lines = sorted({f"locks: {name.replace(f'{root}/', '')}:{line}: {text}" for name, line, text in found})
        return lines + check_refused(root, flags)
