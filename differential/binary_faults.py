"""Whether a binary document has the fault for which our reader refuses it.

Each function looks for the fault independently, at the byte that our reader reports.
"""

import re
import struct

SHARED_VALUES = 2**16  # how far the counts may exceed the size of the document
SHARED_BYTES = 2**26
NOT_XML = re.compile("[\x00-\x08\x0b\x0c\x0e-\x1f\ufffe\uffff]")


class File:
    """The layout of a binary document according to its trailer."""

    def __init__(self, document):
        self.document = document
        (self.offset_width, self.reference_width, self.count, self.top,
         self.table) = struct.unpack(">BBQQQ", document[-26:])
        self.end = len(document) - 32

    def offset_of(self, number):
        at = self.table + number * self.offset_width
        return int.from_bytes(self.document[at:at + self.offset_width], "big")

    def offsets(self):
        return map(self.offset_of, range(self.count))

    def number(self, at, width):
        return int.from_bytes(self.document[at:at + width], "big")

    def counted(self, at):
        """How many parts the object at `at` has, and where they begin."""
        count = self.document[at] & 0xF
        if count < 15:
            return count, at + 1
        width = 1 << (self.document[at + 1] & 0xF)
        return self.number(at + 2, width), at + 2 + width

    def contents(self, at):
        """The bytes of a string or data."""
        count, start = self.counted(at)
        width = 2 if kind(self.document, at) == 6 else 1
        return self.document[start:start + count * width]

    def references(self, at):
        """The numbers of the objects that an array or a dictionary refers to."""
        count, start = self.counted(at)
        count *= 2 if kind(self.document, at) == 0xD else 1
        width = self.reference_width
        return [self.number(start + i * width, width) for i in range(count)]

    def size_of(self, at):
        """The size of the object in bytes, its marker included."""
        width = {1: 1, 2: 1, 3: 1, 4: 1, 5: 1, 6: 2, 0xA: self.reference_width,
                 0xD: 2 * self.reference_width}[kind(self.document, at)]
        if kind(self.document, at) in (1, 2, 3):
            return 1 + (1 << (self.document[at] & 0xF))
        count, start = self.counted(at)
        return start - at + count * width

    def tally(self, at, known):
        """The values and the bytes of keys, strings and data that are reached from the object at
        `at`, itself included, each time that they are."""
        if at not in known:
            what = kind(self.document, at)
            parts = self.references(at) if what in (0xA, 0xD) else []
            tallies = [self.tally(self.offset_of(part), known) for part in parts]
            keys = len(parts) // 2 if what == 0xD else 0  # which are no values
            size = len(self.contents(at)) if what in (4, 5, 6) else 0
            known[at] = (1 - keys + sum(values for values, _ in tallies),
                         size + sum(size for _, size in tallies))
        return known[at]


def kind(document, at):
    return document[at] >> 4


def is_uid(document, at):
    return kind(document, at) == 8


def is_set(document, at):
    return kind(document, at) == 0xC


def is_null(document, at):
    return document[at] == 0


def is_unknown(document, at):
    known = {0: (0, 8, 9), 1: range(5), 2: (2, 3), 3: (3,)}
    return document[at] & 0xF not in known.get(kind(document, at), ()) and kind(
        document, at) not in (4, 5, 6, 8, 0xA, 0xC, 0xD)


def is_no_string(document, at):
    return kind(document, at) not in (5, 6)


def is_integer_out_of_range(document, at):
    number = int.from_bytes(document[at + 1:at + 17], "big", signed=True)
    return document[at] == 0x14 and not -(2**63) <= number < 2**64


def is_not_ascii(document, at):
    return kind(document, at) == 5 and not File(document).contents(at).isascii()


def is_not_utf16(document, at):
    try:
        File(document).contents(at).decode("utf-16-be")
    except UnicodeDecodeError:
        return kind(document, at) == 6
    return False


def is_not_xml_character(document, at):
    codec = {5: "ascii", 6: "utf-16-be"}[kind(document, at)]
    return NOT_XML.search(File(document).contents(at).decode(codec)) is not None


def contains_itself(document, at):
    """Whether a walk over references from the object at `at` comes back to it."""
    file = File(document)
    todo, seen = [at], set()
    while todo:
        for number in file.references(todo.pop()):
            offset = file.offset_of(number)
            if offset == at:
                return True
            if offset not in seen and kind(document, offset) in (0xA, 0xD):
                todo.append(offset)
            seen.add(offset)
    return False


def reaches_beyond_the_objects(document, at):
    file = File(document)
    if kind(document, at) in (4, 5, 6, 0xA, 0xD) and document[at] & 0xF == 15:
        if at + 2 > file.table or at + 2 + (1 << (document[at + 1] & 0xF)) > file.table:
            return True
    return at + file.size_of(at) > file.table


def has_object_outside(document, _at):
    file = File(document)
    return any(not 8 <= offset < file.table for offset in file.offsets())


def has_odd_count(document, at):
    """Whether the byte after a marker does not begin a count, an integer of one to eight bytes."""
    follows_marker = document[at - 1] & 0xF == 15 and kind(document, at - 1) in (4, 5, 6, 0xA, 0xD)
    return follows_marker and (kind(document, at) != 1 or document[at] & 0xF > 3)


def is_too_short(document, _at):
    return len(document) < 40


def has_odd_offset_width(document, _at):
    return not 1 <= File(document).offset_width <= 8


def has_odd_reference_width(document, _at):
    return not 1 <= File(document).reference_width <= 8


def has_table_outside(document, _at):
    file = File(document)
    return not 8 <= file.table <= file.end


def has_table_too_long(document, _at):
    file = File(document)
    return file.table + file.count * file.offset_width > file.end


def is_too_deep(document, _at):
    """Whether a chain of more than 512 containers begins at the top object."""
    file = File(document)
    level, depth = {file.offset_of(file.top)}, 0
    while level:
        level = {offset for offset in level if kind(document, offset) in (0xA, 0xD)}
        depth += bool(level)
        if depth > 512:
            return True
        level = {file.offset_of(number) for offset in level for number in file.references(offset)}
    return False


def reaches_too_many_values(document, _at):
    file = File(document)
    return file.tally(file.offset_of(file.top), {})[0] > len(document) + SHARED_VALUES


def reaches_too_many_bytes(document, _at):
    file = File(document)
    return file.tally(file.offset_of(file.top), {})[1] > len(document) + SHARED_BYTES


def has_overlapping_strings(document, _at):
    file = File(document)
    wide = {offset for offset in file.offsets() if kind(document, offset) == 6}
    return sum(len(file.contents(offset)) for offset in wide) > len(document)


def dates(document):
    """Every double that may be a date's: the eight bytes after each byte like a date's marker."""
    for match in re.finditer(rb"\x33(?=(.{8}))", document, re.DOTALL):
        yield struct.unpack(">d", match[1])[0]


def has_wide_integer(document, low):
    """Whether an integer of sixteen bytes ends in `low`, 64 bits."""
    return re.search(rb"\x14.{8}" + re.escape(low.to_bytes(8, "big")), document, re.DOTALL)


def has_empty_utf16(document):
    file = File(document)
    return any(kind(document, offset) == 6 and file.counted(offset)[0] == 0
               for offset in file.offsets())


def has_wide_utf16(document):
    """Whether a string in UTF-16 contains characters of three bytes in UTF-8."""
    file = File(document)
    return any(kind(document, offset) == 6 and re.search(
        "[\u0800-\uffff]", file.contents(offset).decode("utf-16-be", "replace"))
               for offset in file.offsets())
