"""Writes one value in the binary form in ways that a serialiser never would."""

import datetime
import struct

EPOCH = datetime.datetime(2001, 1, 1)


class BinaryWriter:
    """Draws widths, offsets and sharing from `random`, a seeded random.Random."""

    def __init__(self, random):
        self._random = random

    def document(self, value):
        """The bytes of a file that contains `value`."""
        self._objects = []
        self._numbers = {}
        top = self._add(value)
        for _ in range(self._random.choice([0, 0, 0, 1, 3])):
            self._objects.append(b"\x11\x12\x34")  # an object that nothing refers to
        return self._file(top)

    def _one_in(self, count):
        return self._random.randrange(count) == 0

    def _add(self, value):
        """The number of an object for `value`; equal leaves may share one."""
        is_container = isinstance(value, (dict, list))
        identity = id(value) if is_container else self._leaf_identity(value)
        if identity in self._numbers and (is_container or not self._one_in(4)):
            return self._numbers[identity]
        number = self._numbers[identity] = len(self._objects)
        self._objects.append(None)
        self._objects[number] = self._references(value) if is_container else self._leaf(value)
        return number

    @staticmethod
    def _leaf_identity(value):
        return struct.pack(">d", value) if isinstance(value, float) else (type(value), value)

    def _references(self, value):
        if isinstance(value, list):
            return 0xA0, len(value), [self._add(part) for part in value]
        pairs = list(value.items())
        if pairs and self._one_in(6):  # the key once before, with a value that does not last
            key = self._random.choice(pairs)[0]
            pairs = self._with_twin(pairs, key)
        keys = [self._add(key) for key, _ in pairs]
        return 0xD0, len(pairs), keys + [self._add(part) for _, part in pairs]

    def _with_twin(self, pairs, key):
        """The key with another value at its position, and again with its own value at the end."""
        last = dict(pairs)[key]
        return [(name, part if name != key else 7) for name, part in pairs] + [(key, last)]

    def _leaf(self, value):
        if isinstance(value, bool):
            return b"\x09" if value else b"\x08"
        if isinstance(value, int):
            return self._integer(value)
        if isinstance(value, float):
            return self._real(value)
        if isinstance(value, datetime.datetime):
            return b"\x33" + struct.pack(">d", (value - EPOCH).total_seconds())
        if isinstance(value, bytes):
            return self._marker(0x40, len(value)) + value
        return self._string(value)

    def _integer(self, value):
        if value < 0 or value >= 2**63:
            if value >= 0 or self._one_in(4):
                return b"\x14" + value.to_bytes(16, "big", signed=True)
            return b"\x13" + struct.pack(">q", value)
        widths = [width for width in range(5) if value < 2 ** min(8 << width, 63)]
        width = self._random.choice(widths)
        return bytes([0x10 + width]) + value.to_bytes(1 << width, "big")

    def _real(self, value):
        try:
            single = struct.pack(">f", value)
        except OverflowError:
            single = b""
        wide = struct.pack(">d", struct.unpack(">f", single)[0]) if single else b""
        if wide == struct.pack(">d", value) and self._one_in(2):
            return b"\x22" + single
        return b"\x23" + struct.pack(">d", value)

    def _string(self, value):
        if value.isascii() and not self._one_in(4):
            return self._marker(0x50, len(value)) + value.encode()
        units = value.encode("utf-16-be")
        return self._marker(0x60, len(units) // 2) + units

    def _marker(self, kind, count):
        if count < 15 and not self._one_in(8):
            return bytes([kind + count])
        width = self._random.choice([width for width in range(4) if count < 256 ** (1 << width)])
        return bytes([kind + 15, 0x10 + width]) + count.to_bytes(1 << width, "big")

    def _file(self, top):
        count = len(self._objects)
        order = self._random.sample(range(count), count) if self._one_in(2) else range(count)
        reference_width = self._width(count)
        body, offsets = bytearray(b"bplist00"), {}
        for number in order:
            offsets[number] = len(body)
            body += self._bytes_of(self._objects[number], reference_width)
        table = len(body)
        offset_width = self._width(table)
        for number in range(count):
            body += offsets[number].to_bytes(offset_width, "big")
        return bytes(body) + struct.pack(
            ">5xBBBQQQ", 0, offset_width, reference_width, count, top, table)

    def _bytes_of(self, made, reference_width):
        if isinstance(made, bytes):
            return made
        kind, count, references = made
        return self._marker(kind, count) + b"".join(
            number.to_bytes(reference_width, "big") for number in references)

    def _width(self, largest):
        """Bytes enough for `largest`, as a rule no more."""
        min_width = max(1, (largest.bit_length() + 7) // 8)
        return min_width if not self._one_in(3) else self._random.randint(min_width, 8)
