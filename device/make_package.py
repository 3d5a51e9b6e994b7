#!/usr/bin/env python3
"""Packs the library and its filter into a Debian package for rootless systems. The same input gives the same bytes.

    make_package.py --dpkg-deb TOOL --control FILE --library FILE --filter FILE PACKAGE

All files carry the time SOURCE_DATE_EPOCH (seconds since 1970) where it is set, else that of the last commit, else 0.
Everything belongs to root; xz for all members, since the dpkg of many phones knows no other new compression.
"""

import argparse
import os
import subprocess
import sys
import tempfile

FOLDER = "var/jb/Library/MobileSubstrate/DynamicLibraries"


def time_stamp():
    given = os.environ.get("SOURCE_DATE_EPOCH", "")
    if given:
        if not given.isdigit():
            raise ValueError(f'SOURCE_DATE_EPOCH is "{given}", which is no number of seconds')
        return int(given)
    here = os.path.dirname(os.path.abspath(__file__))
    try:
        log = subprocess.run(["git", "-C", here, "log", "-1", "--format=%ct"], check=True, capture_output=True, text=True)
        return int(log.stdout)
    except (OSError, ValueError, subprocess.CalledProcessError):
        return 0   # no Git: a copy of the sources


def write(path, data, mode):
    with open(path, "wb") as file:
        file.write(data)
    os.chmod(path, mode)


def read(path):
    with open(path, "rb") as file:
        return file.read()


def make(dpkg_deb, control, library, filter_list, package, stamp):
    with tempfile.TemporaryDirectory() as stage:
        os.makedirs(os.path.join(stage, FOLDER))
        os.makedirs(os.path.join(stage, "DEBIAN"))
        parts = {f"{FOLDER}/Corvel.dylib": (read(library), 0o755), f"{FOLDER}/Corvel.plist": (read(filter_list), 0o644)}
        for name, (data, mode) in parts.items():
            write(os.path.join(stage, name), data, mode)
        # In KiB as dpkg wants it: whole ones for each file, one for each folder.
        size = sum(-(-len(data) // 1024) for data, _ in parts.values()) + FOLDER.count("/") + 1
        text = read(control).decode()
        if "\nDescription:" not in text:
            raise ValueError(f"{control} has no description")
        text = text.replace("\nDescription:", f"\nInstalled-Size: {size}\nDescription:")
        write(os.path.join(stage, "DEBIAN/control"), text.encode(), 0o644)
        for folder, _, names in os.walk(stage, topdown=False):
            for name in names:
                os.utime(os.path.join(folder, name), (stamp, stamp))
            os.chmod(folder, 0o755)
            os.utime(folder, (stamp, stamp))
        os.makedirs(os.path.dirname(os.path.abspath(package)), exist_ok=True)
        subprocess.run(
            [dpkg_deb, "--root-owner-group", "--uniform-compression", "-Zxz", "-z9", "--threads-max=1", "-b", stage, package],
            check=True, stdout=subprocess.DEVNULL, env={**os.environ, "SOURCE_DATE_EPOCH": str(stamp)},
        )


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    for option in ("--dpkg-deb", "--control", "--library", "--filter"):
        parser.add_argument(option, required=True)
    parser.add_argument("package")
    given = parser.parse_args()
    try:
        make(given.dpkg_deb, given.control, given.library, given.filter, given.package, time_stamp())
    except (OSError, ValueError, subprocess.CalledProcessError) as error:
        print(f"make_package.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
