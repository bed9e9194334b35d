"""Makes the documents that are compared: random values in every form, sound and damaged."""

import plistlib
import random
import re

from binary_forms import BinaryWriter
from damage import Damager
from descriptions import describe
from values import ValueMaker
from xml_forms import XmlWriter

DAMAGED = 0.75  # of all documents
NAN = re.compile(r"real\(([7f])ff(?!0{13})[0-9a-f]{13}\)")


class DocumentMaker:
    """Makes the same documents from the same seed. `convert` turns XML into binary elsewhere."""

    def __init__(self, seed, convert):
        self._random = random.Random(seed)
        self._values = ValueMaker(self._random)
        self._xml = XmlWriter(self._random)
        self._binary = BinaryWriter(self._random)
        self._damager = Damager(self._random)
        self._convert = convert

    def make(self):
        """A document and the description of its value, None where that is unknown."""
        form = self._random.choice([self._plistlib_xml, self._plistlib_binary, self._hand_xml,
                                    self._hand_xml, self._hand_binary, self._hand_binary,
                                    self._plistutil_binary])
        document, expected = form(self._values.document())
        if self._random.random() < DAMAGED:
            return self._damager.damage(document), None
        return document, expected

    def _plistlib_xml(self, value):
        document = plistlib.dumps(value, fmt=plistlib.FMT_XML, sort_keys=False)
        expected = describe(value)
        loses_something = "\\x0d" in expected or NAN.search(expected)
        return document, None if loses_something else expected

    def _plistlib_binary(self, value):
        document = plistlib.dumps(value, fmt=plistlib.FMT_BINARY, sort_keys=False)
        return document, None  # -0 and 0 are one object to it, and so are True and 1 as keys

    def _hand_xml(self, value):
        return self._xml.document(value), _without_payload(describe(value))

    def _hand_binary(self, value):
        return self._binary.document(value), describe(value)

    def _plistutil_binary(self, value):
        return self._convert(self._xml.document(value)), None


def _without_payload(description):
    """As XML has it: a NaN has a sign and nothing else."""
    return NAN.sub(r"real(\1ff8000000000000)", description)
