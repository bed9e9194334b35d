"""Property lists as bytes: XML text in pieces, and binary files in which objects share others."""

import struct


def escaped(text):
    return text.replace("&", "&amp;").replace("<", "&lt;")


def string(text):
    return f"<string>{escaped(text)}</string>"


def integer(number):
    return f"<integer>{number}</integer>"


def key(name):
    return f"<key>{escaped(name)}</key>"


def array(elements):
    return "<array>" + "".join(elements) + "</array>"


def dictionary(entries):
    """`entries` are pairs of a key and the XML of its value."""
    return "<dict>" + "".join(key(name) + value for name, value in entries) + "</dict>"


def document(value):
    return ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + value
            + "</plist>\n").encode()


class Binary:
    """A binary property list, object by object. An object may be referred to any number of times."""

    def __init__(self):
        self.objects = []

    def _add(self, make):
        self.objects.append(make)
        return len(self.objects) - 1

    def integer(self, number):
        return self._add(lambda _: b"\x13" + struct.pack(">q", number))

    def data(self, content):
        return self._add(lambda _: _marker(0x40, len(content)) + content)

    def string(self, text):
        return self._add(lambda _: _marker(0x50, len(text)) + text.encode("ascii"))

    def array(self, references):
        return self._add(lambda width: _marker(0xA0, len(references))
                         + b"".join(r.to_bytes(width, "big") for r in references))

    def dictionary(self, entries):
        """`entries` are pairs of references."""
        references = [k for k, _ in entries] + [v for _, v in entries]
        return self._add(lambda width: _marker(0xD0, len(entries))
                         + b"".join(r.to_bytes(width, "big") for r in references))

    def named(self, entries):
        """A dictionary of pairs of a text and a reference."""
        return self.dictionary([(self.string(name), value) for name, value in entries])

    def file(self, top):
        width = _width(len(self.objects))
        content, offsets = bytearray(b"bplist00"), []
        for make in self.objects:
            offsets.append(len(content))
            content += make(width)
        table, offset_width = len(content), _width(len(content))
        for offset in offsets:
            content += offset.to_bytes(offset_width, "big")
        trailer = struct.pack(">6xBBQQQ", offset_width, width, len(offsets), top, table)
        return bytes(content) + trailer


def _width(number):
    return next(width for width in (1, 2, 4, 8) if number < 1 << 8 * width)


def _marker(kind, count):
    if count < 15:
        return bytes([kind | count])
    exponent = {1: 0, 2: 1, 4: 2, 8: 3}[_width(count)]
    return bytes([kind | 15, 0x10 | exponent]) + count.to_bytes(1 << exponent, "big")
