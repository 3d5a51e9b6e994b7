"""The phone as a process with a WebDriver server, and the traces that stories leave."""

import difflib
import json
import pathlib
import re
import select
import subprocess
import tempfile
import time


class Phone:
    """Runs `corvel-phone --webdriver 0 --headless` for as long as a `with` lasts; `url` is where it listens."""

    def __init__(self, program, *options):
        self._command = [program, "--webdriver", "0", "--headless", *options]
        self._process = None
        self._folder = None
        self.url = None

    def __enter__(self):
        self._folder = tempfile.TemporaryDirectory(prefix="corvel clients ")
        self._process = subprocess.Popen(
            [*self._command, "--root", str(pathlib.Path(self._folder.name) / "root")],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True,
        )
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline:
            ready, _, _ = select.select([self._process.stdout], [], [], 1)
            line = self._process.stdout.readline() if ready else None
            if line == "":
                break
            if line and (match := re.fullmatch(r"listening on (127\.0\.0\.1:\d+)\n", line)):
                self.url = "http://" + match.group(1)
                return self
        self.__exit__(None, None, None)
        raise RuntimeError("the phone does not listen")

    def __exit__(self, *_):
        self._process.terminate()
        try:
            self._process.wait(20)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        self._process.stdout.close()
        self._folder.cleanup()


def trace_of_cpp(program, folder):
    """The trace of the story that the C++ program tells, as a list of events."""
    path = pathlib.Path(folder) / "trace of C++"
    subprocess.run([program], check=True, stdout=subprocess.DEVNULL, env={"CORVEL_STORY_TRACE": str(path)}, timeout=120)
    return [json.loads(line) for line in path.read_text(encoding="utf-8").splitlines()]


def plain(value):
    """Values without what differs from run to run and from language to language: what names an object in one run alone (its
    handle, the address in its description), and the point of a whole number."""
    if isinstance(value, dict):
        own = {"handle", "description"} if "handle" in value else set()
        return {key: plain(each) for key, each in value.items() if key not in own}
    if isinstance(value, float) and value.is_integer():
        return int(value)
    return [plain(each) for each in value] if isinstance(value, list) else value


def difference(expected, actual, names):
    """Both traces as lines, and where they differ; empty when they are the same."""
    lines = [[json.dumps(event, ensure_ascii=False) for event in plain(trace)] for trace in (expected, actual)]
    return "\n".join(difflib.unified_diff(*lines, *names, lineterm="", n=3))
