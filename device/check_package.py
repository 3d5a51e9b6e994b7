#!/usr/bin/env python3
"""Refuses what a phone would refuse, or what nobody wants on theirs, at the time of the build.

    check_package.py objects FILE...
    check_package.py library FILE --stubs DIR [--forbid TEXT]...
    check_package.py package FILE --stubs DIR --version VERSION [--forbid TEXT]...

Prints one line a finding. Exits with 0 if there is none, 1 if there are some. TEXT is what may not be among the library's
strings: paths of the machine that builds. DIR holds the linker's stubs, which list every symbol and library allowed.
"""

import argparse
import os
import plistlib
import re
import sys

import debian_archive
import mach_o

MAXIMUM_LIBRARY_SIZE = 208 * 1024   # 13 pages of 16 KiB: 1 of header, then 4 of code, 1 of data and 1 of tables for each slice
INSTALL_NAME = "/Library/MobileSubstrate/DynamicLibraries/Corvel.dylib"
OLDEST_SYSTEM = {"arm64": "12.0", "arm64e": "14.0"}
# What dyld of the oldest system knows, and we have a use for. dyld of iOS 12 has no chained fixups and no initialisers by
# offset; on arm64e dyld reads nothing but chained fixups.
COMMON_COMMANDS = {
    "LC_SEGMENT_64", "LC_ID_DYLIB", "LC_SYMTAB", "LC_DYSYMTAB", "LC_UUID", "LC_BUILD_VERSION", "LC_SOURCE_VERSION",
    "LC_FUNCTION_STARTS", "LC_DATA_IN_CODE", "LC_LOAD_DYLIB", "LC_RPATH", "LC_CODE_SIGNATURE",
}
KNOWN_COMMANDS = {
    "arm64": COMMON_COMMANDS | {"LC_DYLD_INFO_ONLY"},
    "arm64e": COMMON_COMMANDS | {"LC_DYLD_CHAINED_FIXUPS", "LC_DYLD_EXPORTS_TRIE"},
}
INITIALISER_KIND = {"arm64": mach_o.SECTION_INIT_POINTERS, "arm64e": mach_o.SECTION_INIT_OFFSETS}
CHAINED_FORMATS = {"arm64": set(), "arm64e": {2}}   # 2: plain 64-bit pointers, which dyld takes for any arm64
SIGNED_AD_HOC = 0x2
PAGE = 0x4000   # of a phone's memory; segments and slices start at a multiple

FOLDER = "./var/jb/Library/MobileSubstrate/DynamicLibraries"
# Path -> (kind, mode); each parent folder is there as well.
CONTENT = {f"{FOLDER}/Corvel.dylib": ("file", 0o755), f"{FOLDER}/Corvel.plist": ("file", 0o644)}
FILTER = {"Filter": {"Bundles": ["com.apple.springboard"]}}
CONTROL = {
    "Package": "com.orvane.corvel", "Name": "Corvel", "Architecture": "iphoneos-arm64", "Section": "Tweaks",
    "Depends": "mobilesubstrate", "Suggests": "libactivator",
}


class Stubs:
    """The symbols and libraries that may be used, from files in the layout of device/stubs."""

    def __init__(self, folder):
        self.symbols = {}   # install name -> symbols
        for name in sorted(os.listdir(folder)):
            if not name.endswith(".tbd"):
                continue
            with open(os.path.join(folder, name), encoding="utf-8") as file:
                text = file.read()
            library = re.search(r"^install-name:\s*'([^']+)'$", text, re.MULTILINE)
            if not library:
                raise ValueError(f"{name} has no install-name")
            self.symbols[library.group(1)] = set(re.findall(r"^\s+- ([A-Za-z_]\w*)$", text, re.MULTILINE))


def check_objects(path, data):
    try:
        for section, symbol in mach_o.Image(data).authenticated_relocations():
            yield (f"{os.path.basename(path)}: authenticated relocation in {section} to {symbol}: "
                   "the linker cannot sign pointers in static data")
    except mach_o.Malformed as error:
        yield f"{os.path.basename(path)}: {error}"


def check_libraries(image, stubs):
    libraries = image.libraries()
    for library in libraries:
        if os.path.basename(library).startswith(("libc++", "libstdc++")):
            yield f"loads {library}, whose content differs between systems"
        elif library not in stubs.symbols:
            yield f"loads {library}, for which there is no stub"
    for library in stubs.symbols:
        if library not in libraries:
            yield f"does not load {library}, for which there is a stub"


