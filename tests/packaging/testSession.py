"""What the service of a board runs: which screen it chooses and what it starts on it.

    testSession.py SESSION      the script
"""
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SESSION = sys.argv.pop(1)
# Says what it was started with and on what.
PROGRAM = '#!/bin/sh\necho "$(basename "$0") in $PWD on ${QT_QPA_PLATFORM:-x} with $#: $*"\n'


class Session(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name).resolve()
        self.program("lumivant-kiosk")
        # The tools of the session and nothing else, so that an X server of this machine is not found.
        for tool in ("sh", "basename", "cat", "mktemp", "rm", "kill"):
            (self.root / tool).symlink_to(f"/usr/bin/{tool}")

    def program(self, name):
        path = self.root / name
        path.write_text(PROGRAM)
        path.chmod(0o755)

    def start(self, **settings):
        surroundings = {"PATH": str(self.root), "LUMIVANT_FOLDER": str(self.root), **settings}
        return subprocess.run(["/bin/sh", SESSION], env=surroundings, capture_output=True, text=True)

    def test_framebuffer_starts_the_program_in_its_folder(self):
        said = self.start(LUMIVANT_SCREEN="linuxfb", LUMIVANT_PROJECT="my line.lmv").stdout
        self.assertEqual(said, f"lumivant-kiosk in {self.root} on linuxfb with 1: my line.lmv\n")

    def test_without_a_project_the_program_gets_no_argument(self):
        said = self.start(LUMIVANT_SCREEN="eglfs", LUMIVANT_PROJECT="").stdout
        self.assertEqual(said, f"lumivant-kiosk in {self.root} on eglfs with 0: \n")

    def test_auto_is_the_framebuffer_where_there_is_no_xinit(self):
        said = self.start(LUMIVANT_SCREEN="auto", LUMIVANT_X_SERVER="/bin/sh :0").stdout
        self.assertIn("on linuxfb", said)

    def test_auto_is_the_framebuffer_where_there_is_no_x_server(self):
        self.program("xinit")
        said = self.start(LUMIVANT_X_SERVER=f"{self.root}/missing :0").stdout
        self.assertIn("on linuxfb", said)

    def test_auto_is_x_where_both_are(self):
        self.program("xinit")
        said = self.start(LUMIVANT_X_SERVER="/bin/sh :0 vt1", LUMIVANT_PROJECT="my line.lmv").stdout
        self.assertTrue(said.startswith(f"xinit in {self.root} on x "), said)
        self.assertTrue(said.endswith(" lumivant-kiosk my line.lmv -- /bin/sh :0 vt1\n"), said)

    def test_unknown_screen_is_an_error_that_names_the_choices(self):
        result = self.start(LUMIVANT_SCREEN="wayland")
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertIn("auto, x11, linuxfb or eglfs", result.stderr)

    def test_missing_folder_is_an_error(self):
        self.assertNotEqual(self.start(LUMIVANT_FOLDER="/missing", LUMIVANT_SCREEN="linuxfb").returncode, 0)


if __name__ == "__main__":
    unittest.main()
