"""Finds the small changes of C++ source that a test should notice.

The source is cut into tokens and not parsed further: a binary operator is recognised by the blanks that
clang-format puts around it, the extent of its operands by brackets and precedence. Where that is wrong the
changed source does not compile, which costs time and does no harm. A mutation keeps the original and adds
the variant, with a condition ON that chooses between them, so all of a file can be compiled together.
"""

import collections
import re

# The edits (start, end, before, after) insert `before` at offset `start` and `after` at offset `end`.
Mutation = collections.namedtuple("Mutation", "line description edits")
Token = collections.namedtuple("Token", "kind text start end level")
TOKEN = re.compile(
    r"""
      (?P<unseen>^[ \t]*\#(?:[^\n\\]|\\.)*|//[^\n]*|/\*.*?\*/|\s+)
    | (?P<string>(?:R"(?P<delimiter>[^()\\\s]*)\(.*?\)(?P=delimiter)"\w*|\s*"(?:[^"\\\n]|\\.)*"\w*)+)
    | (?P<character>'(?:[^'\\\n]|\\.)+')
    | (?P<number>\.?[0-9](?:[eEpP][+-]|'?[\w.])*)
    | (?P<word>[A-Za-z_]\w*)
    | (?P<operator><=>|<<=|>>=|->|\.\.\.|::|[-+*/%&|^=!<>]=|&&|\|\||<<|>>|\+\+|--|.)
    """,
    re.VERBOSE | re.DOTALL | re.MULTILINE)

# What an operator becomes: by a call with the operands as arguments, by negating the result, by negating the
# result and the operands.
CALLED = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "+": "-", "-": "+"}
NEGATED = {"==": "!=", "!=": "==", "<": ">=", ">=": "<", ">": "<=", "<=": ">"}
EXCHANGED = {"&&": "||", "||": "&&"}

# How tightly a token binds: what ends a statement, what ends an expression, the binary operators.
LEVELS = {token: level for level, tokens in enumerate(
    [";", "= += -= *= /= %= &= |= ^= <<= >>= , ? : return case else requires", "||", "&&", "|", "^", "&",
     "== !=", "< <= > >=", "<=>", "<< >>", "+ -", "* / %"]) for token in tokens.split()}
EXPRESSION_END, OPERAND = 1, 99
OPENING, CLOSING = set("([{"), set(")]}")
SKIPPED = {"static_assert", "reserve"}  # the compiler evaluates one, and no result shows the other


def apply(source, mutations, on="::mutant::On({})", forced="false"):
    """The source with the mutations {number: mutation}. `on` is the condition for a number. Operators that the
    operands do not have are not used, unless `forced` is "true"."""
    pieces = []
    for number, mutation in mutations.items():
        for start, end, before, after in mutation.edits:
            # At one offset: inner ends, outer ends, outer starts, inner starts. A call is inside a negation.
            is_call = "auto" in before
            before = before.replace("FORCED", forced).replace("ON", on.format(number)).replace("\n", " ")
            pieces.append((start, 1, -end, is_call, number, before))
            pieces.append((end, 0, -start, not is_call, -number, after))
    for offset, *_, text in sorted(pieces, reverse=True):
        source = source[:offset] + text + source[offset:]
    return source


def mutations_of(source):
    """Every mutation of the source, by offset."""
    tokens = []
    for match in TOKEN.finditer(source):
        level = LEVELS.get(match[0], OPERAND)
        if level > EXPRESSION_END and not (source[match.start() - 1] + source[match.end():][:1]).isspace():
            level = OPERAND
        tokens.append(Token(match.lastgroup, match[0], *match.span(), level))
    tokens = [token for token in tokens if token.kind != "unseen"]
    for i in reversed([i for i, token in enumerate(tokens) if token.text in SKIPPED]):
        del tokens[i:right_end(tokens, i + 1) + 1]
    found = [(tokens[i].start, *mutation) for i in range(len(tokens)) for mutation in mutations_at(tokens, i)]
    return [Mutation(source.count("\n", 0, offset) + 1, *mutation) for offset, *mutation in found]


