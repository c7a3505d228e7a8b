"""The command that an installed workbench is started by: it joins a user's own plug-ins with those of the system.

    testCommand.py COMMAND      the command as it is installed, which names the folder of the installed programs
"""
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

COMMAND = Path(sys.argv.pop(1)).read_text()
# Says where it was started from, with what, and what lies beside it.
PROGRAM = """#!/bin/sh
folder=$(dirname "$(readlink -f "$0")")
echo "program {version} $folder $*"
cd "$folder" && for file in baseArithm/* extArithm/* DataSource/*; do [ ! -f "$file" ] || echo "$file $(cat "$file")"; done
"""


class Command(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.installed, self.home = self.root / "lib with space", self.root / "home"
        self.own, self.joined = self.home / ".local/lib/lumivant", self.home / ".cache/lumivant/program"
        self.write(self.installed / "baseArithm/blur.so", "system")
        self.write(self.installed / "DataSource/camera.so", "system")
        self.install("one")
        self.home.mkdir()
        for name in ("lumivant", "lumivant-kiosk"):
            text = re.sub('^installed=.*', f'installed="{self.installed}"', COMMAND, flags=re.M)
            self.write(self.root / "bin" / name, text, 0o755)

    def write(self, path, text, mode=0o644):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        path.chmod(mode)

    def install(self, version):
        for name in ("lumivant", "lumivant-kiosk"):
            self.write(self.installed / name, PROGRAM.format(version=f"{name} {version}"), 0o755)

    def start(self, *arguments, name="lumivant", **environment):
        surroundings = {"PATH": os.environ["PATH"], "HOME": str(self.home), **environment}
        result = subprocess.run([self.root / "bin" / name, *arguments], env=surroundings, capture_output=True, text=True,
                                check=True)
        self.said = result.stderr
        return result.stdout.splitlines()

    def test_without_own_plugins_the_installed_program_starts_and_nothing_is_made(self):
        self.assertEqual(self.start("a b.lmv"), [f"program lumivant one {self.installed} a b.lmv",
                                                 "baseArithm/blur.so system", "DataSource/camera.so system"])
        self.assertEqual(list(self.home.iterdir()), [])

    def test_without_a_home_the_installed_program_starts(self):
        self.assertEqual(self.start(HOME="")[0], f"program lumivant one {self.installed} ")

    def test_own_plugins_stand_beside_those_of_the_system(self):
        self.write(self.own / "extArithm/mine.so", "own")
        self.assertEqual(self.start("x.lmv"), [f"program lumivant one {self.joined} x.lmv", "baseArithm/blur.so system",
                                               "extArithm/mine.so own", "DataSource/camera.so system"])

    def test_own_plugin_stands_for_that_of_the_system_until_it_goes(self):
        self.write(self.own / "baseArithm/blur.so", "own")
        self.assertIn("baseArithm/blur.so own", self.start())
        (self.own / "baseArithm/blur.so").unlink()
        self.assertIn("baseArithm/blur.so system", self.start())

    def test_removed_plugins_of_either_kind_go(self):
        self.write(self.own / "DataSource/mine.so", "own")
        self.start()
        (self.own / "DataSource/mine.so").unlink()
        (self.installed / "baseArithm/blur.so").unlink()
        self.assertEqual(self.start()[1:], ["DataSource/camera.so system"])

    def test_upgraded_program_and_plugins_are_those_that_run(self):
        self.write(self.own / "DataSource/mine.so", "own")
        self.start()
        self.install("two")
        self.write(self.installed / "baseArithm/new.so", "system")
        lines = self.start()
        self.assertEqual(lines[0], f"program lumivant two {self.joined} ")
        self.assertIn("baseArithm/new.so system", lines)

    def test_links_of_another_installation_go(self):
        self.write(self.own / "DataSource/mine.so", "own")
        self.start()
        (self.joined / "baseArithm/other.so").symlink_to("/bin/sh")
        self.assertNotIn("other.so", " ".join(self.start()))

    def test_each_name_starts_its_program(self):
        self.write(self.own / "DataSource/mine.so", "own")
        self.assertEqual(self.start(name="lumivant-kiosk")[0], f"program lumivant-kiosk one {self.joined} ")
        self.assertEqual(self.start()[0], f"program lumivant one {self.joined} ")

    def test_cache_may_lie_elsewhere(self):
        self.write(self.own / "DataSource/mine.so", "own")
        cache = self.root / "my cache"
        self.assertEqual(self.start(XDG_CACHE_HOME=str(cache))[0], f"program lumivant one {cache}/lumivant/program ")

    def test_where_nothing_can_be_written_the_installed_program_starts_and_says_so(self):
        self.write(self.own / "DataSource/mine.so", "own")
        self.write(self.home / ".cache", "a file in the way")
        self.assertEqual(self.start()[0], f"program lumivant one {self.installed} ")
        self.assertIn("are left out", self.said)


if __name__ == "__main__":
    unittest.main()
