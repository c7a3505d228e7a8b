"""The scratch copy in which scripts/mutate breaks the code, and how it is built and tested there.

The sources are copied and configured once: no optimisation, no debug information, and the core as a shared library, so
that a mutant costs one compilation and one link instead of a link of every test program. Each worker has its own
sources, libraries and test folders and takes everything else from the one build.
"""
import hashlib
import json
import os
import re
import shlex
import shutil
import subprocess
import time
from dataclasses import dataclass
from pathlib import Path

# What the scratch copy is built with instead of what the project says.
PATCHES = {
    "src/CMakeLists.txt": [("add_library(lumivantCore STATIC)", "add_library(lumivantCore SHARED)")],
    "cmake/ProjectOptions.cmake": [("set(CMAKE_CXX_VISIBILITY_PRESET hidden)", ""),
                                   ("set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)", ""), (":-Og>", ":-O0>")],
}
CORE, STORE = "lib/liblumivantCore.so", "lib/libArithmParamMgr.so.1.0.0"


class Failure(Exception):
    pass


def run(command, cwd, what):
    done = subprocess.run(command, cwd=cwd, stdin=subprocess.DEVNULL, capture_output=True, text=True, errors="replace")
    if done.returncode:
        raise Failure(f"{what} failed:\n{(done.stdout + done.stderr)[-3000:]}")
    return done.stdout


def digest(*paths):
    total = hashlib.sha256()
    for path in paths:
        total.update(Path(path).read_bytes())
    return total.hexdigest()


@dataclass
class Unit:
    """One translation unit: how it is compiled, relative to the build folder."""
    source: Path
    object: str
    command: list
    needs: set  # Headers of ours, relative to the sources.


@dataclass
class Test:
    name: str
    folder: str
    program: Path
    arguments: list
    environment: dict
    seconds: float = 0.0


