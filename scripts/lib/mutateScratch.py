"""The scratch copy in which scripts/mutate breaks the code, and how it is built and tested there.

The sources are copied and configured once: no optimisation, no debug information, and the core as a shared library, so
that a mutant costs one compilation and one link instead of a link of every test program. Each worker has its own
sources, libraries and test folders and takes everything else from the one build.
"""
import hashlib
import json
import os
import re
import select
import shlex
import shutil
import signal
import subprocess
import time
from collections import Counter
from dataclasses import dataclass
from pathlib import Path

# What the scratch copy is built with instead of what the project says.
PATCHES = {
    "src/CMakeLists.txt": [("add_library(lumivantCore STATIC)", "add_library(lumivantCore SHARED)")],
    "cmake/ProjectOptions.cmake": [("set(CMAKE_CXX_VISIBILITY_PRESET hidden)", ""),
                                   ("set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)", ""), (":-Og>", ":-O0>")],
}
INCLUDE = re.compile(r"^#include <([\w/]+)>", re.M)
CORE, STORE = "lib/liblumivantCore.so", "lib/libArithmParamMgr.so.1.0.0"
STORE_NAME = "libArithmParamMgr.so.1"
LIMITS = ["--core=0", f"--fsize={256 << 20}"]
ADDRESS_SPACE = f"--as={8 << 30}"  # Not under a sanitizer, which reserves more than there is.
TIME_FACTOR, TIME_SLACK = 5, 10  # A test that takes longer than this hangs: factor x normal + slack in seconds.


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
        say("precompiling headers")
        self._precompile([unit for unit in self.units if unit.object.startswith("src/")])

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
            for name, program in re.findall(r"add_test\(\[=\[(.*?)\]=\] \"(.*?/test-run/.*?)\"", file.read_text()):
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

    # ---- Precompiled Qt ----

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

    def header_of(self, unit):
        # Where our own headers lie does not matter to a header of Qt alone.
        flags = [flag for flag in self.flags_of(unit) if not flag.startswith(("-I", str(self.build)))]
        key = hashlib.sha256(" ".join(flags).encode()).hexdigest()[:16]
        return self.folder / "pch" / key / "qt.h"

    def _foreign_includes(self, unit):
        files = [unit.source, *(self.source / name for name in unit.needs)]
        return {name for file in files if file.is_file() for name in INCLUDE.findall(file.read_text(errors="replace"))}

    def _precompile(self, units):
        """One header for each set of flags, of what a quarter of its units include; more would cost more to load."""
        groups = {}
        for unit in units:
            groups.setdefault(self.header_of(unit), []).append(unit)
        for header, members in groups.items():
            counts = Counter(name for unit in members for name in self._foreign_includes(unit))
            text = "".join(f"#include <{name}>\n" for name in sorted(counts) if 4 * counts[name] >= len(members))
            if header.exists() and header.read_text() == text and header.with_name("qt.h.gch").exists():
                continue
            header.parent.mkdir(parents=True, exist_ok=True)
            header.write_text(text)
            run([*self.flags_of(members[0]), "-x", "c++-header", str(header), "-o", str(header) + ".gch"], self.build,
                "Precompiling a header")

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
        worker = Worker(self, "coverage")
        extra = ("--coverage", "-fprofile-update=atomic") if not self.sanitizer else ()
        if extra:
            measured = {self.source / name for name in cache["files"]}
            units = [unit for unit in self.units if unit.source in measured]
            worker.instrument(units, extra)
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


