"""Reads Mach-O files of iOS, as far as the package's checks and the arm64e step need it. Sources: Apple's <mach-o/loader.h>,
<mach-o/fixup-chains.h>, <mach-o/nlist.h> and dyld; xnu's cs_blobs.h for signatures.

Whatever is damaged raises Malformed with one line; nothing is changed but by renew_page_hashes.
"""

import hashlib
import struct

CPU_ARM64 = 0x0100000C
SUBTYPE_ARM64 = 0
SUBTYPE_ARM64E = 0x80000002   # arm64e, with the bit that says the ABI has a version, which is 0
ARCHITECTURES = {SUBTYPE_ARM64: "arm64", SUBTYPE_ARM64E: "arm64e"}
PLATFORM_IOS = 2

FILE_OBJECT, FILE_DYLIB = 1, 6
COMMANDS = {
    0x2: "LC_SYMTAB", 0xB: "LC_DYSYMTAB", 0xC: "LC_LOAD_DYLIB", 0xD: "LC_ID_DYLIB", 0x19: "LC_SEGMENT_64",
    0x1B: "LC_UUID", 0x1D: "LC_CODE_SIGNATURE", 0x26: "LC_FUNCTION_STARTS", 0x29: "LC_DATA_IN_CODE",
    0x2A: "LC_SOURCE_VERSION", 0x2C: "LC_ENCRYPTION_INFO_64", 0x32: "LC_BUILD_VERSION", 0x8000001C: "LC_RPATH",
    0x80000018: "LC_LOAD_WEAK_DYLIB", 0x8000001F: "LC_REEXPORT_DYLIB", 0x80000022: "LC_DYLD_INFO_ONLY",
    0x80000033: "LC_DYLD_EXPORTS_TRIE", 0x80000034: "LC_DYLD_CHAINED_FIXUPS",
}
LOADS = ("LC_LOAD_DYLIB", "LC_LOAD_WEAK_DYLIB", "LC_REEXPORT_DYLIB")
SECTION_INIT_POINTERS, SECTION_INIT_OFFSETS = 0x9, 0x16
RELOCATION_AUTHENTICATED_POINTER = 11


class Malformed(Exception):
    """The file is not what it says it is; the text says where."""


class Reader:
    """Integers and texts at offsets of some bytes; anything past the end is Malformed."""

    def __init__(self, data):
        self.data = data

    def unpack(self, layout, offset):
        if offset < 0 or offset + struct.calcsize(layout) > len(self.data):
            raise Malformed(f"something at {offset:#x} lies past the end ({len(self.data):#x})")
        return struct.unpack_from(layout, self.data, offset)

    def text(self, offset, end=None):
        end = len(self.data) if end is None else min(end, len(self.data))
        stop = self.data.find(b"\0", offset, end) if 0 <= offset < end else -1
        if stop < 0:
            raise Malformed(f"a text at {offset:#x} has no end")
        return self.data[offset:stop].decode("utf-8", "replace")

    def uleb(self, offset):
        value = shift = 0
        while True:
            (byte,) = self.unpack("<B", offset)
            offset += 1
            value |= (byte & 0x7F) << shift
            shift += 7
            if not byte & 0x80:
                return value, offset
            if shift > 63:
                raise Malformed(f"a number at {offset:#x} is too long")


class Section:
    def __init__(self, fields):
        name, segment, self.address, self.size, self.offset, _, self.relocations, self.relocation_count, self.flags = fields
        self.name, self.segment = (field.rstrip(b"\0").decode("ascii", "replace") for field in (name, segment))
        self.kind = self.flags & 0xFF