def check_imports(image, stubs):
    imports = image.imports()
    for symbol, library in imports:
        if library is None:
            yield f"imports {symbol} from any library that has it"
        elif library in stubs.symbols and symbol not in stubs.symbols[library]:
            yield f"imports {symbol} from {os.path.basename(library)}, which is not on the list of allowed imports"


def check_unused(images, stubs):
    used = {found for image in images for found in image.imports()}
    for library, symbols in stubs.symbols.items():
        for symbol in sorted(symbols):
            if (symbol, library) not in used:
                yield f"the stub of {os.path.basename(library)} lists {symbol}, which nothing imports"


def check_loading(image, architecture):
    for name, _ in image.commands:
        if name not in KNOWN_COMMANDS[architecture]:
            yield f"load command {name} is unknown to iOS {OLDEST_SYSTEM[architecture]}"
    platform, oldest = image.build_version()
    if platform != mach_o.PLATFORM_IOS or oldest != OLDEST_SYSTEM[architecture]:
        yield f"made for platform {platform} from {oldest} on, not for iOS from {OLDEST_SYSTEM[architecture]} on"
    formats = image.chained_pointer_formats()
    if not formats <= CHAINED_FORMATS[architecture]:
        yield f"has fixups in the format {', '.join(map(str, sorted(formats)))}"
    for kind, count in image.initialisers().items():
        if kind == INITIALISER_KIND[architecture] and count == 0:
            yield "has no initialiser: nothing would start"
        elif kind != INITIALISER_KIND[architecture] and count:
            yield f"has initialisers of a kind that iOS {OLDEST_SYSTEM[architecture]} does not run"
    for at in image.all("LC_SEGMENT_64"):
        name, address, _, offset, _ = image.unpack("<16s4Q", at + 8)
        if address % PAGE or offset % PAGE:
            yield f"segment {name.rstrip(bytes(1)).decode('ascii', 'replace')} does not start at a page of 16 KiB"


def check_signature(image):
    directory = image.code_directory()
    if directory is None:
        yield "is not signed"
        return
    if not directory[3] & SIGNED_AD_HOC:
        yield "is not signed ad hoc"
    for page, _, _ in image.wrong_page_hashes():
        yield f"the signature's hash of page {page} does not match"


def check_slice(image, architecture, stubs):
    if image.kind != mach_o.FILE_DYLIB:
        yield "is no dynamic library"
    if image.install_name() != INSTALL_NAME:
        yield f"install name is {image.install_name()}"
    yield from check_loading(image, architecture)
    yield from check_libraries(image, stubs)
    yield from check_imports(image, stubs)
    for symbol in image.exports():
        yield f"exports {symbol}"
    yield from check_signature(image)


def check_library(data, stubs, forbidden=()):
    """Findings about the fat library."""
    if len(data) > MAXIMUM_LIBRARY_SIZE:
        yield f"Corvel.dylib: {len(data)} bytes are more than {MAXIMUM_LIBRARY_SIZE}"
    images = {}
    try:
        for cpu, subtype, offset, size in mach_o.slices(data):
            image = mach_o.Image(data[offset : offset + size])
            architecture = mach_o.ARCHITECTURES.get(subtype) if cpu == mach_o.CPU_ARM64 else None
            if architecture is None:
                yield f"Corvel.dylib: a slice has the wrong CPU subtype {subtype:#x}"
                continue
            if (image.cpu, image.subtype) != (cpu, subtype):
                yield f"Corvel.dylib ({architecture}): the slice itself has the wrong CPU subtype {image.subtype:#x}"
                continue
            if offset % PAGE:
                yield f"Corvel.dylib ({architecture}): the slice does not start at a page of 16 KiB"
            images[architecture] = image
        for architecture in OLDEST_SYSTEM:
            if architecture not in images:
                yield f"Corvel.dylib: the {architecture} slice is missing"
        for architecture, image in images.items():
            for finding in check_slice(image, architecture, stubs):
                yield f"Corvel.dylib ({architecture}): {finding}"
        if len(images) == len(OLDEST_SYSTEM):
            yield from check_unused(images.values(), stubs)
    except mach_o.Malformed as error:
        yield f"Corvel.dylib: {error}"
    for text in forbidden:
        at = data.find(text.encode())
        if at >= 0:
            start = max(data.rfind(b"\0", 0, at), at - 80) + 1
            line = data[start : at + 120].split(b"\0")[0].decode("utf-8", "replace")
            yield f'Corvel.dylib: names a path of the building machine: "{line}"'