class Worker:
    """A copy of the sources, the libraries and the test folders in which one mutant at a time is built and tested."""

    def __init__(self, scratch, name):
        self.scratch = scratch
        self.folder = scratch.folder / name
        self.source, self.lib, self.run_folder = self.folder / "source", self.folder / "lib", self.folder / "run"
        self.objects, self.home = self.folder / "obj", self.folder / "home"
        shutil.rmtree(self.folder, ignore_errors=True)
        shutil.copytree(scratch.source / "src", self.source / "src")
        shutil.copytree(scratch.source / "tests", self.source / "tests")
        shutil.copytree(scratch.source / "sdk", self.source / "sdk")
        for folder in (self.lib, self.run_folder, self.objects, self.home):
            folder.mkdir()
        self.programs = set()  # Test programs that are not as the scratch copy built them.
        for output in (CORE, STORE):
            self._restore_library(output)
        for test in scratch.tests:
            self._tidy(test)

    # ---- Files ----

    def _library(self, output):
        return self.lib / (STORE_NAME if output == STORE else Path(output).name)

    def _restore_library(self, output):
        self._library(output).unlink(missing_ok=True)
        shutil.copy2(self.scratch.build / output, self._library(output))

    def _tidy(self, test):
        """Leaves nothing in the folder of a test but its program, and nothing in the temporary folder."""
        folder = self.run_folder / test.program.parent.name
        folder.mkdir(exist_ok=True)
        for entry in folder.iterdir():
            if entry.name != test.program.name:
                shutil.rmtree(entry) if entry.is_dir() and not entry.is_symlink() else entry.unlink()
        if not (folder / test.program.name).exists():
            shutil.copy2(test.program, folder)
        shutil.rmtree(self.home, ignore_errors=True)
        (self.home / "tmp").mkdir(parents=True)

    # ---- Building ----

    def _compile(self, unit, extra=()):
        """The object of a unit from this worker's sources; None when it does not compile."""
        target = self.objects / unit.object
        target.parent.mkdir(parents=True, exist_ok=True)
        mine = [word.replace(str(self.scratch.source), str(self.source)) for word in self.scratch.flags_of(unit)]
        source = str(unit.source).replace(str(self.scratch.source), str(self.source))
        header = self.scratch.header_of(unit)
        if not extra and header.with_name("qt.h.gch").exists():
            mine += ["-include", str(header)]
        command = [*mine, *extra, "-w", "-c", source, "-o", str(target)]
        done = subprocess.run(command, cwd=self.scratch.build, stdin=subprocess.DEVNULL, capture_output=True)
        return str(target) if done.returncode == 0 else None

    def _link(self, output, target, objects, extra=()):
        command = list(self.scratch.links[output])
        command[command.index("-o") + 1] = str(target)
        command = [objects.get(word, word) for word in command] + list(extra)
        target.unlink(missing_ok=True)
        return subprocess.run(command, cwd=self.scratch.build, stdin=subprocess.DEVNULL,
                              capture_output=True).returncode == 0

    def _build_libraries(self, units, extra=()):
        objects = {}
        for unit in units:
            made = self._compile(unit, extra)
            if not made:
                return False
            objects[unit.object] = made
        for output in (STORE, CORE):
            if set(self.scratch.links[output]) & set(objects):
                if not self._link(output, self._library(output), objects, extra):
                    return False
        return True

    def _build_program(self, test, header):
        """Builds a test program anew when it uses a header that is changed; false when it does not compile."""
        output = str(test.program.relative_to(self.scratch.build))
        units = [unit for unit in self.scratch.units if unit.object in self.scratch.links[output]]
        stale = [unit for unit in units if header in unit.needs]
        if not stale:
            return True
        objects = {unit.object: self._compile(unit) for unit in stale}
        self.programs.add(test.program)
        return all(objects.values()) and self._link(output, self._program(test), objects)

    def instrument(self, units, extra):
        if not self._build_libraries(units, extra):
            raise Failure("The instrumented libraries do not build.")

    def lines_reached(self):
        files = [str(path) for path in self.objects.rglob("*.gcda")]
        if not files:
            return {}
        text = run(["gcov", "--json-format", "--stdout", *files], self.folder, "gcov")
        lines = {}
        for document in text.splitlines():
            if not document.startswith("{"):
                continue
            for entry in json.loads(document)["files"]:
                name = entry["file"].replace(str(self.source) + "/", "")
                if name.startswith("src/"):
                    counts = lines.setdefault(name, {})
                    for line in entry["lines"]:
                        key = str(line["line_number"])
                        counts[key] = max(counts.get(key, 0), min(line["count"], 1))
        return lines

    # ---- Testing ----

    def _program(self, test):
        return self.run_folder / test.program.parent.name / test.program.name

    def run_test(self, test, limit):
        """Why the test failed; an empty text when it passed."""
        self._tidy(test)
        environment = {**os.environ, **test.environment, "LD_LIBRARY_PATH": str(self.lib), "HOME": str(self.home),
                       "TMPDIR": str(self.home / "tmp"), "XDG_RUNTIME_DIR": str(self.home / "tmp")}
        limits = LIMITS + ([] if self.scratch.sanitizer else [ADDRESS_SPACE])
        process = subprocess.Popen(["prlimit", *limits, str(self._program(test)), *test.arguments],
                                   cwd=self._program(test).parent, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True)
        try:
            return self._watch(process, time.monotonic() + limit)
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
            process.stdout.close()

    @staticmethod
    def _watch(process, end):
        """Reads what a test says until it fails, ends or takes too long."""
        rest = b""
        while time.monotonic() < end:
            if select.select([process.stdout], [], [], 0.2)[0]:
                piece = os.read(process.stdout.fileno(), 65536)
                if piece:
                    *lines, rest = (rest + piece).split(b"\n")
                    failed = next((line for line in lines if re.match(rb"(FAIL!|XPASS|QFATAL)\s*: ", line)), None)
                    if failed:
                        return failed.decode(errors="replace").split(": ", 1)[1].split(" ")[0]
                    continue
            if process.poll() is not None or rest is None:
                break
            # The pipe is closed while the process lives: wait for its end.
            time.sleep(0.002)
        if process.poll() is None:
            return "a hang"
        return "" if process.returncode == 0 else f"exit {process.returncode}"

    def try_mutation(self, mutation, text, tests):
        """("not compiled" | "survived" | "caught", by whom)"""
        file = self.source / mutation.file
        file.write_text(text[:mutation.start] + mutation.put + text[mutation.end:])
        try:
            return self._try(mutation, tests)
        finally:
            file.write_text(text)
            for output in (CORE, STORE):
                if self._touched(mutation.file, output):
                    self._restore_library(output)
            for program in self.programs:
                (self.run_folder / program.parent.name / program.name).unlink(missing_ok=True)
            self.programs.clear()

    def _units_of(self, name):
        path = self.scratch.source / name
        return [unit for unit in self.scratch.units if unit.object.startswith("src/")
                and not unit.object.startswith("src/CMakeFiles/lumivant.dir")
                and (unit.source == path or name in unit.needs)]

    def _touched(self, name, output):
        return any(unit.object in self.scratch.links[output] for unit in self._units_of(name))

    def _try(self, mutation, tests):
        if not self._build_libraries(self._units_of(mutation.file)):
            return "not compiled", ""
        for test in tests:
            if mutation.file.endswith(".h") and not self._build_program(test, mutation.file):
                return "not compiled", ""
            reason = self.run_test(test, test.seconds * TIME_FACTOR + TIME_SLACK)
            if reason:
                return "caught", f"{test.name}::{reason.split('::')[1].rstrip('()')}" if "::" in reason else (
                    f"{test.name} ({reason})")
        return "survived", ""
