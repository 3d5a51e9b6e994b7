#!/usr/bin/env python3
"""Breaks the iPhone's package in every way that device/check_package.py knows, and sees it refused for that reason alone.

    check_package_test.py --device DIR --build DIR --version VERSION --compiler CLANG [unittest's arguments]
"""

import argparse
import io
import lzma
import os
import plistlib
import struct
import subprocess
import sys
import tarfile
import tempfile
import unittest

parser = argparse.ArgumentParser()
for option in ("--device", "--build", "--version", "--compiler"):
    parser.add_argument(option, required=True)
given, rest = parser.parse_known_args()
sys.path.insert(0, given.device)

import check_package   # noqa: E402
import debian_archive   # noqa: E402
import link_slice   # noqa: E402
import mach_o   # noqa: E402

STUBS = check_package.Stubs(os.path.join(given.device, "stubs"))
PACKAGE = os.path.join(given.build, f"package/com.orvane.corvel_{given.version}_iphoneos-arm64.deb")


def read(path):
    with open(path, "rb") as file:
        return file.read()


def command(data, start, name):
    """Offset in the fat file of a slice's load command."""
    return start + mach_o.Image(bytes(data[start:])).first(name)


class Library(unittest.TestCase):
    def setUp(self):
        self.data = bytearray(read(os.path.join(given.build, "Corvel.dylib")))
        self.slices = {mach_o.ARCHITECTURES[subtype]: (offset, size) for _, subtype, offset, size in mach_o.slices(self.data)}

    def findings(self, sign=True, forbidden=()):
        """What is found in the library, its page hashes renewed unless they are the subject."""
        if sign:
            for start, size in self.slices.values():
                part = self.data[start : start + size]
                mach_o.renew_page_hashes(part)
                self.data[start : start + size] = part
        return list(check_package.check_library(bytes(self.data), STUBS, forbidden))

    def put(self, offset, layout, *values):
        struct.pack_into(layout, self.data, offset, *values)

    def replace(self, start, old, new, size=None):
        """Replaces a text of the slice by one that is not longer, padded with zeros."""
        at = self.data.index(old, start)
        self.data[at : at + len(old)] = new.ljust(len(old), b"\0")

    def expect(self, *wanted, **options):
        self.assertEqual(self.findings(**options), list(wanted))

    def test_the_library_as_built_is_in_order(self):
        self.expect()

    def test_an_import_that_is_not_allowed(self):
        for architecture, (start, _) in self.slices.items():
            with self.subTest(architecture):
                self.setUp()
                # The name as dyld reads it is the first one after the code, in the bind program or the chained imports.
                image = mach_o.Image(bytes(self.data[start:]))
                name = "LC_DYLD_INFO_ONLY" if architecture == "arm64" else "LC_DYLD_CHAINED_FIXUPS"
                field = 32 if architecture == "arm64" else 8   # the lazy binds
                (table,) = image.unpack("<I", image.first(name) + field)
                self.replace(start + table, b"_posix_spawn\0", b"_posix_spark\0")
                self.expect(
                    f"Corvel.dylib ({architecture}): imports _posix_spark from libSystem.B.dylib, "
                    "which is not on the list of allowed imports")

    def test_an_import_that_no_slice_needs(self):
        class More(check_package.Stubs):
            def __init__(self, stubs):
                self.symbols = {library: symbols | {"_dlopen"} if "libSystem" in library else symbols
                                for library, symbols in stubs.symbols.items()}

        self.assertEqual(
            list(check_package.check_library(bytes(self.data), More(STUBS))),
            ["the stub of libSystem.B.dylib lists _dlopen, which nothing imports"])

    def test_a_libcxx_library(self):
        start, _ = self.slices["arm64e"]
        self.replace(start, b"/usr/lib/libobjc.A.dylib\0", b"/usr/lib/libc++.1.dylib\0")
        self.assertIn(
            "Corvel.dylib (arm64e): loads /usr/lib/libc++.1.dylib, whose content differs between systems", self.findings())

    def test_a_library_without_a_stub(self):
        start, _ = self.slices["arm64"]
        self.replace(start, b"MessageUI.framework/MessageUI\0", b"StoreKit.framework/StoreKit\0")
        found = self.findings()
        self.assertEqual(len(found), 2)
        self.assertIn("StoreKit, for which there is no stub", found[0])
        self.assertIn("does not load /System/Library/Frameworks/MessageUI.framework/MessageUI", found[1])

    def test_exported_symbols(self):
        # A tree of one name, over the symbols' names, of which nothing is left that counts.
        for architecture, (start, _) in self.slices.items():
            with self.subTest(architecture):
                self.setUp()
                image = mach_o.Image(bytes(self.data[start:]))
                field = image.first("LC_DYLD_INFO_ONLY")
                field = image.first("LC_DYLD_EXPORTS_TRIE") + 8 if field is None else field + 40
                tree = b"\0\1_leak\0\x09" + b"\2\0\x40\0"
                strings = command(self.data, start, "LC_SYMTAB")
                at, size = struct.unpack_from("<2I", self.data, strings + 16)
                self.put(start + field, "<2I", at, len(tree))
                self.data[start + at : start + at + len(tree)] = tree
                self.assertIn(f"Corvel.dylib ({architecture}): exports _leak", self.findings())

    def test_a_defined_symbol_that_others_see(self):
        start, _ = self.slices["arm64"]
        symbols = command(self.data, start, "LC_SYMTAB")
        (at,) = struct.unpack_from("<I", self.data, symbols + 8)
        self.data[start + at + 4] = 0x0F   # defined in a section, external
        self.data[start + at + 5] = 1
        found = self.findings()
        self.assertEqual(len(found), 1)
        self.assertRegex(found[0], r"^Corvel\.dylib \(arm64\): exports _\w+$")

    def test_a_wrong_cpu_subtype(self):
        start, _ = self.slices["arm64e"]
        self.put(start + 8, "<I", 0x2)
        self.expect("Corvel.dylib (arm64e): the slice itself has the wrong CPU subtype 0x2",
                    "Corvel.dylib: the arm64e slice is missing")
        self.put(8 + 20 + 4, ">I", 0x2)
        self.expect("Corvel.dylib: a slice has the wrong CPU subtype 0x2", "Corvel.dylib: the arm64e slice is missing")

    def test_what_the_linker_writes_for_arm64e_is_named_and_signed(self):
        start, size = self.slices["arm64e"]
        part = self.data[start : start + size]
        right = bytes(part)
        part[8:12] = bytes(4)
        mach_o.renew_page_hashes(part)
        self.assertNotEqual(bytes(part), right)
        link_slice.name_architecture(part, "arm64e")
        self.assertEqual(bytes(part), right)

    def test_a_page_hash_that_does_not_match(self):
        start, _ = self.slices["arm64"]
        self.data[start + 0x2345] ^= 1
        self.expect("Corvel.dylib (arm64): the signature's hash of page 2 does not match", sign=False)

    def test_no_signature(self):
        start, _ = self.slices["arm64"]
        # As LC_SOURCE_VERSION, which has the same size.
        self.put(command(self.data, start, "LC_CODE_SIGNATURE"), "<I", 0x2A)
        self.expect("Corvel.dylib (arm64): is not signed")

    def test_a_load_command_that_the_oldest_system_does_not_know(self):
        for architecture, oldest in check_package.OLDEST_SYSTEM.items():
            with self.subTest(architecture):
                self.setUp()
                start, _ = self.slices[architecture]
                self.put(command(self.data, start, "LC_FUNCTION_STARTS"), "<I", 0x80000035)
                self.expect(f"Corvel.dylib ({architecture}): load command 0x80000035 is unknown to iOS {oldest}")

    def test_another_oldest_system(self):
        start, _ = self.slices["arm64"]
        self.put(command(self.data, start, "LC_BUILD_VERSION") + 12, "<I", 15 << 16)
        self.expect("Corvel.dylib (arm64): made for platform 2 from 15.0 on, not for iOS from 12.0 on")

    def test_initialisers_that_the_system_does_not_run(self):
        for architecture, flag, oldest in (("arm64", 0x16, "12.0"), ("arm64e", 0x9, "14.0")):
            with self.subTest(architecture):
                self.setUp()
                start, _ = self.slices[architecture]
                at = self.data.index(b"__mod_init_func" if architecture == "arm64" else b"__init_offsets", start)
                self.put(at + 64, "<I", flag)
                (size,) = struct.unpack_from("<Q", self.data, at + 40)
                self.put(at + 40, "<Q", max(size, 8))
                found = self.findings()
                self.assertIn(f"Corvel.dylib ({architecture}): has no initialiser: nothing would start", found)
                self.assertIn(
                    f"Corvel.dylib ({architecture}): has initialisers of a kind that iOS {oldest} does not run", found)

    def test_another_install_name(self):
        start, _ = self.slices["arm64"]
        self.replace(start, b"/Library/MobileSubstrate/DynamicLibraries/Corvel.dylib\0", b"@rpath/Corvel.dylib\0")
        self.expect("Corvel.dylib (arm64): install name is @rpath/Corvel.dylib")

    def test_a_missing_slice(self):
        start, size = self.slices["arm64"]
        self.data = self.data[start : start + size]
        self.slices = {}
        self.expect("Corvel.dylib: the arm64e slice is missing", sign=False)

    def test_a_library_that_is_too_large(self):
        more = check_package.MAXIMUM_LIBRARY_SIZE + 1 - len(self.data)
        self.data += bytes(more)
        limit = check_package.MAXIMUM_LIBRARY_SIZE
        self.expect(f"Corvel.dylib: {limit + 1} bytes are more than {limit}")

    def test_a_path_of_the_building_machine(self):
        start, _ = self.slices["arm64"]
        # Into the zeros between the load commands and the code.
        (size,) = struct.unpack_from("<I", self.data, start + 20)
        text = b"/builds/somebody/corvel/plugin/strip/layout.cpp\0"
        self.data[start + 32 + size + 1 : start + 32 + size + 1 + len(text)] = text
        self.expect(
            'Corvel.dylib: names a path of the building machine: "/builds/somebody/corvel/plugin/strip/layout.cpp"',
            forbidden=["/builds/somebody"])

    def test_damage_is_one_line_and_no_crash(self):
        for length in list(range(0, 4096, 97)) + list(range(4096, len(self.data), 9973)):
            with self.subTest(length=length):
                self.assertTrue(list(check_package.check_library(bytes(self.data[:length]), STUBS)))


