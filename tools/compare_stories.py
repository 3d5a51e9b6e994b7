#!/usr/bin/env python3
"""Compares what the same stories came to in several places, and shows every difference.

    compare_stories.py FOLDER FOLDER...

Each folder holds a file a story (tests/support/story_record.cpp): trace and view trees. All folders have to hold the same
stories with the same content as the first. Exits with 0 if they do, with 1 if not, with 2 where there is nothing to compare.
"""

import difflib
import os
import sys

MAXIMUM_LINES = 40   # of a story's difference; the first ones tell


def stories(folder):
    """Story's name -> path."""
    try:
        return {name: os.path.join(folder, name) for name in os.listdir(folder)}
    except OSError as error:
        print(f"compare_stories.py: {error}", file=sys.stderr)
        sys.exit(2)


def read(path):
    with open(path, "rb") as file:
        return file.read()


def difference(first, second):
    """Lines that tell in what the two files differ."""
    lines = difflib.unified_diff(
        *(read(path).decode("utf-8", "replace").splitlines() for path in (first, second)), first, second, lineterm="", n=2)
    shown = []
    for line in lines:
        if len(shown) == MAXIMUM_LINES:
            return [*shown, "…"]
        shown.append(line if len(line) < 400 else line[:400] + "…")
    return shown


def compare(folders):
    """Prints what differs; answers how many stories there are, and how many differences."""
    first, *others = [(folder, stories(folder)) for folder in folders]
    differences = 0
    for folder, found in others:
        for name in sorted(first[1].keys() ^ found.keys()):
            differences += 1
            print(f"{name}: only in {first[0] if name in first[1] else folder}")
        for name in sorted(first[1].keys() & found.keys()):
            if read(first[1][name]) != read(found[name]):
                differences += 1
                print(f"{name}: {folder} differs from {first[0]}")
                print("\n".join("    " + line for line in difference(first[1][name], found[name])))
    return len(first[1]), differences


def main():
    if len(sys.argv) < 3:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    count, differences = compare(sys.argv[1:])
    if count == 0:
        print(f"compare_stories.py: no stories in {sys.argv[1]}", file=sys.stderr)
        return 2
    places = ", ".join(os.path.basename(folder.rstrip("/")) for folder in sys.argv[1:])
    print(f"{count} stories in {len(sys.argv) - 1} places ({places}): {differences or 'no'} differences")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