def check_entries(entries, content):
    """Kinds, modes and owners of what a member of the package holds."""
    expected = dict(content)
    for path in content:
        while path != ".":
            path = os.path.dirname(path) or "."
            expected[path] = ("folder", 0o755)
    found = set()
    for entry, _ in entries:
        path = entry.name if entry.name.startswith(".") else "./" + entry.name
        kind = "file" if entry.isfile() else "folder" if entry.isdir() else "something else"
        if path not in expected:
            yield f"{path}: does not belong into the package"
            continue
        found.add(path)
        if (kind, entry.mode) != expected[path]:
            yield f"{path}: is a {kind} of mode {entry.mode:o}, not a {expected[path][0]} of mode {expected[path][1]:o}"
        if (entry.uid, entry.gid) != (0, 0) or entry.uname not in ("", "root") or entry.gname not in ("", "root"):
            yield f"{path}: belongs to {entry.uname or entry.uid}/{entry.gname or entry.gid}, not to root/root"
    for path in sorted(set(content) - found):
        yield f"{path}: is missing"


def check_filter(data):
    try:
        if plistlib.loads(data) != FILTER:
            yield "Corvel.plist: the filter does not name SpringBoard alone"
    except (plistlib.InvalidFileException, ValueError, OverflowError, IndexError) as error:
        yield f"Corvel.plist: {error}"
    except Exception as error:   # expat's errors have no base of their own in the library
        yield f"Corvel.plist: {error}"


def check_control(data, version):
    fields = debian_archive.fields(data)
    for name, value in {**CONTROL, "Version": version}.items():
        if fields.get(name) != value:
            yield f'control: {name} is "{fields.get(name, "")}", not "{value}"'
    for name in ("Maintainer", "Author", "Description", "Installed-Size"):
        if not fields.get(name):
            yield f"control: {name} is missing"
    for name in sorted(set(fields) & {"Pre-Depends", "Recommends", "Conflicts", "Replaces", "Provides"}):
        yield f"control: {name} is there"


def check_package(data, version, stubs, forbidden=()):
    """Findings about the package and everything in it."""
    try:
        members = debian_archive.members(data)
        if [name.split(".tar")[0] for name, _ in members] != ["debian-binary", "control", "data"]:
            yield "the package's members are not debian-binary, control and data"
            return
        control = debian_archive.files(*members[1])
        content = debian_archive.files(*members[2])
        yield from check_entries(control, {"./control": ("file", 0o644)})
        yield from check_entries(content, CONTENT)
        files = {entry.name: file for entry, file in content}
        for entry, file in control:
            if entry.name == "./control":
                yield from check_control(file, version)
        if f"{FOLDER}/Corvel.plist" in files:
            yield from check_filter(files[f"{FOLDER}/Corvel.plist"])
        if f"{FOLDER}/Corvel.dylib" in files:
            yield from check_library(files[f"{FOLDER}/Corvel.dylib"], stubs, forbidden)
    except debian_archive.Malformed as error:
        yield str(error)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    words = parser.add_subparsers(dest="word", required=True)
    words.add_parser("objects").add_argument("files", nargs="+")
    for word in ("library", "package"):
        options = words.add_parser(word)
        options.add_argument("file")
        options.add_argument("--stubs", required=True)
        options.add_argument("--forbid", action="append", default=[])
        if word == "package":
            options.add_argument("--version", required=True)
    given = parser.parse_args()
    findings = []
    try:
        for path in given.files if given.word == "objects" else [given.file]:
            with open(path, "rb") as file:
                data = file.read()
            if given.word == "objects":
                findings += check_objects(path, data)
            elif given.word == "library":
                findings += check_library(data, Stubs(given.stubs), given.forbid)
            else:
                findings += check_package(data, given.version, Stubs(given.stubs), given.forbid)
    except (OSError, ValueError) as error:
        findings.append(str(error))
    for finding in findings:
        print(f"error: {finding}", file=sys.stderr)
    if findings and given.word != "objects" and os.path.exists(given.file):
        os.remove(given.file)   # so that nobody takes it for good, and the next build makes it again
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
