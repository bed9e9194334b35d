"""Documents that show a difference, made by hand."""

import plistlib
import struct


def binary_file(objects, offsets=None, table=None, count=None, offset_width=1, reference_width=1):
    """A binary document of `objects`, the first on top; the rest replaces the correct values."""
    made, found = b"bplist00", []
    for part in objects:
        found.append(len(made))
        made += part
    start = len(made)
    made += b"".join(offset.to_bytes(offset_width, "big") for offset in offsets or found)
    return made + struct.pack(">5xBBBQQQ", 0, offset_width, reference_width,
                              len(objects) if count is None else count, 0,
                              start if table is None else table)


def array_in_itself():
    return binary_file([b"\xa1\x00"])


def shared_arrays(levels, times):
    """Nested arrays, each of which contains the next one `times` times."""
    marker = bytes([0xA0 + times])
    objects = [marker + (level + 1).to_bytes(2, "big") * times for level in range(levels)]
    return binary_file(objects + [b"\x09"], offset_width=2, reference_width=2)


def shared_bytes():
    """An array of 66 references to a string of 2^20 bytes."""
    references = b"\xaf\x10\x42" + b"\x01" * 66
    return binary_file([references, b"\x5f\x12\x00\x10\x00\x00" + b"a" * 2**20], offset_width=4)


def overlapping_strings():
    """Sixteen strings of fourteen UTF-16 units, of which each begins where the one before does."""
    array = b"\xaf\x10\x10" + bytes(range(1, 17))
    return binary_file([array] + [b"\x6e"] * 16 + [b"\x20" * 30])


def wide_text(units, times):
    """An array of references to one string of characters of three bytes in UTF-8."""
    return plistlib.dumps(["\u2028" * units] * times, fmt=plistlib.FMT_BINARY)


def overlapping_trailer():
    """39 bytes, of which the last 32 are a trailer: it begins in the header."""
    return b"bplist00" + b"\x0c\0\0\0\x09" + struct.pack(">BBQQQ", 1, 1, 1, 0, 8)


def nested_xml(depth):
    return b"<array>" * depth + b"</array>" * depth
