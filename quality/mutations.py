"""Small changes to C++ source, each of which a test should notice.

The source is cut into tokens, no further: operators are told from template brackets and references
by the blanks around them, which clang-format puts around the former alone. A change that does not
compile is no loss, so nothing is parsed beyond that.
"""

import dataclasses
import re

TOKEN = re.compile(
    r"""
      (?P<preprocessor>^[ \t]*\#(?:[^\n\\]|\\.)*)
    | (?P<comment>//[^\n]*|/\*.*?\*/)
    | (?P<blank>[^\S\n]+|\n)
    | (?P<raw>R"(?P<delimiter>[^()\\\s]*)\(.*?\)(?P=delimiter)")
    | (?P<string>"(?:[^"\\\n]|\\.)*")
    | (?P<character>'(?:[^'\\\n]|\\.)+')
    | (?P<number>\.?[0-9](?:[eEpP][+-]|'?[\w.])*)
    | (?P<word>[A-Za-z_]\w*)
    | (?P<operator><=>|<<=|>>=|->|\.\.\.|::|[-+*/%&|^=!<>]=|&&|\|\||<<|>>|\+\+|--|.)
    """,
    re.VERBOSE | re.DOTALL | re.MULTILINE)

# What takes the place of an operator that has blanks on both sides. A comparison becomes its
# neighbour at the boundary and its negation.
OPERATORS = {
    "==": ["!="],
    "!=": ["=="],
    "<": ["<=", ">="],
    "<=": ["<", ">"],
    ">": [">=", "<="],
    ">=": [">", "<"],
    "&&": ["||"],
    "||": ["&&"],
    "+": ["-"],
    "-": ["+"],
    "+=": ["-="],
    "-=": ["+="],
}
COMPARISONS = {"==", "!=", "<", "<=", ">", ">="}
WORDS = {"true": "false", "false": "true"}

LITERAL_CHARACTER = re.compile(r"\\(?:[0-7]{1,3}|x[0-9A-Fa-f]+|u\w{4}|U\w{8}|.)|.", re.DOTALL)
INTEGER = re.compile(r"(0[xX][0-9A-Fa-f']+|[0-9][0-9']*)([uUlLzZ]*)$")
OPENING = {"(": ")", "[": "]", "{": "}"}
CLOSING = set(OPENING.values())

# What stands in brackets behind these is left alone: the compiler tests the one, and room that is
# made ahead of need shows nowhere.
UNSEEN = {"static_assert", "reserve"}

# Where the condition of a conditional expression begins, read backwards.
BEFORE_CONDITION = {"=", "return", ",", ";", "?", ":", "{", "}", "<<", "+=", "case"}


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    stands_alone: bool  # with white space on both sides

    @property
    def end(self):
        return self.start + len(self.text)


@dataclasses.dataclass(frozen=True)
class Edit:
    """Puts `text` in the place of what stands from offset `start` to offset `end`."""

    start: int
    end: int
    text: str


@dataclasses.dataclass(frozen=True)
class Mutation:
    """One change: the edits, in order, and what tells it from every other of its file.

    `before` and `after` are the line of the first edit without its indentation, `above` is the line
    above it; `ordinal` counts the changes of the file that are alike in all three. So the change is
    still known after the lines around it have moved.
    """

    edits: tuple
    line: int
    above: str
    before: str
    after: str
    ordinal: int

    def apply(self, source):
        """The whole source with the change made."""
        return apply_edits(source, self.edits)


def apply_edits(source, edits):
    for edit in reversed(edits):
        source = source[:edit.start] + edit.text + source[edit.end:]
    return source


def mutations_of(source):
    """Every change to the source, in the order of their places."""
    seen = {}
    mutations = []
    for edits in sorted(all_edits(source), key=lambda edits: edits[0].start):
        line, *texts = describe(source, edits)
        ordinal = seen[tuple(texts)] = seen.get(tuple(texts), -1) + 1
        mutations.append(Mutation(tuple(edits), line, *texts, ordinal))
    return mutations


def describe(source, edits):
    """The number of the first edit's line, the line above it, the line, and the line as changed."""
    start = source.rfind("\n", 0, edits[0].start) + 1
    end = (source + "\n").index("\n", edits[0].start)
    inside = [
        Edit(edit.start - start, edit.end - start, edit.text) for edit in edits if edit.end <= end
    ]
    before = source[start:end]
    lines_above = source[:start].splitlines()
    above = lines_above[-1].strip() if lines_above else ""
    return len(lines_above) + 1, above, before.strip(), apply_edits(before, inside).strip()


def tokenise(source):
    """The tokens that matter: no white space, comments or preprocessor lines."""
    found = (Token(match.lastgroup, match.group(), match.start(), stands_alone(source, match))
             for match in TOKEN.finditer(source))
    return [token for token in found if token.kind not in ("blank", "comment", "preprocessor")]


def stands_alone(source, match):
    around = source[match.start() - 1:match.start()] + source[match.end():match.end() + 1]
    return len(around) == 2 and not around.strip()


