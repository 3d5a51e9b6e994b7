#!/usr/bin/env python3
"""Checks the rules that no compiler knows: who may include whom, what may not be left behind in a file.

    check_repository.py [ROOT]

Prints one line a finding, `file:line: what is wrong`; exits with 0 if there is none, 1 if there are some,
2 if ROOT cannot be read. Looks at the files that Git knows or would take, or at every file below ROOT
where there is no Git.
"""

import os
import re
import subprocess
import sys

# Folder -> the folders that it may include from. Plug-in and phone meet at run time alone.
INCLUDES = {
    "objc": {"objc"},
    "platform": {"objc", "platform"},
    "plugin": {"objc", "platform", "plugin"},
    "phone": {"objc", "platform", "phone"},
}
SOURCE_FOLDERS = ("objc", "platform", "plugin", "phone", "device", "tests", "bench")
# Folders of test input: any bytes may be right there.
DATA_FOLDERS = ("tests/data/", "tests/golden/")
TEXT_ENDINGS = (
    ".cpp", ".hpp", ".h", ".c", ".s", ".md", ".txt", ".cmake", ".py", ".sh", ".json", ".yml", ".yaml", ".plist",
)
# Spelled in two parts, so that this file does not find itself.
LEFTOVERS = [
    (re.compile(r"\b(" + "TO" + "DO|FIX" + "ME|XX" + "X)" + r"\b"), "unfinished work is left behind"),
    (re.compile(r"^(<{7}|>{7}|\|{7}) |^={7}$"), "a merge conflict is left behind"),
    (re.compile(r"/(home|Users)/(?!someone/)[a-z]\w*/"), "a path of one person's machine"),
]
INCLUDE = re.compile(r'^\s*#\s*include\s*["<]([^">]+)[">]')
CONDITIONAL = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif|else)\b")
MAXIMUM_LINES = 600


def listed_files(root):
    """Paths relative to root, with forward slashes, sorted."""
    if os.path.exists(os.path.join(root, ".git")):
        try:
            listing = subprocess.run(
                ["git", "-C", root, "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--deduplicate"],
                check=True, capture_output=True,
            ).stdout
            return sorted(os.fsdecode(name) for name in listing.split(b"\0") if name)
        except (OSError, subprocess.CalledProcessError):
            pass   # no Git, or it distrusts the folder's owner: every file counts
    found = []
    for folder, folders, names in os.walk(root):
        inside = os.path.relpath(folder, root)
        folders[:] = [name for name in folders if name != ".git" and (inside != "." or name not in ("build", "out"))]
        found += [os.path.normpath(os.path.join(inside, name)) for name in names]
    return sorted(found)


def is_text(path):
    name = os.path.basename(path)
    return name.endswith(TEXT_ENDINGS) or "." not in name.lstrip(".") or name in (".gitignore", ".editorconfig")


def check_source(path, lines):
    """Rules for a C++ file."""
    top = path.split("/", 1)[0]
    for number, line in enumerate(lines, 1):
        if match := INCLUDE.match(line):
            name = match.group(1)
            parts = name.split("/")
            if ".." in parts:
                yield number, f"includes {name}: includes start at the root or in the file's own folder"
            elif top in INCLUDES and parts[0] in SOURCE_FOLDERS and len(parts) > 1 and parts[0] not in INCLUDES[top]:
                yield number, f"{top}/ may not include {name}"
        if top == "plugin" and CONDITIONAL.match(line):
            yield number, "plugin/ has no conditional compilation: its source is the same on every system"
    if path.endswith(".hpp"):
        if "#pragma once" not in (line.strip() for line in lines):
            yield 1, "a header has #pragma once"
        if top in INCLUDES and lines and not lines[0].startswith("//"):
            yield 1, "a header's first line is a comment that says which question it answers"
    if len(lines) > MAXIMUM_LINES:
        yield MAXIMUM_LINES + 1, f"{len(lines)} lines: a file of more than {MAXIMUM_LINES} has a second subject"


def check_text(path, data):
    """Rules for every text file: yields (line, finding)."""
    try:
        text = data.decode("utf-8")
    except UnicodeDecodeError as error:
        yield data[: error.start].count(b"\n") + 1, "not UTF-8"
        return
    lines = text.split("\n")
    for number, line in enumerate(lines, 1):
        if line.endswith("\r"):
            yield number, "a line ends in CR LF"
        elif line != line.rstrip():
            yield number, "white space at the end of the line"
        for pattern, finding in LEFTOVERS:
            if pattern.search(line):
                yield number, finding
    if text and not text.endswith("\n"):
        yield len(lines), "the last line has no line feed"
    if path.endswith((".cpp", ".hpp")) and path.startswith(tuple(f"{top}/" for top in SOURCE_FOLDERS)):
        yield from check_source(path, text.splitlines())


def check(root):
    """Every finding below root, as (path, line, text)."""
    for path in listed_files(root):
        full = os.path.join(root, path)
        if path.startswith(DATA_FOLDERS) or os.path.islink(full) or not os.path.isfile(full):
            continue
        with open(full, "rb") as file:
            data = file.read()
        if data.startswith(b"#!") and not os.access(full, os.X_OK):
            yield path, 1, "starts with #! but is not executable"
        if b"\0" not in data[:8192] and is_text(path):
            for number, finding in check_text(path, data):
                yield path, number, finding


def main(arguments):
    if len(arguments) > 1:
        print("usage: check_repository.py [ROOT]", file=sys.stderr)
        return 2
    root = arguments[0] if arguments else os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    if not os.path.isdir(root):
        print(f"check_repository.py: no such folder: {root}", file=sys.stderr)
        return 2
    found = 0
    try:
        for path, line, finding in check(root):
            print(f"{path}:{line}: {finding}")
            found += 1
    except OSError as error:
        print(f"check_repository.py: {error.filename}: {error.strerror}", file=sys.stderr)
        return 2
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
