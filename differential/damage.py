"""Damages documents, as bytes and in their own syntax."""

import re
import struct

from examples import binary_file

TAG = re.compile(r"<[^<>]*>")
LEAF = re.compile(r">([^<>]+)</(integer|real|date|data|string|key)")

WRONG_TAGS = [
    "<null/>", "<uid>1</uid>", "<set>", "</set>", "<dict>", "</dict>", "<array>", "</array>",
    "<key>k</key>", "<key/>", "<true>", "</true>", "<false>x</false>", "<Dict/>", "<plist>",
    "</plist>", "<string>", "<b>t</b>", "<string a=1/>", "<true a='1' a='2'/>", "<true a='<'/>",
    "<é/>", "<integer/>", "<real/>", "<date/>", "<data/>",
]
WRONG_TEXTS = [
    "x", " ", "_", "0X1", "0x", "+", "-", "&#0;", "&#x1;", "&#xD800;", "&#xFFFE;", "&amp", "&",
    "&e;", "]]>", "<![CDATA[", "<!-- a -- b -->", "<?xml version='1.0'?>", "\x01", "\x7f",
    "\ufffe", "<!DOCTYPE p [<!ENTITY e 'x'>]>", "<!DOCTYPE p [ ]>", "<!DOCTYPE p SYSTEM 's'>",
    "&#65;", "\xa0", "é", "٣", "1e5", "<![CDATA[]]>", "<!---->",
]
WRONG_LEAVES = {
    "integer": ["", " 1", "1 ", "1_0", "0X1F", "0x1_F", "+0x1F", "-0x8000000000000000", "--1",
                "18446744073709551616", "-9223372036854775809", "1.0", "1e3", "٣", "0x", "+ 1"],
    "real": ["", " 1", "1\n", "1_0.5", "1e400", "-1e-400", "0x1p3", "1e", ".", "1.e2", "infinit",
             "nan(1)", "+-1", "1,5", "٣.5", "0e999999999999", "1e-99999999999999999999"],
    "date": ["", " 2020-01-01T00:00:00Z", "2020-01-01T00:00:00Z ", "2020-01-01T00:00Z",
             "2020-01-01Z", "2020-02-30T00:00:00Z", "0000-01-01T00:00:00Z", "2020-01-01T24:00:00Z",
             "2020-01-01T00:00:60Z", "2020-01-01T00:00:00z", "2020-01-01 00:00:00", "2020Z"],
    "data": ["", "Zg", "Zg=", "Zg===", "Zh==", "Z g = =", "Zg==Zg==", "Zm9v!", "====", "Z", "Zm9v=",
             "Zm9-", "Zm\xa09v"],
}
DECLARATIONS = [
    "<?xml?>", "<?xml version='1.1'?>", "<?xml version='2.0'?>", "<?xml encoding='UTF-8'?>",
    "<?xml version='1.0' encoding='windows-1252'?>", "<?xml version='1.0' encoding='UTF-16'?>",
    "<?xml version='1.0' encoding='ISO-8859-1'?>", "<?xml version='1.0' encoding='UTF-32'?>",
    "<?xml version='1.0' encoding='ISO-8859-15'?>", "<?xml version='1.0' standalone='maybe'?>",
    "<?xml version='1.0' encoding='latin1'?>", "<?xml version='1.0' encoding='ASCII'?>",
    "<?xml version='1.0' encoding='no-such'?>", "<?xml version=\"1.0' ?>", "<?XML version='1.0'?>",
    "<?xml version='1.0' encoding='us-ascii' ?>", "\n<?xml version='1.0'?>", "<?xml version='1.'?>",
]
MARKERS = [
    0x00, 0x01, 0x07, 0x08, 0x09, 0x0A, 0x0F, 0x10, 0x13, 0x14, 0x15, 0x1F, 0x20, 0x21, 0x22, 0x23,
    0x24, 0x30, 0x33, 0x34, 0x40, 0x4F, 0x50, 0x5F, 0x60, 0x6F, 0x70, 0x7F, 0x80, 0x81, 0x83, 0x87,
    0x8F, 0x90, 0xA0, 0xA1, 0xAF, 0xB0, 0xB1, 0xC0, 0xC1, 0xD0, 0xD1, 0xDF, 0xE0, 0xF0, 0xFF,
]


def wrong_documents():
    """Everything above once, alone in a document, and every kind of object."""
    leaves = [f"<{name}>{text}</{name}>" for name, texts in WRONG_LEAVES.items() for text in texts]
    strings = [f"<string>{text}</string>" for text in WRONG_TEXTS]
    for inner in leaves + strings + WRONG_TEXTS + WRONG_TAGS:
        yield f"<plist><array>{inner}</array></plist>".encode()
        yield f"<plist><dict><key>k</key>{inner}</dict></plist>".encode()
    for declaration in DECLARATIONS:
        for text, codec in (("a", "utf-8"), ("é", "utf-8"), ("é", "latin-1")):
            yield f"{declaration}<plist><string>{text}</string></plist>".encode(codec)
    for marker in range(256):
        for size in (0, 1, 2, 4, 8, 16):
            yield binary_file([bytes([marker]) + bytes(size), b"\x51a"])
            yield binary_file([b"\xa1\x01", bytes([marker]) + b"\xff" * size, b"\x51a"])