def left_start(tokens, i, level):
    """The index where the operand before token `i`, an operator of that level, starts."""
    depth = 0
    while i > 0 and (depth > 0 or tokens[i - 1].text not in OPENING and tokens[i - 1].level >= level):
        i -= 1
        depth += (tokens[i].text in CLOSING) - (tokens[i].text in OPENING)
    return i


def right_end(tokens, i, level=-1):
    """The index where the operand after token `i`, an operator of that level, ends. Without a level: the
    index of the bracket that closes the one at `i`."""
    depth = 0
    for i in range(i + 1, len(tokens)):
        if depth == 0 and (tokens[i].text in CLOSING or tokens[i].level <= level):
            break
        depth += (tokens[i].text in OPENING) - (tokens[i].text in CLOSING)
    return i


def mutations_at(tokens, i):
    """The mutations of a token: (description, edits)."""
    token = tokens[i]
    if token.text in ("if", "while"):
        yield from condition_mutations(tokens, i)
    elif token.text == "?":
        yield from condition_negated(tokens, left_start(tokens, i, EXPRESSION_END + 1), i)
    elif token.text == "!":
        yield "! dropped", [negation(tokens, i, right_end(tokens, i, OPERAND - 1))]
    elif token.level < OPERAND:
        yield from operator_mutations(tokens, i)
    else:
        for text in literal_replacements(token.kind, token.text):
            yield f"{token.text} becomes {text}", [(token.start, token.end, f"(ON ? {text} : ", ")")]


def negation(tokens, first, last):
    """An edit that negates the tokens from index `first` to before `last`."""
    return tokens[first].start, tokens[last - 1].end, "(ON != static_cast<bool>(", "))"


def operator_mutations(tokens, i):
    token, text = tokens[i], tokens[i].text
    first, last = left_start(tokens, i, token.level), right_end(tokens, i, token.level)
    whole = negation(tokens, first, last)
    if other := CALLED.get(text):
        call = ("([](auto&& l, auto&& r) -> decltype(auto) { "
                f"if constexpr (FORCED || requires {{ l {other} r; }}) if (ON) return l {other} r; "
                f"return l {text} r; }}(")
        yield f"{text} becomes {other}", [(*whole[:2], call, "))"), (token.start, token.end, ", /*", "*/")]
    if other := NEGATED.get(text):
        yield f"{text} becomes {other}", [whole]
    if other := EXCHANGED.get(text):
        yield f"{text} becomes {other}", [whole, negation(tokens, first, i), negation(tokens, i + 1, last)]


def condition_mutations(tokens, keyword):
    """The negated condition of the `if` or `while` at that index."""
    closing = right_end(tokens, keyword + 1 + (tokens[keyword + 1].text == "constexpr"))
    first = left_start(tokens, closing, EXPRESSION_END)
    value = left_start(tokens, closing, EXPRESSION_END + 1)
    if tokens[value - 1].text == "=":  # a declaration: its name is tested
        name, end = tokens[value - 2].text, tokens[closing].start
        yield f"{name} negated", [(end, end, f"; ON != static_cast<bool>({name})", "")]
    else:
        yield from condition_negated(tokens, first, closing)


def condition_negated(tokens, first, last):
    """Negates the tokens from index `first` to before `last`, unless a mutation of one of them is similar."""
    has_operator = left_start(tokens, last, LEVELS["<=>"]) > first
    if not has_operator and tokens[first].text not in ("true", "false", "!"):
        yield "condition negated", [negation(tokens, first, last)]


def literal_replacements(kind, text):
    if text in ("true", "false"):
        return ["false" if text == "true" else "true"]
    if kind == "number":
        return [f"{text} + 1", f"{text} - 1"][:1 if re.fullmatch(r"0[xX]?0*[uUlLzZ]*", text) else 2]
    if kind == "character":
        return [f"static_cast<char>({text} + 1)"]
    if kind == "string":  # its first character; an escape sequence is kept
        start = text.index("(" if text[0] == "R" else '"') + 1
        other = "y" if text[start] == "x" else "x"
        return [text[:start] + other + text[start + (text[start] not in '\\")'):]]
    return []
