"""Writes one value as XML in ways that a serialiser never would and that mean the same."""

import base64
import datetime
import math
import re

WHITE_SPACE = ["", "", "", " ", "\n", "\t", "\r\n", "\r", " \n\t "]
MISCELLANY = ["<!-- a > b & c -->", "<!---->", "<?pi?>", "<?xml-like a?>", "<?p <dict> ?>"]
ATTRIBUTES = [" a='1'", ' b = "x>y"', " c='&lt;&#65;'\n", "\td='\"'", " e:f=\"'\"", " _g=''"]
DOCUMENT_TYPES = [
    "<!DOCTYPE plist>", '<!DOCTYPE plist SYSTEM "a.dtd">', "<!DOCTYPE plist SYSTEM 'a\"b' >",
    '<!DOCTYPE plist PUBLIC "-//A//B C" "">', "<!DOCTYPE\n p PUBLIC\t'x'\n'y'>",
]
# How a document is stored, and what its declaration calls that.
ENCODINGS = [
    ("utf-8", "UTF-8", b""), ("utf-8", "utf-8", b"\xef\xbb\xbf"), ("utf-8", None, b""),
    ("utf-16-be", "UTF-16", b"\xfe\xff"), ("utf-16-le", "UTF-16", b"\xff\xfe"),
    ("utf-16-le", None, b"\xff\xfe"), ("iso-8859-1", "ISO-8859-1", b""),
    ("us-ascii", "us-ascii", b""), ("utf-8", "US-ASCII", b"\xef\xbb\xbf"),
]


class XmlWriter:
    """Draws the form from `random`, a seeded random.Random."""

    def __init__(self, random):
        self._random = random

    def document(self, value):
        """The bytes of a document that contains `value`."""
        codec, declared, mark = self._random.choice(ENCODINGS)
        self._codec = codec
        text = self._prolog(declared) + self._root(value) + self._between()
        return mark + text.encode(codec)

    def _one_in(self, count):
        return self._random.randrange(count) == 0

    def _prolog(self, declared):
        must_declare = self._codec in ("iso-8859-1", "us-ascii")
        prolog = ""
        if must_declare or not self._one_in(4):
            quote = self._random.choice("'\"")
            encoding = f" encoding={quote}{declared}{quote}" if declared else ""
            alone = self._random.choice(["", "", " standalone='yes'", ' standalone = "no"  '])
            prolog = f"<?xml version={quote}1.0{quote}{encoding}{alone}?>"
        prolog += self._between() if prolog else self._random.choice(["", "\n", "<!-- -->"])
        if self._one_in(2):
            prolog += self._random.choice(DOCUMENT_TYPES) + self._between()
        return prolog

    def _root(self, value):
        if self._one_in(5):
            return self._element(value)
        inner = self._between() + self._element(value) + self._between()
        return self._tagged("plist", inner)

    def _between(self):
        """White space, comments and processing instructions, as they may be between tags."""
        text = self._random.choice(WHITE_SPACE)
        while self._one_in(8):
            text += self._random.choice(MISCELLANY) + self._random.choice(WHITE_SPACE)
        return text

    def _tagged(self, name, content):
        attributes = self._random.choice(ATTRIBUTES) if self._one_in(8) else ""
        spaces = self._random.choice(["", "", "", " ", "\n"])
        if not content and self._one_in(2):
            return f"<{name}{attributes}{spaces}/>"
        return f"<{name}{attributes}{spaces}>{content}</{name}{spaces}>"

    def _element(self, value):
        if isinstance(value, dict):
            parts = (self._tagged("key", self._text(key)) + self._between() + self._element(part)
                     for key, part in value.items())
            return self._tagged("dict", self._joined(parts))
        if isinstance(value, list):
            return self._tagged("array", self._joined(map(self._element, value)))
        if isinstance(value, bool):
            return self._tagged("true" if value else "false", "")
        if isinstance(value, str):
            return self._tagged("string", self._text(value))
        name, text = self._leaf(value)
        return self._tagged(name, self._interrupted(text))

    def _joined(self, parts):
        return "".join(self._between() + part for part in parts) + self._between()

    def _leaf(self, value):
        if isinstance(value, int):
            return "integer", self._integer(value)
        if isinstance(value, float):
            return "real", self._real(value)
        if isinstance(value, datetime.datetime):
            return "date", (f"{value.year:04}-{value.month:02}-{value.day:02}T{value.hour:02}:"
                            f"{value.minute:02}:{value.second:02}Z")
        return "data", self._data(value)

    def _integer(self, value):
        zeros = self._random.choice(["", "", "0", "000"])
        if value >= 0 and self._one_in(3):
            return f"0x{zeros}{self._random.choice([f'{value:x}', f'{value:X}'])}"
        sign = "-" if value < 0 else self._random.choice(["", "", "+"])
        return f"{sign}{zeros}{abs(value)}"

    def _real(self, value):
        if math.isnan(value):
            sign = "-" if math.copysign(1, value) < 0 else self._random.choice(["", "+"])
            return sign + self._random.choice(["nan", "NaN", "NAN"])
        if math.isinf(value):
            sign = "-" if value < 0 else self._random.choice(["", "+"])
            return sign + self._random.choice(["inf", "INF", "infinity", "Infinity"])
        if value == int(value) and abs(value) < 1e25 and self._one_in(2):
            return ("-" if math.copysign(1, value) < 0 else "") + f"{abs(int(value))}."
        text = self._random.choice([repr(value), f"{value:.17e}", f"{value:.25E}", f"{value:.17g}"])
        return re.sub(r"^(-?)0\.", r"\1.", text) if self._one_in(4) else text

    def _data(self, value):
        text = base64.b64encode(value).decode()
        if self._one_in(3):
            width = self._random.randint(1, 20)
            text = "".join(self._random.choice(WHITE_SPACE) + text[at:at + width]
                           for at in range(0, len(text), width)) + self._random.choice(WHITE_SPACE)
        return text

    def _interrupted(self, text):
        """The text of a leaf, rarely with a comment, a reference or a CDATA section in it."""
        if not text or not self._one_in(12):
            return text
        at = self._random.randrange(len(text))
        piece = self._random.choice(
            [f"<!-- -->{text[at]}", f"&#{ord(text[at])};", f"<![CDATA[{text[at]}]]>"])
        return text[:at] + piece + text[at + 1:]

    def _text(self, text):
        line_end = self._random.choice(["\n", "\n", "\r\n", "\r"])
        if self._one_in(10) and "]]>" not in text and "\r" not in text and self._fits(text):
            return f"<![CDATA[{text}]]>".replace("\n", line_end)
        return "".join(self._character(character, line_end) for character in text)

    def _fits(self, text):
        try:
            text.encode(self._codec)
        except UnicodeEncodeError:
            return False
        return True

    def _character(self, character, line_end):
        named = {"<": "&lt;", ">": "&gt;", "&": "&amp;", '"': "&quot;", "'": "&apos;"}
        if character in "<&>\r" or not self._fits(character) or self._one_in(20):
            number = self._random.choice([f"&#{ord(character)};", f"&#x{ord(character):04x};"])
            return self._random.choice([number, named.get(character, number)])
        return line_end if character == "\n" else character
