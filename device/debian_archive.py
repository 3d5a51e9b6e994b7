"""Reads a Debian package: an `ar` archive of debian-binary, control.tar.* and data.tar.*. See deb(5)."""

import io
import lzma
import tarfile


class Malformed(Exception):
    """Not a Debian package; the text says why."""


def members(data):
    """(name, bytes) of the archive's members, in order."""
    if data[:8] != b"!<arch>\n":
        raise Malformed("not an ar archive")
    found, offset = [], 8
    while offset < len(data):
        header = data[offset : offset + 60]
        if len(header) < 60 or header[58:] != b"`\n" or not header[48:58].strip().isdigit():
            raise Malformed(f"a member's header at {offset} is damaged")
        size = int(header[48:58])
        if offset + 60 + size > len(data):
            raise Malformed("the last member is cut off")
        found.append((header[:16].decode("ascii", "replace").strip().rstrip("/"), data[offset + 60 : offset + 60 + size]))
        offset += 60 + size + size % 2
    return found


def files(name, data):
    """(TarInfo, bytes) of everything in a member control.tar.xz or data.tar.xz."""
    if not name.endswith(".tar.xz"):
        raise Malformed(f"{name} is not compressed with xz: phones may be unable to read it")
    try:
        with tarfile.open(fileobj=io.BytesIO(lzma.decompress(data))) as archive:
            return [(entry, archive.extractfile(entry).read() if entry.isfile() else b"") for entry in archive]
    except (lzma.LZMAError, tarfile.TarError) as error:
        raise Malformed(f"{name}: {error}") from error


def fields(control):
    """The control file's fields, with continuation lines joined by line feeds."""
    found, last = {}, None
    for line in control.decode("utf-8", "replace").splitlines():
        if line[:1] in (" ", "\t") and last:
            found[last] += "\n" + line[1:]
        elif ":" in line:
            last, _, value = line.partition(":")
            found[last] = value.strip()
        else:
            raise Malformed(f"control has a line that is no field: {line!r}")
    return found