class Scratch:
    def __init__(self, root, folder, sanitizer=""):
        self.root, self.folder, self.sanitizer = root, folder, sanitizer
        self.source, self.build = folder / "source", folder / "build"
        self.units, self.tests, self.links = [], [], {}

    # ---- Building ----

    def prepare(self, say, wanted=""):
        """Builds the libraries and the test programs whose names contain the pattern."""
        self.source.mkdir(parents=True, exist_ok=True)
        say("copying the sources")
        self._copy()
        if not (self.build / "build.ninja").exists():
            self._configure()
        run(["ninja", "-C", str(self.build), "build.ninja"], self.folder, "Configuring the scratch copy")
        targets = self._programs(wanted)
        say(f"building the scratch copy with {len(targets)} tests")
        run(["ninja", "-C", str(self.build), "-j2", CORE, STORE, "lumivantTestPlugins", *targets], self.folder,
            "Building the scratch copy")
        self._read_tests(wanted)
        self._read_units()

    def _copy(self):
        listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=self.root, capture_output=True,
                                text=True, check=True).stdout.split("\n")
        names = {name for name in listed if name and (self.root / name).is_file()}
        for path in [path for path in self.source.rglob("*") if path.is_file() or path.is_symlink()]:
            if str(path.relative_to(self.source)) not in names:
                path.unlink()
        for name in names:
            content = (self.root / name).read_bytes()
            for before, after in PATCHES.get(name, []):
                if before.encode() not in content:
                    raise Failure(f"{name} does not contain '{before}'; scripts/lib/mutateScratch.py has to follow it.")
                content = content.replace(before.encode(), after.encode())
            target = self.source / name
            if not target.exists() or target.read_bytes() != content:
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_bytes(content)
                target.chmod((self.root / name).stat().st_mode)

    def _configure(self):
        linker = next((name for name in ("lld", "gold") if shutil.which(f"ld.{name}")), "bfd")
        flags = f"-fuse-ld={linker} -Wl,--enable-new-dtags"  # So that LD_LIBRARY_PATH comes first.
        run(["cmake", "-S", str(self.source), "-B", str(self.build), "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
             "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -g0" if not self.sanitizer else "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -g1",
             "-DLUMIVANT_PLUGINS=OFF", "-DLUMIVANT_CCACHE=OFF", f"-DLUMIVANT_SANITIZE={self.sanitizer}",
             "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", "-DCMAKE_AUTOMOC_PATH_PREFIX=ON",
             *(f"-DCMAKE_{kind}_LINKER_FLAGS={flags}" for kind in ("EXE", "SHARED", "MODULE"))],
            self.folder, "Configuring the scratch copy")

    def _programs(self, wanted):
        """The test programs, relative to the build folder; ctest itself names only those that are built already."""
        found = set()
        for file in (self.build / "tests").rglob("CTestTestfile.cmake"):
            for name, program in re.findall(r"add_test\(\[=\[(.*?)\]=\] \"([^\"]*/test-run/[^\"]*)\"", file.read_text()):
                if re.search(wanted, name):
                    found.add(os.path.relpath(program, self.build))
        return sorted(found)

    def _read_tests(self, wanted):
        listed = json.loads(run(["ctest", "--test-dir", str(self.build), "--show-only=json-v1"], self.folder, "ctest"))
        for entry in listed["tests"]:
            command = entry.get("command", [])
            properties = {item["name"]: item["value"] for item in entry.get("properties", [])}
            if not command or "test-run" not in command[0] or "FIXTURES_REQUIRED" in properties:
                continue
            if not re.search(wanted, entry["name"]):
                continue
            program = Path(command[0])
            environment = dict(item.split("=", 1) for item in properties.get("ENVIRONMENT", []))
            self.tests.append(Test(entry["name"], "", program, command[1:], environment))

    def _read_units(self):
        deps = self._deps()
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            command = shlex.split(entry["command"])
            output = command[command.index("-o") + 1]
            if (self.build / output).exists():
                self.units.append(Unit(Path(entry["file"]), output, command, deps.get(output, set())))
        programs = {test.program.name: test for test in self.tests}
        for unit in self.units:
            match = re.match(r"tests/([^/]+)/CMakeFiles/([^/]+)\.dir/", unit.object)
            for test in [test for test in self.tests if match and test.program.name == match[2]]:
                test.folder = match[1]
        for output in [CORE, STORE, *(str(test.program.relative_to(self.build)) for test in programs.values())]:
            last = run(["ninja", "-t", "commands", "-s", output], self.build, "ninja").strip().split("\n")[-1]
            parts = [part.strip() for part in last.split("&&")]
            self.links[output] = shlex.split(next(part for part in parts if " -o " in part))

    def _deps(self):
        deps, current = {}, None
        for line in run(["ninja", "-t", "deps"], self.build, "ninja").split("\n"):
            if line and not line.startswith(" "):
                current = deps.setdefault(line.split(": #deps")[0], set())
            elif line.strip().startswith(str(self.source)):
                current.add(os.path.relpath(line.strip(), self.source))
            elif line.strip().startswith(".."):
                path = os.path.normpath(self.build / line.strip())
                if path.startswith(str(self.source)):
                    current.add(os.path.relpath(path, self.source))
        return deps

    @staticmethod
    def flags_of(unit):
        command, flags, skip = unit.command, [], False
        for word in command:
            if skip:
                skip = False
            elif word in ("-o", "-MF", "-MT"):
                skip = True
            elif word not in ("-c", "-MD") and word != str(unit.source):
                flags.append(word)
        return flags

    # ---- Coverage: which test reaches which line ----

    def measure(self, files, say):
        """Runs every test once with these files instrumented; gives {file: {line: set of tests}} and the seconds."""
        cache_file = self.folder / "reached.json"
        cache = json.loads(cache_file.read_text()) if cache_file.exists() else {}
        code = digest(*sorted(path for path in (self.source / "src").rglob("*") if path.is_file()))
        if cache.get("code") != code:
            cache = {"code": code, "tests": {}, "files": []}
        if not set(files) <= set(cache["files"]):
            cache.update(tests={}, files=sorted({*files, *cache["files"]}))
        missing = []
        for test in self.tests:
            key = digest(test.program)
            if cache["tests"].get(test.name, {}).get("key") != key:
                missing.append((test, key))
        if missing:
            say(f"looking which lines {len(missing)} tests reach")
            self._measure(missing, cache, say)
            cache_file.write_text(json.dumps(cache))
        return self._reached(cache)

    def _measure(self, missing, cache, say):
        from mutateWorker import Worker  # Which needs this module.
        extra = ("--coverage", "-fprofile-update=atomic") if not self.sanitizer else ()
        mark, wanted = self.folder / "coverage/instrumented", " ".join([cache["code"], *cache["files"]])
        again = mark.exists() and mark.read_text() == wanted
        worker = Worker(self, "coverage", again)
        if extra and not again:
            measured = {self.source / name for name in cache["files"]}
            worker.instrument([unit for unit in self.units if unit.source in measured], extra)
            mark.write_text(wanted)
        for test, key in missing:
            for old in worker.objects.rglob("*.gcda"):
                old.unlink()
            begun = time.monotonic()
            reason = worker.run_test(test, 600)
            seconds = time.monotonic() - begun
            if reason:
                say(f"{test.name} fails without any change and is left out: {reason}")
            cache["tests"][test.name] = {"key": key, "seconds": seconds, "fails": bool(reason),
                                         "lines": worker.lines_reached()}

    def _reached(self, cache):
        reached = {}
        for test in self.tests:
            entry = cache["tests"][test.name]
            test.seconds = entry["seconds"]
            for name, lines in entry["lines"].items():
                for line, count in lines.items():
                    tests = reached.setdefault(name, {}).setdefault(int(line), set())
                    if count:
                        tests.add(test.name)
        self.tests = [test for test in self.tests if not cache["tests"][test.name]["fails"]]
        return reached
