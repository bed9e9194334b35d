"""Whether an XML document has the fault for which our reader refuses it.

Each function looks for the fault independently, at the position that our reader reports.
"""

import datetime
import html
import re

ELEMENTS = ["array", "data", "date", "dict", "false", "integer", "key", "real", "string", "true"]
OPENINGS = re.compile(
    r"[ \t\r\n]*<(\?xml|!DOCTYPE|!--|plist|(%s)([ \t\r\n>/]|$))" % "|".join(ELEMENTS))
DECLARATION = re.compile(
    r"""<\?xml[ \t\r\n]+version[ \t\r\n]*=[ \t\r\n]*(?P<q>['"])(?P<version>[^'"]*)(?P=q)"""
    r"""([ \t\r\n]+encoding[ \t\r\n]*=[ \t\r\n]*(?P<r>['"])(?P<encoding>[^'"]*)(?P=r))?"""
    r"""([ \t\r\n]+standalone[ \t\r\n]*=[ \t\r\n]*(?P<s>['"])(yes|no)(?P=s))?[ \t\r\n]*\?>""")
MARKS = {b"\xef\xbb\xbf": "utf-8", b"\xfe\xff": "utf-16-be", b"\xff\xfe": "utf-16-le"}
MARKUP_IN_TEXT = re.compile(r"(<!--.*?-->|<\?.*?\?>|<!\[CDATA\[.*?\]\]>)", re.DOTALL)
LEAF = re.compile(r"""<(\w+)(?:[^<>"']|"[^"]*"|'[^']*')*?(/>|>(.*?)</\1\s*>)""", re.DOTALL)
DECIMAL = r"([0-9]+\.?[0-9]*|\.[0-9]+)([eE][+-]?[0-9]+)?"


def mark_of(document):
    return next((mark for mark in MARKS if document.startswith(mark)), b"")


def text_of(document):
    """The text of a document, without its byte-order mark."""
    mark = mark_of(document)
    if mark:
        return document[len(mark):].decode(MARKS[mark], "replace")
    text = document.decode("latin-1")
    declared = DECLARATION.match(text)
    if declared and (declared["encoding"] or "").lower() == "iso-8859-1":
        return text
    return document.decode("utf-8", "replace")


def index_of(text, line, column):
    """The index of a line and a column; lines end with LF, CR or both."""
    starts = [0] + [match.end() for match in re.finditer("\r\n|\r|\n", text)]
    return starts[line - 1] + column - 1


def without_encoding(document):
    """The document without its declared encoding; None when it declares none."""
    mark = mark_of(document)
    codec = MARKS.get(mark, "utf-8")
    errors = "surrogateescape" if codec == "utf-8" else "surrogatepass"
    end = len(document) if codec == "utf-8" else len(document) // 2 * 2
    text = document[len(mark):end].decode(codec, errors)
    declared = DECLARATION.match(text)
    if not declared or not declared[3]:
        return None
    changed = text[:declared.start(3)] + text[declared.end(3):]
    return mark + changed.encode(codec, errors) + document[end:]


def content_at(text, index):
    """The name and the characters of the leaf element that begins at `index`."""
    element = LEAF.match(text, index)
    pieces = MARKUP_IN_TEXT.split(element[3] or "")
    return element[1], "".join(map(_characters, pieces))


def _characters(piece):
    if piece.startswith("<![CDATA["):
        return piece[9:-3]
    return "" if piece.startswith("<") else html.unescape(piece)


def is_invalid_leaf(text, index):
    name, content = content_at(text, index)
    return not {"integer": _is_integer, "real": _is_real, "date": _is_date, "data": _is_data,
                "true": _is_nothing, "false": _is_nothing}[name](content)


def _is_nothing(content):
    return content == ""


def _is_integer(content):
    if not re.fullmatch(r"[+-]?(0x[0-9a-fA-F]+|[0-9]+)", content):
        return False
    digits = content.lstrip("+-")
    number = int(digits, 16 if digits.startswith("0x") else 10)
    return -(2**63) <= (-number if content[0] == "-" else number) < 2**64


def _is_real(content):
    if re.fullmatch(r"[+-]?(nan|inf|infinity)", content, re.IGNORECASE):
        return True
    if not re.fullmatch(r"[+-]?" + DECIMAL, content):
        return False
    is_zero = not re.search("[1-9]", re.split("[eE]", content)[0])
    return is_zero or 0 < abs(float(content)) < float("inf")


def _is_date(content):
    if not re.fullmatch(r"[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z", content):
        return False
    try:
        datetime.datetime(*map(int, re.findall("[0-9]+", content)))
    except ValueError:
        return False
    return True


def _is_data(content):
    return re.fullmatch(
        r"([A-Za-z0-9+/]{4})*([A-Za-z0-9+/]{2}==|[A-Za-z0-9+/]{3}=)?",
        re.sub("[ \t\r\n]", "", content)) is not None


def name_at(text, index):
    return re.compile(r"<([^\s<>/]*)").match(text, index)[1]


def is_foreign_element(text, index):
    return name_at(text, index) not in ELEMENTS


def is_text(text, index):
    return text[index] not in "< \t\r\n"


def _tag_before(text, index):
    """What begins the last tag before `index`, its name, and what ends it."""
    tags = re.findall(r"<(/?)(\w+)[^<>]*?(/?)>", MARKUP_IN_TEXT.sub("", text[:index]))
    return tags[-1] if tags else ("", "", "")


def is_inside_leaf(text, index):
    opening, name, closing = _tag_before(text, index)
    return text[index] == "<" and not opening and not closing and name in ELEMENTS and (
        name not in ("array", "dict"))


def is_after_value(text, index):
    opening, name, closing = _tag_before(text, index)
    return text[index] == "<" and name in ELEMENTS and bool(opening or closing)


def is_empty_plist(text, _index):
    return re.search(r"<plist\b[^<>]*(/>|>(\s|<!--.*?-->|<\?.*?\?>)*</plist)", text, re.DOTALL)


def is_after_cdata_opening(text, index):
    return text.startswith("<![CDATA[", index - 1)


def is_no_character(text, index):
    return text[index] == "\ufffd"


def is_key(text, index):
    return name_at(text, index) == "key"


def is_empty_key(text, index):
    return content_at(text, index) == ("key", "")


def is_undefined_entity(text, index):
    entity = re.compile(r"&([^;#]+);").match(text, index)
    return entity and entity[1] not in ("amp", "lt", "gt", "quot", "apos") and re.search(
        r"<!DOCTYPE\s+\S+\s+(SYSTEM|PUBLIC)", text)


def is_internal_subset(text, index):
    return text[index] == "[" and "<!DOCTYPE" in text[:index]


def has_odd_version(text, _index):
    """A declaration that is well-formed but for its version."""
    declared = DECLARATION.match(text)
    return declared and not re.fullmatch(r"1\.[0-9]+", declared["version"])


def names_other_encoding(text, _index):
    declared = DECLARATION.match(text)
    return declared and declared["encoding"].lower() not in ("utf-8", "us-ascii", "iso-8859-1")


def is_too_deep(text, index):
    depth = 0
    for match in re.finditer(r"<(/?)(array|dict)\b[^<>]*?(/?)>", text[:index]):
        depth += 0 if match[3] else -1 if match[1] else 1
    return depth == 512 and name_at(text, index) in ("array", "dict")


def is_not_detected(document):
    return not OPENINGS.match(text_of(document)) and not is_utf16_without_mark(document)


def is_utf16_without_mark(document):
    return document[:2] in (b"<\0", b"\0<")