class Image(Reader):
    """One slice: a Mach-O file for one architecture."""

    def __init__(self, data):
        super().__init__(data)
        magic, self.cpu, self.subtype, self.kind, count, size, self.flags, _ = self.unpack("<8I", 0)
        if magic != 0xFEEDFACF:
            raise Malformed("not a 64-bit Mach-O file")
        self.commands = []   # (name, offset)
        offset, end = 32, 32 + size
        for _ in range(count):
            command, length = self.unpack("<2I", offset)
            if length < 8 or offset + length > end:
                raise Malformed(f"a load command at {offset:#x} has a wrong size")
            self.commands.append((COMMANDS.get(command, f"{command:#x}"), offset))
            offset += length
        self.sections = []
        for at in self.all("LC_SEGMENT_64"):
            (number,) = self.unpack("<I", at + 64)
            self.sections += [Section(self.unpack("<16s16s2Q5I", at + 72 + 80 * i)) for i in range(number)]

    def all(self, *names):
        return [offset for name, offset in self.commands if name in names]

    def first(self, name):
        found = self.all(name)
        return found[0] if found else None

    def command_text(self, offset):
        """The text that the command's first field points to."""
        (size,), (start,) = self.unpack("<I", offset + 4), self.unpack("<I", offset + 8)
        return self.text(offset + start, offset + size)

    def install_name(self):
        at = self.first("LC_ID_DYLIB")
        return None if at is None else self.command_text(at)

    def libraries(self):
        """Install names of the libraries it loads, in the order of their ordinals."""
        return [self.command_text(at) for at in self.all(*LOADS)]

    def build_version(self):
        """(platform, oldest system as text)"""
        at = self.first("LC_BUILD_VERSION")
        if at is None:
            raise Malformed("LC_BUILD_VERSION is missing")
        platform, oldest = self.unpack("<2I", at + 8)
        return platform, f"{oldest >> 16}.{oldest >> 8 & 0xFF}"

    def imports(self):
        """(symbol, library) for everything that dyld binds; the library is None where dyld would search them all."""
        found = set()
        at = self.first("LC_DYLD_INFO_ONLY")
        if at is not None:
            for field in (16, 24, 32):   # binds, weak binds, lazy binds
                found.update(self._bind_opcodes(*self.unpack("<2I", at + field), weak=field == 24))
        at = self.first("LC_DYLD_CHAINED_FIXUPS")
        if at is not None:
            found.update(self._chained_imports(*self.unpack("<2I", at + 8)))
        libraries = self.libraries()
        named = {1 + i: library for i, library in enumerate(libraries)}
        return sorted((symbol, named.get(ordinal)) for symbol, ordinal in found)

    def _bind_opcodes(self, offset, size, weak):
        end, ordinal, symbol = offset + size, None, None
        while offset < end:
            (byte,) = self.unpack("<B", offset)
            offset += 1
            operation, immediate = byte & 0xF0, byte & 0x0F
            if operation == 0x10:
                ordinal = immediate
            elif operation == 0x20:
                ordinal, offset = self.uleb(offset)
            elif operation == 0x30:
                ordinal = -immediate   # this image, the main program, any library
            elif operation == 0x40:
                symbol = self.text(offset, end)
                offset += len(symbol.encode()) + 1
            elif operation in (0x60, 0x70, 0x80):
                _, offset = self.uleb(offset)
            elif operation in (0x90, 0xA0, 0xB0, 0xC0):
                yield symbol, None if weak else ordinal
                for _ in range({0xA0: 1, 0xC0: 2}.get(operation, 0)):
                    _, offset = self.uleb(offset)
            elif operation not in (0x00, 0x50):
                raise Malformed(f"unknown bind operation {byte:#x}")

    def _chained_imports(self, offset, size):
        _, _, imports, symbols, count, layout = self.unpack("<6I", offset)
        width = {1: 4, 2: 8, 3: 16}.get(layout)
        if width is None:
            raise Malformed(f"unknown layout {layout} of chained imports")
        for i in range(count):
            at = offset + imports + width * i
            if layout == 3:
                (value,) = self.unpack("<Q", at)
                ordinal, name, bits = value & 0xFFFF, value >> 32, 16
            else:
                (value,) = self.unpack("<I", at)
                ordinal, name, bits = value & 0xFF, value >> 9, 8
            if ordinal >= (1 << bits) - 3:
                ordinal -= 1 << bits
            yield self.text(offset + symbols + name, offset + size), ordinal

    def chained_pointer_formats(self):
        """The pointer formats of the segments that have chained fixups."""
        at = self.first("LC_DYLD_CHAINED_FIXUPS")
        if at is None:
            return set()
        offset, _ = self.unpack("<2I", at + 8)
        starts = offset + self.unpack("<I", offset + 4)[0]
        (count,) = self.unpack("<I", starts)
        segments = [self.unpack("<I", starts + 4 + 4 * i)[0] for i in range(count)]
        return {self.unpack("<H", starts + segment + 6)[0] for segment in segments if segment}

    def exports(self):
        """Names of the symbols that others could bind to."""
        names = set()
        at = self.first("LC_DYLD_INFO_ONLY")
        if at is not None:
            names.update(self._trie(*self.unpack("<2I", at + 40)))
        at = self.first("LC_DYLD_EXPORTS_TRIE")
        if at is not None:
            names.update(self._trie(*self.unpack("<2I", at + 8)))
        at = self.first("LC_SYMTAB")
        if at is not None:
            offset, count, strings, _ = self.unpack("<4I", at + 8)
            for i in range(count):
                name, kind, *_ = self.unpack("<IBBHQ", offset + 16 * i)
                defined_outside = kind & 0x0E != 0 and kind & 0x01 and not kind & 0xE0 and not kind & 0x10
                if defined_outside:
                    names.add(self.text(strings + name))
        return sorted(names)

    def _trie(self, offset, size):
        if not size:
            return
        waiting, seen = [(0, "")], set()
        while waiting:
            node, prefix = waiting.pop()
            if node in seen or node >= size:
                raise Malformed("the exports are no tree")
            seen.add(node)
            length, at = self.uleb(offset + node)
            if length:
                yield prefix
            at += length
            (children,) = self.unpack("<B", at)
            at += 1
            for _ in range(children):
                label = self.text(at, offset + size)
                child, at = self.uleb(at + len(label.encode()) + 1)
                waiting.append((child, prefix + label))

    def initialisers(self):
        """How many functions run when the image is loaded, by kind of section."""
        return {
            kind: sum(section.size // width for section in self.sections if section.kind == kind)
            for kind, width in ((SECTION_INIT_POINTERS, 8), (SECTION_INIT_OFFSETS, 4))
        }

    def authenticated_relocations(self):
        """Of an object file: (section, symbol) for each static pointer that the linker would have to sign."""
        at = self.first("LC_SYMTAB")
        symbols, strings = (self.unpack("<I", at + 8)[0], self.unpack("<I", at + 16)[0]) if at is not None else (0, 0)
        for section in self.sections:
            for i in range(section.relocation_count):
                _, info = self.unpack("<2I", section.relocations + 8 * i)
                if info >> 28 != RELOCATION_AUTHENTICATED_POINTER:
                    continue
                name = "a local symbol"
                if info >> 27 & 1:
                    (text,) = self.unpack("<I", symbols + 16 * (info & 0xFFFFFF))
                    name = self.text(strings + text)
                yield f"{section.segment},{section.name}", name

    def code_directory(self):
        """The ad-hoc signature's: (offset of its hashes, bytes a page, hashed bytes, flags, identifier); None without any."""
        at = self.first("LC_CODE_SIGNATURE")
        if at is None:
            return None
        start, _ = self.unpack("<2I", at + 8)
        magic, _, count = self.unpack(">3I", start)
        if magic != 0xFADE0CC0:
            raise Malformed("the signature is no superblob")
        for i in range(count):
            slot, offset = self.unpack(">2I", start + 12 + 8 * i)
            if slot != 0:
                continue
            directory = start + offset
            magic, _, _, flags, hashes, identifier, _, pages, limit, width, kind, _, page = self.unpack(">9I4B", directory)
            if magic != 0xFADE0C02 or kind != 2 or width != 32:
                raise Malformed("the code directory has no SHA-256 hashes")
            if limit > len(self.data) or pages != -(-limit >> page):
                raise Malformed("the code directory's hashes do not cover the file")
            return directory + hashes, 1 << page, limit, flags, self.text(directory + identifier)
        raise Malformed("the signature has no code directory")

    def wrong_page_hashes(self):
        """(page, offset of its hash in the file, right hash) for each page whose hash does not match."""
        directory = self.code_directory()
        if directory is None:
            return
        hashes, page, limit, *_ = directory
        for number, start in enumerate(range(0, limit, page)):
            right = hashlib.sha256(self.data[start : min(start + page, limit)]).digest()
            if self.unpack("32s", hashes + 32 * number)[0] != right:
                yield number, hashes + 32 * number, right


def renew_page_hashes(data):
    """Signs again what has changed in a slice (a bytearray): the hashes of pages that do not match. Returns how many."""
    wrong = list(Image(bytes(data)).wrong_page_hashes())
    for _, offset, right in wrong:
        data[offset : offset + 32] = right
    return len(wrong)


def slices(data):
    """(CPU, subtype, offset, size) of each slice as the fat header has them; one that spans the file where there is none."""
    reader = Reader(data)
    (magic,) = reader.unpack(">I", 0)
    if magic != 0xCAFEBABE:
        _, cpu, subtype = reader.unpack("<3I", 0)
        return [(cpu, subtype, 0, len(data))]
    (count,) = reader.unpack(">I", 4)
    if count > 16:
        raise Malformed(f"{count} slices")
    found = [reader.unpack(">4I", 8 + 20 * i) for i in range(count)]
    for _, _, offset, size in found:
        if offset + size > len(data):
            raise Malformed("a slice lies past the end of the file")
    return found
