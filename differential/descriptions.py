"""The result of a reader, in the format of describe_property_list."""

import calendar
import datetime
import plistlib
import re
import struct
from typing import NamedTuple

MAX_DESCRIPTION_SIZE = 200_000

TOKEN = re.compile(r'"[^"]*"|\w+\([^)]*\)|<[^>]*>|[{}\[\],: ]|[^{}\[\],: "<]+')


class Outcome(NamedTuple):
    """The description of a value, or else the reason why there is none."""

    value: str | None
    error: str | None = None
    written: bytes | None = None  # the intermediate XML, if any

    @property
    def accepted(self):
        return self.value is not None


def tokens_of(description):
    """The leaves, brackets and separators of a description."""
    return TOKEN.findall(description)


def quote(text):
    """A string between quotes, every byte of its UTF-8 that is not plain as \\xHH."""
    return '"' + "".join(map(_quoted_byte, text.encode("utf-8", "surrogatepass"))) + '"'


def _quoted_byte(byte):
    plain = 0x20 <= byte <= 0x7E and byte not in b'"\\'
    return chr(byte) if plain else f"\\x{byte:02x}"


def unquote(token):
    """The string of which `token` is the quoted form."""
    raw = re.sub(r"\\x(..)", lambda match: chr(int(match[1], 16)), token[1:-1])
    return raw.encode("latin-1").decode("utf-8", "surrogatepass")


def describe(value):
    """Describes what plistlib reads, also kinds that are not property-list values."""
    pieces = []
    _Describer(pieces).describe(value)
    return "".join(pieces)[:MAX_DESCRIPTION_SIZE]


class _Describer:
    """Appends the pieces of a description until they are long enough."""

    def __init__(self, pieces):
        self._pieces = pieces
        self._length = 0
        self._open = set()

    def describe(self, value):
        if self._length >= MAX_DESCRIPTION_SIZE:
            return
        if isinstance(value, (dict, list)):
            self._container(value)
        else:
            self._append(describe_leaf(value))

    def _append(self, piece):
        self._pieces.append(piece)
        self._length += len(piece)

    def _container(self, value):
        if id(value) in self._open:
            self._append("cycle")
            return
        self._open.add(id(value))
        brackets, parts = ("{}", value.items()) if isinstance(value, dict) else ("[]", value)
        self._append(brackets[0])
        for index, part in enumerate(parts):
            if self._length >= MAX_DESCRIPTION_SIZE:
                break
            if index:
                self._append(", ")
            if isinstance(value, dict):
                self._append(describe_leaf(part[0]) + ": ")
                part = part[1]
            self.describe(part)
        self._append(brackets[1])
        self._open.discard(id(value))


def describe_leaf(value):
    if isinstance(value, str):
        return quote(value)
    if isinstance(value, bool):
        return "true" if value else "false"
    if isinstance(value, float):
        return f"real({struct.pack('>d', value).hex()})"
    if isinstance(value, bytes):
        return f"<{value.hex()}>"
    if isinstance(value, datetime.datetime):
        fraction = f" and {value.microsecond} microseconds" if value.microsecond else ""
        return f"date({calendar.timegm(value.timetuple())}{fraction})"
    if isinstance(value, plistlib.UID):
        return f"uid({value.data})"
    return "null" if value is None else str(value)