class Objects(unittest.TestCase):
    def compile(self, source, *options):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "table.o")
            subprocess.run(
                [given.compiler, "--target=arm64e-apple-ios14.0", "-xc++", "-c", "-o", path, *options, "-"],
                input=source, text=True, check=True)
            return list(check_package.check_objects(path, read(path)))

    def test_a_signed_pointer_in_static_data(self):
        source = "void f(); void (*table[])() = { f };"
        self.assertEqual(
            self.compile(source),
            ["table.o: authenticated relocation in __DATA,__data to __Z1fv: the linker cannot sign pointers in static data"])
        self.assertEqual(self.compile(source, "-fno-ptrauth-calls"), [])

    def test_no_object_file(self):
        self.assertEqual(list(check_package.check_objects("a.o", b"\x7fELF" + bytes(60))), ["a.o: not a 64-bit Mach-O file"])


class Package(unittest.TestCase):
    def setUp(self):
        self.members = debian_archive.members(read(PACKAGE))

    def changed(self, member, change):
        """The package with one of its archives changed: change(entry, data) returns data, or None to leave the entry out."""
        members = []
        for name, data in self.members:
            if name.startswith(member):
                packed = io.BytesIO()
                with tarfile.open(fileobj=packed, mode="w", format=tarfile.GNU_FORMAT) as archive:
                    for entry, content in debian_archive.files(name, data):
                        content = change(entry, content)
                        if content is not None:
                            entry.size = len(content)
                            archive.addfile(entry, io.BytesIO(content))
                data = lzma.compress(packed.getvalue())
            members.append((name, data))
        return self.packed(members)

    def packed(self, members):
        parts = [b"!<arch>\n"]
        for name, data in members:
            parts.append(f"{name:<16}{0:<12}{0:<6}{0:<6}{100644:<8}{len(data):<10}`\n".encode() + data + b"\n" * (len(data) % 2))
        return b"".join(parts)

    def findings(self, package):
        return list(check_package.check_package(package, given.version, STUBS))

    def expect(self, package, *wanted):
        self.assertEqual(self.findings(package), list(wanted))

    def test_the_package_as_built_is_in_order(self):
        self.expect(read(PACKAGE))
        self.expect(self.changed("data", lambda entry, content: content))

    def test_a_filter_that_is_not_springboard_alone(self):
        for bundles in ([], ["com.apple.springboard", "com.apple.mobilephone"], ["com.apple.UIKit"]):
            with self.subTest(bundles):
                data = plistlib.dumps({"Filter": {"Bundles": bundles}})
                self.expect(
                    self.changed("data", lambda entry, content: data if entry.name.endswith(".plist") else content),
                    "Corvel.plist: the filter does not name SpringBoard alone")
        broken = self.changed("data", lambda entry, content: b"<plist><dict>" if entry.name.endswith(".plist") else content)
        self.assertEqual(len(self.findings(broken)), 1)

    def test_a_wrong_mode(self):
        def change(entry, content):
            if entry.name.endswith(".dylib"):
                entry.mode = 0o644
            elif entry.name.endswith("/Library"):
                entry.mode = 0o775
            return content

        self.expect(
            self.changed("data", change),
            "./var/jb/Library: is a folder of mode 775, not a folder of mode 755",
            "./var/jb/Library/MobileSubstrate/DynamicLibraries/Corvel.dylib: is a file of mode 644, not a file of mode 755")

    def test_a_wrong_owner(self):
        def change(entry, content):
            if entry.name.endswith(".plist"):
                entry.uid, entry.uname = 501, "mobile"
            return content

        self.expect(
            self.changed("data", change),
            "./var/jb/Library/MobileSubstrate/DynamicLibraries/Corvel.plist: belongs to mobile/root, not to root/root")

    def test_a_file_too_many_and_one_too_few(self):
        def change(entry, content):
            if entry.name.endswith(".plist"):
                entry.name = entry.name.replace("Corvel.plist", "Other.plist")
            return content

        folder = check_package.FOLDER
        self.expect(self.changed("data", change), f"{folder}/Other.plist: does not belong into the package",
                    f"{folder}/Corvel.plist: is missing")

    def test_a_script_that_runs_as_root(self):
        def change(entry, content):
            entry.name = entry.name.replace("./control", "./postinst")
            return content

        self.assertIn("./postinst: does not belong into the package", self.findings(self.changed("control", change)))

    def test_control_fields(self):
        def field(old, new):
            return self.changed("control", lambda entry, content: content.replace(old, new))

        self.expect(field(b"Depends: mobilesubstrate", b"Depends: ellekit"),
                    'control: Depends is "ellekit", not "mobilesubstrate"')
        self.expect(field(b"Suggests: libactivator", b"Recommends: libactivator"),
                    'control: Suggests is "", not "libactivator"', "control: Recommends is there")
        self.expect(field(f"Version: {given.version}".encode(), b"Version: 9"),
                    f'control: Version is "9", not "{given.version}"')

    def test_a_compression_that_phones_lack(self):
        members = [(name.replace("data.tar.xz", "data.tar.zst"), data) for name, data in self.members]
        self.expect(self.packed(members),
                    "data.tar.zst is not compressed with xz: phones may be unable to read it")

    def test_damage_is_one_line_and_no_crash(self):
        data = read(PACKAGE)
        for length in range(0, len(data), 499):
            with self.subTest(length=length):
                self.assertTrue(self.findings(data[:length]))

    def test_the_same_input_gives_the_same_bytes(self):
        import make_package

        library, control = os.path.join(given.build, "Corvel.dylib"), os.path.join(given.build, "package/control")
        filter_list = os.path.join(given.device, "../plugin/Corvel.plist")
        with tempfile.TemporaryDirectory() as folder:
            built = []
            for name in ("a.deb", "b.deb"):
                make_package.make("dpkg-deb", control, library, filter_list, os.path.join(folder, name), 1700000000)
                built.append(read(os.path.join(folder, name)))
        self.assertEqual(*built)
        for name, data in debian_archive.members(built[0])[1:]:
            for entry, _ in debian_archive.files(name, data):
                self.assertEqual(entry.mtime, 1700000000, entry.name)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *rest])
