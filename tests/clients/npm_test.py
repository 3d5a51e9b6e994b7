#!/usr/bin/env python3
"""The clients that npm has, unmodified: the story told by each gives the trace that it gives in C++.

    npm_test.py CORVEL_PHONE CLIENT_STORY FOLDER

FOLDER is where `npm install` has put them, beside the stories themselves.
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

from phone_process import Phone, difference, trace_of_cpp


class NpmClients(unittest.TestCase):
    phone_program = story_program = folder = None

    def tells_the_same(self, client):
        with Phone(self.phone_program) as phone, tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder) / "trace.json"
            result = subprocess.run(
                ["node", f"{client}.mjs", phone.url, file], cwd=self.folder, capture_output=True, text=True,
                timeout=300, check=False)
            self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
            actual = json.loads(file.read_text(encoding="utf-8"))
            expected = trace_of_cpp(self.story_program, folder)
            if lines := difference(expected, actual, ("told in C++", f"told by {client}")):
                self.fail(lines)

    def test_webdriverio(self):
        self.tells_the_same("webdriverio")

    def test_selenium_webdriver(self):
        self.tells_the_same("selenium")


if __name__ == "__main__":
    NpmClients.phone_program, NpmClients.story_program, NpmClients.folder = sys.argv[1:4]
    unittest.main(argv=sys.argv[:1])