def all_edits(source):
    tokens = drop_unseen(tokenise(source))
    for i, token in enumerate(tokens):
        for text in replacements(token, tokens[i - 1].text if i > 0 else ""):
            yield [Edit(token.start, token.end, text)]
        if token.text in ("if", "while") and i + 1 < len(tokens):
            yield from condition_edits(tokens, i)
        if token.text == "?":
            yield from conditional_edits(tokens, i)


def drop_unseen(tokens):
    kept = []
    i = 0
    while i < len(tokens):
        if tokens[i].text in UNSEEN:
            i = closing_index(tokens, i + 1)
        else:
            kept.append(tokens[i])
        i += 1
    return kept


def closing_index(tokens, opening):
    """The index of the bracket that closes the one at index `opening`."""
    depth = 0
    for i in range(opening, len(tokens)):
        if tokens[i].text in OPENING:
            depth += 1
        elif tokens[i].text in CLOSING:
            depth -= 1
            if depth == 0:
                return i
    return len(tokens) - 1


def replacements(token, previous):
    """What a token that stands behind the token `previous` gives way to, each by itself."""
    if token.text == "!":
        return [""]
    if token.kind == "operator":
        return OPERATORS.get(token.text, []) if token.stands_alone else []
    if token.kind == "word":
        return [WORDS[token.text]] if token.text in WORDS else []
    if token.kind == "number":
        return number_replacements(token.text)
    if token.kind == "character":
        return ["'" + other_character(token.text[1:-1]) + "'"]
    if token.kind == "string" and previous != "extern":
        return ['"' + other_text(token.text[1:-1]) + '"']
    if token.kind == "raw":
        opening, closing = token.text.index("(") + 1, token.text.rindex(")")
        changed = token.text[opening:closing] + "x"
        return [token.text[:opening] + changed + token.text[closing:]]
    return []


def number_replacements(text):
    """The numbers beside this one; of a real number one that is far from it."""
    integer = INTEGER.match(text)
    if not integer:
        return [f"({text} * 2 + 1)"]
    digits, suffix = integer.groups()
    if digits[:2] in ("0x", "0X"):
        value, shape = int(digits.replace("'", ""), 16), "0x{:X}"
    else:
        value, shape = int(digits.replace("'", ""), 8 if digits[0] == "0" else 10), "{}"
    neighbours = [value + 1] + ([value - 1] if value > 0 else [])
    return [shape.format(neighbour) + suffix for neighbour in neighbours]


def other_character(character):
    """A character literal's inside that stands for another character."""
    if len(character) > 1:
        return "\\1" if character == "\\0" else "x"
    following = chr(ord(character) + 1)
    return following if following.isprintable() and following not in "'\\\x7f" else "x"


def other_text(text):
    """A string literal's inside with the character in its middle changed; an empty one is filled."""
    characters = LITERAL_CHARACTER.findall(text)
    if not characters:
        return "x"
    middle = len(characters) // 2
    characters[middle] = "x" if characters[middle] != "x" else "y"
    return "".join(characters)


def condition_edits(tokens, keyword):
    """The negated condition of the `if` or `while` at index `keyword`."""
    opening = keyword + 1
    if tokens[opening].text == "constexpr":
        opening += 1
    if tokens[opening].text != "(":
        return
    closing = closing_index(tokens, opening)
    parts = top_level(tokens, opening, closing)
    separators = [i for i in parts if tokens[i].text == ";"]
    first = separators[-1] + 1 if separators else opening + 1
    names = [i for i in parts if tokens[i].text == "=" and i > first]
    if names:
        name = tokens[names[0] - 1].text
        yield [Edit(tokens[closing].start, tokens[closing].start, f"; !({name})")]
    elif first < closing:
        yield from negation(tokens, first, closing)


def conditional_edits(tokens, question):
    """The negated condition of the conditional expression whose `?` is at index `question`."""
    first = question
    depth = 0
    while first > 0:
        text = tokens[first - 1].text
        if text in CLOSING:
            depth += 1
        elif text in OPENING and depth == 0:
            break
        elif text in OPENING:
            depth -= 1
        elif depth == 0 and text in BEFORE_CONDITION:
            break
        first -= 1
    yield from negation(tokens, first, question)


def negation(tokens, first, last):
    """Negates the tokens from index `first` to before index `last`, unless another change does."""
    operators = [tokens[i].text for i in top_level(tokens, first - 1, last)
                 if tokens[i].stands_alone]
    compound = [text for text in operators if text in ("&&", "||", "?")]
    if not compound and (tokens[first].text == "!" or COMPARISONS.intersection(operators)):
        return
    if last == first + 1 and tokens[first].text in WORDS:
        return
    yield [
        Edit(tokens[first].start, tokens[first].start, "!("),
        Edit(tokens[last - 1].end, tokens[last - 1].end, ")"),
    ]


def top_level(tokens, opening, closing):
    """The indices between two that stand within no bracket of their own."""
    depth = 0
    found = []
    for i in range(opening + 1, closing):
        if tokens[i].text in CLOSING:
            depth -= 1
        if depth == 0:
            found.append(i)
        if tokens[i].text in OPENING:
            depth += 1
    return found
