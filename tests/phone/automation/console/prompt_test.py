#!/usr/bin/env python3
"""The console of corvel-phone, by pipes and on a terminal.

    prompt_test.py CORVEL_PHONE
"""

import json
import os
import pathlib
import pty
import select
import signal
import subprocess
import sys
import tempfile
import termios
import time
import unittest

PHONE = None


class Prompt(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="corvel console ")))
        self.environment = {"PATH": os.environ.get("PATH", ""), "HOME": str(self.folder), "TERM": "xterm"}
        self.command = [PHONE, "--console", "--headless", "--root", str(self.folder / "root")]

    def piped(self, text):
        return subprocess.run(
            self.command, input=text, capture_output=True, text=True, timeout=120, check=False, env=self.environment)

    def test_commands_are_answered_in_order(self):
        result = self.piped("send strip setAlpha: 0.5\nsend strip alpha\n\nvalue strip isViewNonLS\n")
        self.assertEqual(result.stderr, "")
        self.assertEqual(result.stdout, "null\n0.5\nfalse\n")
        self.assertEqual(result.returncode, 0)

    def test_the_clock_moves_when_it_is_told_to(self):
        result = self.piped("trace\nadvance 60\nviews\nclass CVLView\n")
        self.assertEqual(result.returncode, 0, result.stderr)
        lines = result.stdout.splitlines()
        self.assertEqual(json.loads(lines[0])["n"], 0)
        # A minute later on the lock screen's clock.
        for words in ('"9:42"', "CVLView (", '"superclass": "UIView"'):
            self.assertTrue(words in result.stdout, words)

    def test_mistakes_name_what_was_meant_and_end_with_a_failure(self):
        result = self.piped("send strip setAlfa: 1\nveiws\nclass CVLVeiw\nsend strip alpha\n")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "1.0\n")
        errors = result.stderr.splitlines()
        self.assertEqual(errors[0], "invalid argument: CVLView does not answer to `setAlfa:`; near: setAlpha:")
        self.assertEqual(errors[1], "unknown command: `veiws`; near: views")
        self.assertEqual(errors[2], "invalid argument: there is no class CVLVeiw; near: CVLView")

    def test_quit_ends_before_the_input_does(self):
        result = self.piped("send strip alpha\nquit\nsend strip alpha\n")
        self.assertEqual((result.stdout, result.returncode), ("1.0\n", 0))

    def test_a_terminal_has_completion_and_history(self):
        self.on_terminal(b"send strip setBlurrEffectC\t null\r", b"null")
        history = self.folder / ".local/state/corvel/console_history"
        self.assertIn("setBlurrEffectColorNonLS:", history.read_text(encoding="utf-8"))
        self.assertEqual(history.stat().st_mode & 0o777, 0o600)
        self.assertIn("setBlurrEffectColorNonLS:", self.on_terminal(b"\x1b[A\r", b"null"))   # the line before

    def test_a_signal_ends_the_phone_alone_and_gives_the_terminal_back(self):
        try:
            ours, theirs = pty.openpty()
        except OSError as error:
            self.skipTest(f"no terminal can be made here: {error}")
        before = termios.tcgetattr(theirs)
        # Another process of the same job: whatever the phone's end does to it, it must not end with it.
        neighbour = subprocess.Popen(["sleep", "600"], process_group=0)
        phone = subprocess.Popen(self.command, stdin=theirs, stdout=theirs, stderr=theirs, env=self.environment,
                                 process_group=neighbour.pid)
        try:
            deadline = time.monotonic() + 60
            while termios.tcgetattr(theirs)[3] & termios.ICANON and time.monotonic() < deadline:
                time.sleep(0.01)
            self.assertNotEqual(termios.tcgetattr(theirs)[:4], before[:4])
            phone.terminate()
            self.assertEqual(phone.wait(60), -signal.SIGTERM)
            self.assertEqual(termios.tcgetattr(theirs)[:4], before[:4])
            self.assertIsNone(neighbour.poll())
        finally:
            for process in (phone, neighbour):
                process.kill()
                process.wait()
            os.close(ours)
            os.close(theirs)

    def on_terminal(self, typed, awaited):
        """What the terminal shows until the answer is there; the phone has then ended by Control-D."""
        try:
            process, terminal = pty.fork()
        except OSError as error:   # a machine without /dev/pts
            self.skipTest(f"no terminal can be made here: {error}")
        if process == 0:
            os.execve(self.command[0], self.command, self.environment)
        shown = b""
        place = 0   # behind what was awaited last

        def read_until(end):
            """Whether the phone has let go of the terminal, instead of showing this."""
            nonlocal shown, place
            deadline = time.monotonic() + 60
            while time.monotonic() < deadline:
                if (found := shown.find(end, place)) >= 0:
                    place = found + len(end)
                    return False
                if select.select([terminal], [], [], 0.2)[0]:
                    try:
                        shown += os.read(terminal, 4096)
                    except OSError:
                        return True
            return False

        def answer_prompt(keys):
            """The prompt is shown before the line is edited; a key in between would be the terminal's own."""
            read_until(b"corvel> ")
            deadline = time.monotonic() + 60
            while termios.tcgetattr(terminal)[3] & termios.ICANON and time.monotonic() < deadline:
                time.sleep(0.01)
            os.write(terminal, keys)
        try:
            answer_prompt(typed)
            read_until(b"\n" + awaited)
            answer_prompt(b"\x04")
            read_until(b"never")
        finally:
            os.close(terminal)
            _, status = os.waitpid(process, 0)
        self.assertEqual(os.waitstatus_to_exitcode(status), 0, shown)
        return shown.decode()


if __name__ == "__main__":
    PHONE = sys.argv[1]
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
