#!/usr/bin/env python3
"""What tools/compare_stories.py finds in folders of records."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

TOOL = pathlib.Path(__file__).resolve().parents[2] / "tools" / "compare_stories.py"


class Records(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def put(self, place, **stories):
        (self.folder / place).mkdir(exist_ok=True)
        for name, text in stories.items():
            (self.folder / place / name).write_text(text)

    def compared(self, *places):
        return subprocess.run(
            [sys.executable, TOOL, *(self.folder / place for place in places)], capture_output=True, text=True)

    def test_the_same_everywhere(self):
        for place in ("desktop", "arm64", "arm64e"):
            self.put(place, Tap="a\nb\n", Menu="c\n")
        result = self.compared("desktop", "arm64", "arm64e")
        self.assertEqual(result.returncode, 0, result.stdout)
        self.assertEqual(result.stdout, "2 stories in 3 places (desktop, arm64, arm64e): no differences\n")

    def test_a_difference_is_shown(self):
        self.put("desktop", Tap="first\nopens mail\nlast\n", Menu="c\n")
        self.put("arm64", Tap="first\nopens maps\nlast\n", Menu="c\n")
        result = self.compared("desktop", "arm64")
        self.assertEqual(result.returncode, 1)
        self.assertIn("    -opens mail\n    +opens maps\n", result.stdout)
        self.assertTrue(result.stdout.endswith("2 stories in 2 places (desktop, arm64): 1 differences\n"), result.stdout)

    def test_a_story_that_is_missing_somewhere_is_named(self):
        self.put("desktop", Tap="a\n", Menu="c\n")
        self.put("arm64", Tap="a\n", Lock="c\n")
        result = self.compared("desktop", "arm64")
        self.assertEqual(result.returncode, 1)
        self.assertIn(f"Menu: only in {self.folder}/desktop\n", result.stdout)
        self.assertIn(f"Lock: only in {self.folder}/arm64\n", result.stdout)

    def test_nothing_to_compare_is_no_success(self):
        self.put("desktop")
        self.put("arm64")
        self.assertEqual(self.compared("desktop", "arm64").returncode, 2)
        result = self.compared("desktop", "nowhere")
        self.assertEqual(result.returncode, 2)
        self.assertIn("nowhere", result.stderr)
        self.assertEqual(self.compared("desktop").returncode, 2)

    def test_a_long_difference_is_cut(self):
        self.put("desktop", Tap="".join(f"{n}\n" for n in range(1000)))
        self.put("arm64", Tap="".join(f"{-n}\n" for n in range(1000)))
        self.assertLess(len(self.compared("desktop", "arm64").stdout.splitlines()), 60)


if __name__ == "__main__":
    unittest.main()
