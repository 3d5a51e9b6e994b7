#!/usr/bin/env python3
"""The phone in a window, and beside it the console or a WebDriver client. SDL draws in memory here, so no display is needed.

    window_test.py CORVEL_PHONE
"""

import base64
import json
import os
import pathlib
import pty
import re
import select
import signal
import subprocess
import sys
import tempfile
import termios
import time
import unittest
import urllib.request

PHONE = None
SECONDS = 60


def read_until(terminal, end):
    """What the terminal shows until this is there."""
    shown = b""
    deadline = time.monotonic() + SECONDS
    while end not in shown and time.monotonic() < deadline:
        if select.select([terminal], [], [], 0.2)[0]:
            shown += os.read(terminal, 4096)
    return shown


class Window(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="corvel window ")))
        self.environment = {
            "PATH": os.environ.get("PATH", ""), "HOME": str(self.folder), "TERM": "xterm", "SDL_VIDEODRIVER": "dummy",
        }

    def phone(self, *options, **streams):
        process = subprocess.Popen([PHONE, "--root", str(self.folder / "root"), *options], stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True, env=self.environment, **streams)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.stdout.close)
        self.addCleanup(lambda: process.poll() is None and (process.kill(), process.wait()))
        return process

    def ended(self, process):
        """A window that is closed ends the phone in order; without one the signal itself would."""
        process.send_signal(signal.SIGTERM)
        return process.wait(SECONDS)

    def test_the_prompt_answers_beside_it(self):
        process = self.phone("--console", stdin=subprocess.PIPE)
        answers = []
        for line in ("send strip setAlpha: 0.5", "send strip alpha", "send UIApplication sharedApplication"):
            process.stdin.write(line + "\n")
            process.stdin.flush()
            answers.append(process.stdout.readline())
        self.assertEqual(answers[:2], ["null\n", "0.5\n"])
        self.assertEqual(self.ended(process), 0)
        process.stdin.close()

    def test_the_end_of_the_input_closes_it(self):
        process = self.phone("--console", stdin=subprocess.PIPE)
        output, errors = process.communicate("value strip isViewNonLS\nveiws\n", timeout=SECONDS)
        self.assertEqual((output, errors), ("false\n", "unknown command: `veiws`; near: views\n"))
        self.assertEqual(process.returncode, 1)

    def test_the_terminal_is_given_back_when_it_is_closed(self):
        try:
            ours, theirs = pty.openpty()
        except OSError as error:   # a machine without /dev/pts
            self.skipTest(f"no terminal can be made here: {error}")
        before = termios.tcgetattr(theirs)
        process = subprocess.Popen([PHONE, "--root", str(self.folder / "root"), "--console"], stdin=theirs, stdout=theirs,
                                   stderr=theirs, env=self.environment, process_group=0)
        self.addCleanup(lambda: process.poll() is None and (process.kill(), process.wait()))
        try:
            shown = read_until(ours, b"corvel> ")
            # The prompt is shown before the line is edited; a key in between would be the terminal's own.
            deadline = time.monotonic() + SECONDS
            while termios.tcgetattr(ours)[3] & termios.ICANON and time.monotonic() < deadline:
                time.sleep(0.01)
            os.write(ours, b"send strip alpha\r")
            shown += read_until(ours, b"\n1.0")
            self.assertEqual(self.ended(process), 0, shown)
            # Flags of input and of the terminal itself: echo, lines.
            self.assertEqual(termios.tcgetattr(theirs)[:4], before[:4])
        finally:
            os.close(ours)
            os.close(theirs)

    def test_clients_drive_it(self):
        process = self.phone("--webdriver", "0", stdin=subprocess.DEVNULL)
        url = "http://" + re.fullmatch(r"listening on (127\.0\.0\.1:\d+)\n", process.stdout.readline()).group(1)

        def ask(path, body=None):
            request = urllib.request.Request(url + path, None if body is None else json.dumps(body).encode(),
                                             {"Content-Type": "application/json"})
            with urllib.request.urlopen(request, timeout=SECONDS) as answer:
                return json.load(answer)["value"]

        session = "/session/" + ask("/session", {"capabilities": {"alwaysMatch": {"platformName": "iOS"}}})["sessionId"]

        def script(name, **arguments):
            return ask(session + "/execute/sync", {"script": name, "args": [arguments]})

        self.assertIs(script("mobile: isLocked"), True)
        self.assertEqual(base64.b64decode(ask(session + "/screenshot"))[1:4], b"PNG")
        # Another phone in a window of its own, for the same session; then the same after a restart.
        script("phone: boot", ios="15.4", locked=False)
        self.assertIs(script("mobile: isLocked"), False)
        script("phone: respring")
        self.assertIs(script("mobile: isLocked"), True)
        chain = {"using": "-ios class chain", "value": "**/XCUIElementTypeCell[1]/**/XCUIElementTypeButton"}
        button = ask(session + "/element", chain)["ELEMENT"]
        script("mobile: touchAndHold", elementId=button, duration=0.6)
        self.assertGreater(len(script("mobile: alert", action="getButtons")), 1)
        self.assertEqual(self.ended(process), 0)


if __name__ == "__main__":
    PHONE = sys.argv[1]
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
