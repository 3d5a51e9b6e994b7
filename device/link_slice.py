#!/usr/bin/env python3
"""Links one slice of the library, and makes of it what the linker does not.

    link_slice.py --architecture arm64|arm64e --whole FOLDER --output FILE -- LINKER [OPTION]...

The sources are compiled as a whole by the linker, which leaves the resulting object in FOLDER. Pointers in its static data that would
have to be signed are named here: the linker cannot sign them, and says so in words that lead nowhere.

The linker writes "any arm64" as the CPU subtype. An arm64e process loads only what says arm64e, with the bit for a versioned
ABI; so the subtype is written afterwards, and the hash of the signed page that holds it is renewed.
"""

import argparse
import os
import shutil
import subprocess
import sys

import check_package
import mach_o


def name_architecture(data, architecture):
    """Gives a linked slice (a bytearray) the subtype of its architecture."""
    subtype = next(subtype for subtype, name in mach_o.ARCHITECTURES.items() if name == architecture)
    image = mach_o.Image(bytes(data))
    if image.cpu != mach_o.CPU_ARM64:
        raise mach_o.Malformed("not for arm64")
    if image.subtype != subtype:
        data[8:12] = subtype.to_bytes(4, "little")
        mach_o.renew_page_hashes(data)


def link(architecture, whole, output, command):
    """Returns the errors."""
    shutil.rmtree(whole, ignore_errors=True)
    os.makedirs(whole)
    if os.path.exists(output):
        os.remove(output)
    linker = subprocess.run([*command, "-object_path_lto", whole, "-o", output], capture_output=True, text=True)
    findings = []
    for name in sorted(os.listdir(whole)):
        with open(os.path.join(whole, name), "rb") as file:
            findings += check_package.check_objects(name, file.read())
    if findings:
        return findings
    if linker.returncode != 0 or linker.stderr:
        return linker.stderr.splitlines() or [f"the linker ended with {linker.returncode}"]
    with open(output, "rb") as file:
        data = bytearray(file.read())
    name_architecture(data, architecture)
    # A file of its own: systems remember signatures by file, and a half-written one must not stay.
    os.remove(output)
    with open(output, "wb") as file:
        file.write(data)
    return []


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--architecture", required=True, choices=mach_o.ARCHITECTURES.values())
    parser.add_argument("--whole", required=True)
    parser.add_argument("--output", required=True)
    parser.add_argument("command", nargs="+")
    given = parser.parse_args()
    try:
        errors = link(given.architecture, given.whole, given.output, given.command)
    except (OSError, mach_o.Malformed) as error:
        errors = [f"{given.output}: {error}"]
    for error in errors:
        print(error if "error:" in error else f"error: {error}", file=sys.stderr)
    if errors and os.path.exists(given.output):
        os.remove(given.output)
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
