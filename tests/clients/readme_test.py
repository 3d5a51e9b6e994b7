#!/usr/bin/env python3
"""README.md's lines for a newcomer do as printed what they say: those in Python, or with FOLDER those in JavaScript.

    readme_test.py CORVEL_PHONE [FOLDER]

FOLDER is where `npm install` has put the clients.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from phone_process import Phone

README = pathlib.Path(__file__).resolve().parents[2] / "README.md"
PORT = "4723"   # as printed


class Readme(unittest.TestCase):
    phone_program = folder = None

    def printed(self, language, ending, command, folder):
        """What the block of that language prints, run against a phone on a port of its own."""
        blocks = re.findall(rf"^```{language}\n(.*?)^```", README.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)
        self.assertEqual(len(blocks), 1)
        with Phone(self.phone_program) as phone:
            self.assertEqual(blocks[0].count(PORT), 1)
            path = pathlib.Path(folder) / f"readme{ending}"
            path.write_text(blocks[0].replace(PORT, phone.url.rsplit(":", 1)[1]), encoding="utf-8")
            self.addCleanup(path.unlink, missing_ok=True)
            result = subprocess.run([command, path], capture_output=True, text=True, timeout=120, check=False)
            self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
            return result.stdout

    def test_python(self):
        with tempfile.TemporaryDirectory() as folder:
            self.assertEqual(self.printed("python", ".py", sys.executable, folder), "['MFMessageComposeViewControllerCVL']\n")

    def test_javascript(self):
        printed = self.printed("js", ".mjs", "node", self.folder)
        self.assertTrue(printed.endswith("[ 'MFMessageComposeViewControllerCVL' ]\n"), printed)


if __name__ == "__main__":
    Readme.phone_program, Readme.folder = (sys.argv[1:] + [None])[:2]
    unittest.main(argv=[sys.argv[0], "Readme.test_javascript" if Readme.folder else "Readme.test_python"])
