#!/usr/bin/env python3
"""What tools/check_repository.py finds, rule by rule, and that a tidy tree has no findings."""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "tools" / "check_repository.py"
HEADER = "// What it is.\n#pragma once\n"


class Rules(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="check repository ")))

    def findings(self, files):
        """The findings for a tree of path -> text or bytes."""
        for path, content in files.items():
            file = self.root / path
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_bytes(content if isinstance(content, bytes) else content.encode())
        result = subprocess.run(
            [sys.executable, CHECK, self.root], capture_output=True, text=True, timeout=60, check=False,
        )
        self.assertEqual(result.stderr, "")
        lines = result.stdout.splitlines()
        self.assertEqual(result.returncode, 1 if lines else 0)
        return lines

    def finds(self, path, content, line, words):
        findings = self.findings({path: content})
        self.assertEqual(len(findings), 1, findings)
        self.assertTrue(findings[0].startswith(f"{path}:{line}: "), findings)
        self.assertIn(words, findings[0])

    def test_a_tidy_tree_has_no_findings(self):
        self.assertEqual(self.findings({
            "objc/send.hpp": HEADER,
            "platform/uikit.hpp": HEADER + '#include "objc/send.hpp"\n',
            "plugin/strip/view.hpp": HEADER + '#include <vector>\n#include "platform/uikit.hpp"\n',
            "plugin/strip/view.cpp": '#include "view.hpp"\n#include "plugin/host/settings.hpp"\n',
            "phone/screen/draw.cpp": '#include "platform/uikit.hpp"\n#include "phone/uikit/view.hpp"\n#if 1\n#endif\n',
            "tests/plugin/view_test.cpp": '#include "plugin/strip/view.hpp"\n#include "phone/kernel/clock.hpp"\n',
            "tests/data/cards.vcf": "BEGIN:VCARD\r\n",
            "docs/picture.png": b"\x89PNG\r\n\0\0",
            "README.md": "",
        }), [])

    def test_the_plugin_may_not_include_the_phone(self):
        self.finds("plugin/a.cpp", '\n#include "phone/kernel/clock.hpp"\n', 2, "plugin/ may not include phone/")

    def test_the_phone_may_not_include_the_plugin(self):
        self.finds("phone/a.cpp", '#  include <plugin/strip/view.hpp>\n', 1, "phone/ may not include plugin/")

    def test_the_bridge_stands_on_nothing(self):
        self.finds("objc/a.cpp", '#include "platform/uikit.hpp"\n', 1, "objc/ may not include platform/")

    def test_no_include_climbs(self):
        self.finds("plugin/strip/a.cpp", '#include "../../phone/clock.hpp"\n', 1, "includes start at the root")

    def test_the_plugin_has_no_conditionals(self):
        for line in ("#if 1", "#ifdef X", "#ifndef X", " # if defined(X)"):
            self.finds("plugin/a.cpp", f"{line}\n#endif\n", 1, "conditional")

    def test_a_header_needs_its_guard_and_first_line(self):
        self.finds("plugin/a.hpp", "// What it is.\n", 1, "#pragma once")
        self.finds("plugin/a.hpp", "#pragma once\n", 1, "first line")

    def test_a_long_file_has_a_second_subject(self):
        self.finds("objc/a.cpp", "int a;\n" * 601, 601, "second subject")

    def test_leftovers_are_found(self):
        for word in ("TO" + "DO", "FIX" + "ME", "XX" + "X"):
            self.finds("docs/a.md", f"first\n{word}: later\n", 2, "unfinished")
        for line in ("<" * 7 + " ours", "=" * 7, ">" * 7 + " theirs"):
            self.finds("docs/a.md", f"{line}\n", 1, "conflict")
        self.finds("docs/a.md", "see /ho" + "me/anna/corvel\n", 1, "machine")
        self.assertEqual(self.findings({"docs/a.md": "see /home/someone/corvel\n"}), [])

    def test_text_is_tidy(self):
        self.finds("docs/a.md", "a \n", 1, "white space")
        self.finds("docs/a.md", "a\r\n", 1, "CR LF")
        self.finds("docs/a.md", "a\nb", 2, "line feed")
        self.finds("docs/a.md", b"a\nb\xff\n", 2, "UTF-8")

    def test_a_script_is_executable(self):
        self.finds("tools/a.py", "#!/usr/bin/env python3\n", 1, "executable")

    @unittest.skipUnless(shutil.which("git"), "no Git here")
    def test_what_git_ignores_is_left_alone(self):
        subprocess.run(["git", "init", "-q", self.root], check=True)
        findings = self.findings({".gitignore": "/build/\n", "build/a.md": "a \n", "a.md": "a \n"})
        self.assertEqual([line.split(":")[0] for line in findings], ["a.md"])

    def test_builds_are_left_alone_without_git(self):
        self.assertEqual(self.findings({"build/a.md": "a \n", "out/a.md": "a \n"}), [])

    def test_a_folder_that_is_not_there_is_told(self):
        result = subprocess.run([sys.executable, CHECK, self.root / "none"], capture_output=True, text=True, check=False)
        self.assertEqual(result.returncode, 2)
        self.assertIn("no such folder", result.stderr)


if __name__ == "__main__":
    unittest.main()
