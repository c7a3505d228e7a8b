"""What breaks, builds and tests one change at a time in the scratch copy of scripts/mutate."""
import json
import os
import re
import select
import shutil
import signal
import subprocess
import time
from pathlib import Path

from mutateBatch import VARIABLE, combined, wrong_variants
from mutateScratch import CORE, STORE, Failure, run

STORE_NAME = "libArithmParamMgr.so.1"
LIMITS = ["--core=0", f"--fsize={512 << 20}"]
ADDRESS_SPACE = f"--as={8 << 30}"  # Not under a sanitizer, which reserves more than there is.
TIME_FACTOR, TIME_SLACK = 5, 6  # A test that takes longer than this hangs: factor x normal + slack in seconds.


def _grouped(pairs):
    found = {}
    for place, mutation in pairs:
        found.setdefault(place, []).append(mutation)
    return found


class Worker:
    """A copy of the sources, the libraries and the test folders in which one mutant at a time is built and tested."""

    def __init__(self, scratch, name, again=False):
        self.scratch = scratch
        self.folder = scratch.folder / name
        self.source, self.lib, self.run_folder = self.folder / "source", self.folder / "lib", self.folder / "run"
        self.objects, self.home = self.folder / "obj", self.folder / "home"
        if not again:
            shutil.rmtree(self.folder, ignore_errors=True)
            for name in ("src", "tests", "sdk"):
                shutil.copytree(scratch.source / name, self.source / name)
            for folder in (self.lib, self.run_folder, self.objects, self.home):
                folder.mkdir()
            for output in (CORE, STORE):
                self._restore_library(output)
        shutil.rmtree(self.run_folder)
        self.run_folder.mkdir()
        self.programs = {}  # Test programs that are not as the scratch copy built them, and whether they compile.
        self.errors = ""  # Of the last compilation that failed.
        self.chosen = 0  # Which of several changes in one source; none.
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
        command = [*mine, *extra, "-w", "-c", source, "-o", str(target)]
        done = subprocess.run(command, cwd=self.scratch.build, stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, errors="replace")
        self.errors = done.stderr if done.returncode else ""
        return None if done.returncode else str(target)

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
        if test.program in self.programs:
            return self.programs[test.program]
        output = str(test.program.relative_to(self.scratch.build))
        units = [unit for unit in self.scratch.units if unit.object in self.scratch.links[output]]
        stale = [unit for unit in units if header in unit.needs]
        if not stale:
            return True
        objects = {unit.object: self._compile(unit) for unit in stale}
        self._tidy(test)
        self.programs[test.program] = all(objects.values()) and self._link(output, self._program(test), objects)
        return self.programs[test.program]

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
                       "TMPDIR": str(self.home / "tmp"), "XDG_RUNTIME_DIR": str(self.home / "tmp"),
                       VARIABLE: str(self.chosen)}
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

    def try_together(self, name, text, found, tests_of, tell):
        """Tries changes of one file that are compiled together; tells the end of each."""
        mutations = [(place, mutation) for place, changes in found.items() for mutation in changes]
        if len(mutations) < 2:
            for _, mutation in mutations:
                tell(mutation, self.try_alone(mutation, text, tests_of(mutation)))
            return
        source, numbers = combined(text, found)
        self._put(name, source)
        try:
            later = self._try_numbers(name, mutations, numbers, tests_of, tell)
        finally:
            self._take_back(name, text)
        for part in later:
            self.try_together(name, text, part, tests_of, tell)

    def _try_numbers(self, name, mutations, numbers, tests_of, tell):
        """Tries what compiles; gives the groups in which the rest may compile."""
        if not self._build_libraries(self._units_of(name)):
            wrong = wrong_variants(self.errors)
            if not wrong:
                half = len(mutations) // 2
                return [_grouped(mutations[:half]), _grouped(mutations[half:])]
            for number in wrong:
                tell(numbers[number], ("not compiled", ""))
            left = {numbers[number] for number in numbers if number not in wrong}
            return [_grouped([pair for pair in mutations if pair[1] in left])]
        later = []
        for self.chosen, mutation in numbers.items():
            end = self._try(mutation, tests_of(mutation))
            if end[0] == "not compiled":  # A test program, which may compile with this change alone.
                later.append(_grouped([pair for pair in mutations if pair[1] == mutation]))
            else:
                tell(mutation, end)
        self.chosen = 0
        return later

    def try_alone(self, mutation, text, tests):
        """("not compiled" | "survived" | "caught", by whom)"""
        self._put(mutation.file, text[:mutation.start] + mutation.put + text[mutation.end:])
        try:
            if not self._build_libraries(self._units_of(mutation.file)):
                return "not compiled", ""
            return self._try(mutation, tests)
        finally:
            self._take_back(mutation.file, text)

    def _put(self, name, text):
        (self.source / name).write_text(text)

    def _take_back(self, name, text):
        self._put(name, text)
        self.chosen = 0
        for output in (CORE, STORE):
            if self._touched(name, output):
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
        if mutation.file.endswith(".h"):
            # Most are noticed by tests as they are, which spares building them.
            for test in [test for test in tests if test.folder == mutation.file.split("/")[1]]:
                reason = self._failure(test)
                if reason:
                    return "caught", reason
        for test in tests:
            if mutation.file.endswith(".h") and not self._build_program(test, mutation.file):
                return "not compiled", ""
            reason = self._failure(test)
            if reason:
                return "caught", reason
        return "survived", ""

    def _failure(self, test):
        """By what the test noticed the change; empty when it did not."""
        reason = self.run_test(test, test.seconds * TIME_FACTOR + TIME_SLACK)
        if not reason:
            return ""
        return f"{test.name}::{reason.split('::')[1].rstrip('()')}" if "::" in reason else f"{test.name} ({reason})"
