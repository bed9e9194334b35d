"""Makes random property-list values, of plistlib's own types."""

import datetime
import math
import struct

BOUNDARIES = [0, 2**7, 2**8, 2**15, 2**16, 2**31, 2**32, 2**53, 2**62, 2**63, 2**64 - 1]
REALS = [
    0.0, -0.0, 1.0, -1.5, 0.1, 1 / 3, 1e22, 1e23, 1e300, -1e-300, 2.0**53 + 2, 5e-324,
    2.2250738585072014e-308, 1.7976931348623157e308, math.inf, -math.inf, math.nan,
]
DATES = [
    datetime.datetime(1, 1, 1), datetime.datetime(9999, 12, 31, 23, 59, 59),
    datetime.datetime(1969, 12, 31, 23, 59, 59), datetime.datetime(1970, 1, 1),
    datetime.datetime(2000, 2, 29), datetime.datetime(2001, 1, 1), datetime.datetime(1000, 1, 1),
]
ALPHABETS = [
    "abcdefghijklmnopqrstuvwxyz0123456789 _-.", "<>&\"'];:=/![CDATA", "\t\n\r é\x7f\x85\xa0ÿ",
    "Ωжא漢\u2028\ufeff\ufffd\ud7ff\ue000", "😀\U00010000\U0010fffd𝄞",
]
LENGTHS = [0, 1, 2, 3, 4, 5, 13, 14, 15, 16, 17, 64, 65, 254, 255, 256, 257, 1000]


class ValueMaker:
    """Draws values from `random`, a seeded random.Random."""

    def __init__(self, random):
        self._random = random
        self._shared = []

    def document(self):
        """A value with few parts in most cases, and now and then a deep or much shared one."""
        self._shared = []
        kind = self._random.random()
        if kind < 0.02:
            return self._nested(self._random.choice([20, 200, 510, 511]))
        if kind < 0.04:
            return self._doubled(self._random.randint(1, 9))
        if kind < 0.1:
            return self._leaf()
        return self._value(self._random.randint(1, 4), top=True)

    def _value(self, depth, top=False):
        draw = self._random.random()
        if draw < 0.1 and self._shared:
            return self._random.choice(self._shared)
        if depth == 0 or (draw < 0.55 and not top):
            return self._leaf()
        count = self._random.choice([0, 1, 2, 3, 4, 5, 14, 15, 16] if depth < 3 else [1, 2, 3])
        if self._random.random() < 0.6:
            made = {self._key(): self._value(depth - 1) for _ in range(count)}
        else:
            made = [self._value(depth - 1) for _ in range(count)]
        self._shared.append(made)
        return made

    def _nested(self, depth):
        value = self._leaf()
        for _ in range(depth):
            value = [value] if self._random.random() < 0.5 else {self._key(): value}
        return value

    def _doubled(self, times):
        value = [self._leaf()]
        for _ in range(times):
            value = [value, value]
        return value

    def _leaf(self):
        return self._random.choice(
            [self._string, self._string, self.integer, self.real, self._boolean, self._data,
             self.date])()

    def _string(self):
        return self._text(self._random.choice(LENGTHS if self._random.random() < 0.3 else [3, 8]))

    def _key(self):
        return self._text(self._random.choice([0, 1, 1, 2, 3, 6, 14, 15, 16, 64, 65]))

    def _text(self, length):
        alphabet = ALPHABETS[0]
        if self._random.random() < 0.4:
            alphabet = self._random.choice(ALPHABETS) + "ab"
        return "".join(self._random.choices(alphabet, k=length))

    def integer(self):
        if self._random.random() < 0.3:
            return self._random.randint(-100, 1000)
        number = self._random.choice(BOUNDARIES) + self._random.randint(-2, 2)
        if self._random.random() < 0.3:
            number = -number
        return max(-(2**63), min(number, 2**64 - 1))

    def real(self):
        draw = self._random.random()
        if draw < 0.5:
            return self._random.choice(REALS)
        if draw < 0.75:
            return self._random.uniform(-1e6, 1e6)
        bits = self._random.choice([b"", b"\x7f\xf8", b"\xff\xf8"])  # NaN in many forms
        return struct.unpack(">d", bits + self._random.randbytes(8 - len(bits)))[0]

    def _boolean(self):
        return self._random.random() < 0.5

    def _data(self):
        long = self._random.random() < 0.2
        return self._random.randbytes(self._random.choice(LENGTHS) if long else
                                      self._random.randint(0, 12))

    def date(self):
        if self._random.random() < 0.5:
            return self._random.choice(DATES)
        span = int((DATES[1] - DATES[0]).total_seconds())
        return DATES[0] + datetime.timedelta(seconds=self._random.randint(0, span))