class Damager:
    """Draws the damage from `random`, a seeded random.Random."""

    def __init__(self, random):
        self._random = random

    def damage(self, document):
        """`document` with one to three faults; they may happen to change nothing."""
        for _ in range(self._random.choice([1, 1, 1, 2, 3])):
            kinds = [self._bytes]
            kinds += [self._binary] * 2 if document.startswith(b"bplist0") else [self._xml] * 2
            document = self._random.choice(kinds)(document)
        return document

    def _bytes(self, document):
        at = self._random.randint(0, len(document))
        end = min(len(document), at + self._random.choice([1, 1, 2, 4, 16]))
        other = self._random.randint(0, len(document))
        return self._random.choice([
            lambda: document[:at] + bytes([self._random.randrange(256)]) + document[at + 1:],
            lambda: document[:at] + self._flipped(document[at:at + 1]) + document[at + 1:],
            lambda: document[:at],
            lambda: document[at:] if at < 4 else document[:at] + document[end:],
            lambda: document[:at] + self._random.randbytes(end - at) + document[at:],
            lambda: document[:at] + document[other:other + end - at] + document[end:],
            lambda: document[:other] + document[at:end] + document[other:],
        ])()

    def _flipped(self, byte):
        return bytes([byte[0] ^ 1 << self._random.randrange(8)]) if byte else b""

    def _xml(self, document):
        codec = {b"\xfe\xff": "utf-16-be", b"\xff\xfe": "utf-16-le"}.get(document[:2], "utf-8")
        wide = codec != "utf-8"
        errors = "surrogatepass" if wide else "surrogateescape"
        text = document[:len(document) - len(document) % 2 if wide else None].decode(codec, errors)
        kinds = [self._tags, self._leaf, self._texts, self._declaration]
        return self._random.choice(kinds)(text).encode(codec, errors)

    def _tags(self, text):
        spans = [match.span() for match in TAG.finditer(text)]
        if not spans:
            return text
        (start, end), (other, other_end) = self._random.choices(spans, k=2)
        return self._random.choice([
            lambda: text[:start] + text[end:],
            lambda: text[:start] + self._random.choice(WRONG_TAGS) + text[start:],
            lambda: text[:start] + self._random.choice(WRONG_TAGS) + text[end:],
            lambda: text[:start] + text[other:other_end] + text[end:],
            lambda: text[:start] + text[other:other_end] + text[start:],
        ])()

    def _leaf(self, text):
        leaves = list(LEAF.finditer(text))
        if not leaves:
            return text
        leaf = self._random.choice(leaves)
        wrong = self._random.choice(WRONG_LEAVES.get(leaf[2], WRONG_TEXTS))
        return text[:leaf.start(1)] + wrong + text[leaf.end(1):]

    def _texts(self, text):
        at = self._random.randint(0, len(text))
        return text[:at] + self._random.choice(WRONG_TEXTS) + text[at:]

    def _declaration(self, text):
        declaration = self._random.choice(DECLARATIONS)
        mark = "\ufeff" if text.startswith("\ufeff") else ""
        rest = re.sub(r"^<\?xml[ \n].*?\?>", "", text[len(mark):], flags=re.DOTALL)
        return mark + declaration + rest

    def _binary(self, document):
        if len(document) < 41:
            return document
        return self._random.choice([self._marker, self._marker, self._offset, self._reference,
                                    self._trailer, self._before_table])(document)

    @staticmethod
    def _layout(document):
        return struct.unpack(">BBQQQ", document[-26:])

    def _table_entries(self, document):
        """The offsets and widths of the entries of the offset table that are inside the file."""
        width, _, count, _, table = self._layout(document)
        last = min(count, (len(document) - 32 - min(table, len(document))) // max(width, 1))
        return [(table + width * i, width) for i in range(max(0, last))]

    def _object_offsets(self, document):
        offsets = (int.from_bytes(document[at:at + width], "big")
                  for at, width in self._table_entries(document))
        return [at for at in offsets if 8 <= at < len(document) - 32]

    def _put(self, document, at, replacement):
        return document[:at] + replacement + document[at + len(replacement):]

    def _marker(self, document):
        offsets = self._object_offsets(document)
        if not offsets:
            return document
        return self._put(document, self._random.choice(offsets),
                         bytes([self._random.choice(MARKERS)]))

    def _offset(self, document):
        offsets = self._table_entries(document)
        if not offsets:
            return document
        at, width = self._random.choice(offsets)
        targets = [self._random.choice(self._object_offsets(document) or [0]),
                   self._random.randrange(len(document) + 2), self._random.randrange(9)]
        target = min(self._random.choice(targets), 256 ** width - 1)
        return self._put(document, at, target.to_bytes(width, "big"))

    def _reference(self, document):
        """Changes one byte after an object's marker: a count, a reference or contents."""
        offsets = self._object_offsets(document)
        if not offsets:
            return document
        at = self._random.choice(offsets) + self._random.randint(1, 3)
        count = min(255, self._layout(document)[2] + 1)
        byte = self._random.choice([self._random.randint(0, count), self._random.randrange(256)])
        return self._put(document, at, bytes([byte]))

    def _trailer(self, document):
        at, size = self._random.choice([(-27, 1), (-26, 1), (-25, 1), (-24, 8), (-16, 8), (-8, 8)])
        start = len(document) + at
        old = int.from_bytes(document[start:start + size], "big")
        new = self._random.choice([0, 1, 2, 8, old + 1, old + 2, max(0, old - 1), 2 ** 63,
                                   2 ** 64 - 1, self._random.randrange(len(document))])
        return self._put(document, start, (new % 256 ** size).to_bytes(size, "big"))

    def _before_table(self, document):
        """Inserts or removes bytes before the offset table and adjusts the trailer."""
        table = self._layout(document)[4]
        if not 8 < table <= len(document) - 32:
            return document
        size = self._random.randint(1, 4)
        moved = document[:table] + self._random.randbytes(size) + document[table:]
        if self._random.random() < 0.5:
            size = -min(size, table - 8)
            moved = document[:table + size] + document[table:]
        return moved[:-8] + (table + size).to_bytes(8, "big")
