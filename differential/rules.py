"""Every way in which the readers may differ, and why ours is as it is.

A rule names the other readers that differ, states the reason in one sentence, and has documents
that show the difference. It explains a difference in one of three ways:

  message      ours refuses a document of this form with this message, the document has that fault
               by an independent check, and theirs accepts it
  reinterpret  returns the document without what makes the other reader differ and that reader's
               outcome for it, or None
  tokens       whether a leaf of ours and the corresponding leaf of theirs may differ
"""

import datetime
import math
import re
import struct
from typing import Callable, NamedTuple

import binary_faults as binary
import xml_faults as xml
from descriptions import MAX_DESCRIPTION_SIZE, Outcome, describe_leaf, tokens_of
from examples import (array_in_itself, binary_file, nested_xml, overlapping_strings,
                      overlapping_trailer, shared_arrays, shared_bytes, wide_text)
from readers import read_plistlib

PLISTLIB = "plistlib"
PLISTUTIL = "plistutil"
START_2001 = 978_307_200


class Reading(NamedTuple):
    """The outcome of one reader for a document; `serialisation` as our reader detected it."""

    serialisation: str
    outcome: Outcome


class Rule(NamedTuple):
    name: str
    readers: tuple
    reason: str
    examples: tuple
    form: str | None = None  # the serialisation that our reader detected
    message: str | None = None
    has_fault: Callable | None = None
    reinterpret: Callable | None = None
    tokens: Callable | None = None
    enough: Callable = all  # which of the examples have to show it


def agree(ours, theirs):
    """Both accept with the same value, or both refuse."""
    return ours.value == theirs.value


def explain(document, reader, ours, theirs, rules):
    """The rules that a difference meets; None when there is one that no rule explains."""
    about = [rule for rule in rules if reader in rule.readers]
    met = []
    for rule in about + about:  # one difference can hide another
        if rule.reinterpret and rule not in met and not agree(ours.outcome, theirs):
            reinterpreted = rule.reinterpret(document, ours, theirs)
            if reinterpreted is not None and reinterpreted[1][:2] != theirs[:2]:
                document, theirs = reinterpreted
                met.append(rule)
    if agree(ours.outcome, theirs):
        return met
    if ours.outcome.accepted and theirs.accepted:
        further = _explain_tokens(document, ours.outcome.value, theirs.value, about)
    elif theirs.accepted:
        justified = (rule for rule in about if rule.message and _is_justified(document, ours, rule))
        further = list(justified)[:1]
    else:
        further = None
    return met + further if further else None


def _explain_tokens(document, ours, theirs, rules):
    our_tokens, their_tokens = tokens_of(ours), tokens_of(theirs)
    if len(ours) == len(theirs) == MAX_DESCRIPTION_SIZE:  # the last token is cut
        count = min(len(our_tokens), len(their_tokens)) - 1
        our_tokens, their_tokens = our_tokens[:count], their_tokens[:count]
    if len(our_tokens) != len(their_tokens):
        return None
    met = {}
    for our, their in zip(our_tokens, their_tokens):
        if our == their:
            continue
        rule = next((rule for rule in rules if rule.tokens and rule.tokens(document, our, their)),
                    None)
        if rule is None:
            return None
        met[rule.name] = rule
    return list(met.values())


def _is_justified(document, ours, rule):
    location = re.fullmatch(r"(?:byte (\d+)|line (\d+), column (\d+)): (.*)", ours.outcome.error)
    if ours.serialisation != rule.form or not location:
        return False
    if not re.fullmatch(rule.message, location[4]):
        return False
    if rule.form == "binary":
        return rule.has_fault(document, int(location[1]))
    if rule.form == "text":
        return rule.has_fault(document)
    text = xml.text_of(document)
    return rule.has_fault(text, xml.index_of(text, int(location[2]), int(location[3])))


# Binary documents.


def in_binary(name, readers, message, has_fault, reason, *examples):
    return Rule(name, readers, reason, examples, form="binary", message=message,
                has_fault=has_fault)


BOTH = (PLISTLIB, PLISTUTIL)

BINARY_REFUSALS = [
    in_binary("uid", BOTH, "a UID is no property-list value", binary.is_uid,
              "No configuration or recording contains a UID, and XML has no element for one.",
              binary_file([b"\x80\x05"])),
    in_binary("set", (PLISTUTIL,), "a set is no property-list value", binary.is_set,
              "XML has no element for a set; plistutil reads one as an array.",
              binary_file([b"\xc1\x01", b"\x09"])),
    in_binary("null", (PLISTLIB,), "null is no property-list value", binary.is_null,
              "A value is never absent; plistlib returns None.",
              binary_file([b"\x00"])),
    in_binary("unknown-object", (PLISTLIB,), "an unknown kind of object", binary.is_unknown,
              "plistlib reads the filler byte as data and reads integers of up to 2^15 bytes.",
              binary_file([b"\x15" + bytes(32)])),
    in_binary("key-kind", (PLISTLIB,), "a key is not a string", binary.is_no_string,
              "The keys of a dictionary are strings; plistlib accepts whatever it can hash.",
              binary_file([b"\xd1\x01\x02", b"\x10\x01", b"\x09"])),
    in_binary("wide-integer", BOTH, "an integer lies outside -2\\^63 to 2\\^64-1",
              binary.is_integer_out_of_range,
              "An integer out of range has no value here; plistlib's integers have no bounds, and "
              "plistutil uses the low 64 bits.",
              binary_file([b"\x14" + bytes(7) + b"\x01" + bytes(8)])),
    in_binary("text-characters", BOTH, "a string contains a character that XML cannot carry",
              binary.is_not_xml_character,
              "Whatever is read can be written as XML.",
              binary_file([b"\x51\x00"])),
    in_binary("ascii-text", (PLISTUTIL,), "a string is not ASCII", binary.is_not_ascii,
              "Bytes above 127 mean nothing in an ASCII string; plistutil passes them on as UTF-8.",
              binary_file([b"\x52\xc3\xa9"])),
    in_binary("utf16-text", (PLISTUTIL,), "a string is not UTF-16", binary.is_not_utf16,
              "A lone surrogate is no character; plistutil drops it.",
              binary_file([b"\x62\xd8\x00\x00A"])),
    in_binary("cycle", (PLISTLIB,), "an object contains itself", binary.contains_itself,
              "A value that contains itself never ends; plistlib's lists and dictionaries can.",
              array_in_itself()),
    in_binary("nesting", BOTH, "more than 512 .* are nested in each other", binary.is_too_deep,
              "The depth is bounded, so that no file exhausts the stack of code that walks it.",
              shared_arrays(513, 1)),
    in_binary("value-count", BOTH, "more values than the size of the file allows",
              binary.reaches_too_many_values,
              "What is shared counts each time: a small file cannot expand to a huge value.",
              shared_arrays(17, 2)),
    in_binary("byte-count", BOTH,
              "more bytes of keys, strings and data than the size of the file allows",
              binary.reaches_too_many_bytes,
              "What is shared counts each time: a small file cannot expand to a huge value.",
              shared_bytes()),
    in_binary("overlap", BOTH, "strings overlap", binary.has_overlapping_strings,
              "Strings over the same bytes, each transcoded, could decode to any amount of text.",
              overlapping_strings()),
    in_binary("object-end", (PLISTLIB,), "an object is cut short",
              binary.reaches_beyond_the_objects,
              "An object ends before the offset table begins; plistlib reads on into the table.",
              binary_file([b"\x51"])),
    in_binary("object-offset", BOTH, "an object is not between the header and the offset table",
              binary.has_object_outside,
              "Objects are between the header and the offset table; the others read the bytes of "
              "the header, and plistlib those of table and trailer, as objects.",
              binary_file([b"\xa1\x01", b"\x09"], offsets=[8, 0])),
    in_binary("count-kind", (PLISTLIB,), "a count is not an integer", binary.has_odd_count,
              "A count is an integer of one to eight bytes; plistlib looks at two bits of its "
              "marker.",
              binary_file([b"\x5f\x20\x01a"])),
    in_binary("file-size", (PLISTLIB,), "the file is cut short", binary.is_too_short,
              "Header and trailer do not overlap.",
              overlapping_trailer()),
    in_binary("offset-width", (PLISTLIB,), "the width of an offset is not 1 to 8",
              binary.has_odd_offset_width,
              "No offset in a file needs more than eight bytes.",
              binary_file([b"\x09"], offset_width=9)),
    in_binary("reference-width", BOTH, "the width of a reference is not 1 to 8",
              binary.has_odd_reference_width,
              "The trailer is checked also where nothing in the file uses it.",
              binary_file([b"\x09"], reference_width=9)),
    in_binary("table-offset", (PLISTLIB,),
              "the offset table is not between the header and the trailer",
              binary.has_table_outside,
              "The offset table is between the header and the trailer.",
              binary_file([b"\x09"], table=11)),
    in_binary("table-end", (PLISTLIB,), "the file is too short for the offset table",
              binary.has_table_too_long,
              "The offset table ends before the trailer; plistlib reads on into it.",
              binary_file([b"\x09"], count=2)),
]

# XML documents.


def in_xml(name, message, has_fault, reason, *examples, form="xml", enough=all):
    return Rule(name, (PLISTLIB,), reason, examples, form=form, message=message,
                has_fault=has_fault, enough=enough)


def with_some_versions(_):
    """Enough examples show a difference that another version of the reader does not have."""
    return True


def leaf(kind, reason, *texts):
    """A rule about the text of an element, with texts that it is about."""
    examples = (f"<plist><{kind}>{text}</{kind}></plist>".encode() for text in texts)
    return in_xml(f"{kind}-text", rf"\\x22.*\\x22 is not a valid {kind}", xml.is_invalid_leaf,
                  reason, *examples)


XML_REFUSALS = [
    leaf("integer", "plistlib leaves integers to Python: white space, underscores, foreign digits, "
         "a capital X, and no bounds.",
         " 1", "1\n", "1_0", "0X1F", "0x1_F", "\u0663", "18446744073709551616",
         "-9223372036854775809", "0x10000000000000000"),
    leaf("real", "plistlib leaves reals to Python: white space, underscores, foreign digits, and "
         "infinity or 0 beyond the range.",
         " 1.5", "1.5\n", "1_0.5", "\u0663.5", "1e400", "-1e400", "1e-400"),
    leaf("date", "plistlib reads shortened dates, and drops what follows one.",
         "2020-01-01Z", "2020-01-01T00:00Z", "2020-01-01T00:00:00Z ", "2020-01-01T00:00:00Z1"),
    leaf("data", "plistlib skips what is no base64, and what follows the padding.",
         "Zm9v!", "Zm9v=", "Zg==Zg==", "Zg===", "Zm9-v"),
    leaf("true", "plistlib drops text in a boolean.", "x", " "),
    leaf("false", "plistlib drops text in a boolean.", "x", " "),
    in_xml("foreign-element", "<.*> is no property-list element",
           xml.is_foreign_element,
           "plistlib skips the tags of elements that it does not know.",
           b"<plist><array><null/></array></plist>"),
    in_xml("foreign-key", "<.*> found where <key> was expected",
           xml.is_foreign_element,
           "plistlib skips the tags of elements that it does not know.",
           b"<plist><dict><null/></dict></plist>"),
    in_xml("stray-text", "text found where an element was expected", xml.is_text,
           "plistlib skips text between elements.",
           b"<plist><array>a</array></plist>"),
    in_xml("stray-text-after", "</plist> is missing", xml.is_text,
           "plistlib skips text between elements.",
           b"<plist><true/>a</plist>"),
    in_xml("stray-cdata", "the name of an element is missing", xml.is_after_cdata_opening,
           "A CDATA section is text, which only leaves contain; plistlib skips it.",
           b"<plist><array><![CDATA[]]></array></plist>"),
    in_xml("leaf-element", "<.*> contains something other than text", xml.is_inside_leaf,
           "plistlib accepts elements inside a leaf and drops the text before them.",
           b"<plist><string>a<b>c</b></string></plist>"),
    in_xml("two-values", "<plist> contains more than one value", xml.is_after_value,
           "plistlib returns the last of several values.",
           b"<plist><true/><false/></plist>"),
    in_xml("no-value", "<plist> contains no value", xml.is_empty_plist,
           "A value is never absent; plistlib returns None.",
           b"<plist></plist>"),
    in_xml("empty-key-alone", "a key has no value", xml.is_empty_key,
           "plistlib overlooks a key without a value where the key is empty.",
           b"<plist><dict><key></key></dict></plist>"),
    in_xml("empty-key-before-key", "<key> found where a value was expected",
           xml.is_key,
           "plistlib overlooks a key without a value where the key is empty.",
           b"<plist><dict><key/><key>a</key><true/></dict></plist>"),
    in_xml("entity", "the entity &.*; is not defined", xml.is_undefined_entity,
           "A document type may be declared elsewhere, but nothing is fetched: plistlib drops "
           "entities that it does not know.",
           b'<!DOCTYPE plist SYSTEM "a"><plist><string>&e;</string></plist>'),
    in_xml("internal-subset", "a document type declaration with an internal subset is not accepted",
           xml.is_internal_subset,
           "Nothing is expanded, so nothing may be declared; plistlib refuses entities alone.",
           b"<!DOCTYPE plist [ ]><plist><true/></plist>"),
    in_xml("version", "the XML declaration is malformed", xml.has_odd_version,
           "The version is 1 and a minor number; expat does not look at it.",
           b"<?xml version='2.0'?><plist><true/></plist>"),
    in_xml("encoding", "the encoding .* is not supported", xml.names_other_encoding,
           "Four encodings are promised, each by one name; Python knows many, by many names.",
           b"<?xml version='1.0' encoding='latin1'?><plist><true/></plist>"),
    in_xml("utf16-pairs", "the text is not UTF-16", xml.is_no_character,
           "A lone surrogate is no character; some versions of expat combine it with the unit "
           "after it.",
           b"\xff\xfe" + "<plist><string>\ud800a</string></plist>".encode("utf-16-le",
                                                                          "surrogatepass"),
           enough=with_some_versions),
    in_xml("nesting-in-xml", "more than 512 .* are nested in each other",
           xml.is_too_deep,
           "The depth is bounded, so that no file exhausts the stack of code that walks it.",
           nested_xml(513)),
    in_xml("detection", ".*", xml.is_not_detected,
           "A document that begins like neither form is the old text form; plistlib reads "
           "it as XML here, whatever it begins with.",
           b"<?p?><plist><true/></plist>", form="text"),
    in_xml("utf16-without-mark", ".*", xml.is_utf16_without_mark,
           "UTF-16 needs a byte-order mark; expat guesses.",
           "<plist><true/></plist>".encode("utf-16-le"), form="text"),
]

# Outcomes of the others that are corrected before they are compared.


def reinterpret_without_encoding(document, ours, _theirs):
    if ours.serialisation != "xml" or not xml.mark_of(document):
        return None
    changed = xml.without_encoding(document)
    return changed and (changed, read_plistlib(changed))


def reinterpret_text_form(document, ours, _theirs):
    is_text = ours.serialisation == "text" and ours.outcome.accepted
    return (document, ours.outcome) if is_text and xml.is_not_detected(document) else None


def reinterpret_signed_hexadecimal(document, ours, theirs):
    if not re.match(r"ValueError: invalid literal for int\(\) with base 10: '[+-]0x[0-9a-fA-F]+'$",
                    theirs.error or ""):
        return None
    signed = re.compile(r"(>[^<>]*)([+-])0x([0-9a-fA-F]+)(?=[^<>]*</integer)")
    if not ours.outcome.accepted:
        return None
    return _reread(document, signed.sub(lambda match: f"{match[1]}{match[2]}{int(match[3], 16)}",
                                        xml.text_of(document)))


def reinterpret_name_characters(document, ours, theirs):
    faults = r"ExpatError: (not well-formed \(invalid token\)|syntax error):"
    if not ours.outcome.accepted or not re.match(faults, theirs.error or ""):
        return None
    tag = re.compile(r"<\?.*?\?>|<(?!!--|!\[CDATA)[^<>]*>", re.DOTALL)
    return _reread(document, tag.sub(_with_plain_names, xml.text_of(document)))


def _with_plain_names(tag):
    return re.sub("(\"[^\"]*\"|'[^']*')|[\u0100-\U0010ffff]", lambda part: part[1] or "a", tag[0])


def _reread(document, text):
    """The document with another text, and plistlib's outcome for it."""
    mark = xml.mark_of(document)
    declared = xml.DECLARATION.match(text)
    latin = not mark and declared and (declared["encoding"] or "").lower() == "iso-8859-1"
    changed = mark + text.encode("latin-1" if latin else xml.MARKS.get(mark, "utf-8"))
    return changed, read_plistlib(changed)


def reinterpret_early_years(document, ours, theirs):
    """With the zeros that are missing from a year before 1000."""
    early = rb"<date>(\d{1,3})-"
    if not theirs.written or not ours.outcome.accepted or not re.search(early, theirs.written):
        return None
    return document, _rewritten(
        re.sub(early, lambda match: b"<date>%04d-" % int(match[1]), theirs.written))


def reinterpret_carriage_returns(document, ours, theirs):
    if not theirs.written or not ours.outcome.accepted or b"\r" not in theirs.written:
        return None
    return document, _rewritten(theirs.written.replace(b"\r", b"&#13;"))


def _rewritten(written):
    return read_plistlib(written)._replace(written=written)


def reinterpret_crash(document, ours, theirs):
    died = re.fullmatch(r"plistutil: status -\d+", theirs.error or "")
    if not died or not ours.outcome.accepted or not binary.has_wide_utf16(document):
        return None
    return document, read_plistlib(document)


def reinterpret_empty_utf16(document, ours, theirs):
    if theirs.error != "plistutil: no value" or not ours.outcome.accepted:
        return None
    return (document, ours.outcome) if binary.has_empty_utf16(document) else None


# Leaves that differ.


def real_of(token):
    bits = re.fullmatch(r"real\(([0-9a-f]{16})\)", token)
    return struct.unpack(">d", bytes.fromhex(bits[1]))[0] if bits else None


def is_fraction_of_second(document, ours, theirs):
    """plistlib rounds to microseconds."""
    return any(ours == f"date({START_2001 + math.floor(seconds)})" and
               theirs == describe_leaf(datetime.datetime(2001, 1, 1)
                                       + datetime.timedelta(seconds=seconds))
               for seconds in binary.dates(document) if -7e10 < seconds < 3e11)


def is_cut_toward_zero(document, ours, theirs):
    return any(seconds < 0 and ours == f"date({START_2001 + math.floor(seconds)})" and
               theirs == f"date({START_2001 + math.trunc(seconds)})"
               for seconds in binary.dates(document) if -7e10 < seconds < 3e11)


def is_another_nan(_document, ours, theirs):
    reals = real_of(ours), real_of(theirs)
    return None not in reals and all(map(math.isnan, reals))


def is_unsigned_zero(_document, ours, theirs):
    return ours == describe_leaf(-0.0) and theirs == describe_leaf(0.0)


def has_lost_its_sign(document, ours, theirs):
    if not re.fullmatch(r"-\d+", ours):
        return False
    low = int(ours) % 2**64
    return theirs == str(low) and bool(binary.has_wide_integer(document, low))


OTHER_RULES = [
    Rule("byte-order-mark", (PLISTLIB,),
         "A byte-order mark outweighs the declared encoding; expat refuses, or believes the "
         "declaration.",
         (b"\xef\xbb\xbf<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xc3\xa9</string>"
          b"</plist>",), reinterpret=reinterpret_without_encoding),
    Rule("text-form", (PLISTLIB,),
         "What is left of a damaged document can be one in the old text form, which no other "
         "reader supports.",
         (b"ERROR: = a",), reinterpret=reinterpret_text_form),
    Rule("signed-hexadecimal", (PLISTLIB,),
         "A sign may precede hexadecimal digits too; plistlib looks for 0x at the start.",
         (b"<plist><integer>-0x10</integer></plist>",), reinterpret=reinterpret_signed_hexadecimal),
    Rule("name-characters", (PLISTLIB,),
         "Names are those of today's XML; expat keeps to the characters of 1998.",
         ("<plist><true \u0220='1'/></plist>".encode(),
          "<!DOCTYPE \u0663><plist><true/></plist>".encode()),
         reinterpret=reinterpret_name_characters),
    Rule("early-years", (PLISTUTIL,),
         "plistutil writes a year before 1000 with fewer than four digits.",
         (binary_file([b"\x33" + struct.pack(">d", -4e10)]),), reinterpret=reinterpret_early_years),
    Rule("plistutil-crashes", (PLISTUTIL,),
         "plistutil reserves two bytes of UTF-8 for a unit of UTF-16, and a character may need "
         "three; whether it crashes depends on its heap, and plistlib has to agree with us.",
         tuple(wide_text(units, times) for units in range(800, 1051, 50)
               for times in range(300, 551, 50)), reinterpret=reinterpret_crash, enough=any),
    Rule("carriage-return", (PLISTUTIL,),
         "A carriage return is kept; plistutil writes it bare, and XML reads it as a line feed.",
         (binary_file([b"\x52a\r"]),), reinterpret=reinterpret_carriage_returns),
    Rule("empty-utf16", (PLISTUTIL,),
         "An empty string is one in UTF-16 too; plistutil refuses it.",
         (binary_file([b"\x60"]),), reinterpret=reinterpret_empty_utf16),
    Rule("date-fraction", (PLISTLIB,),
         "A date is cut to whole seconds; plistlib keeps microseconds.",
         (binary_file([b"\x33" + struct.pack(">d", 1.5)]),), tokens=is_fraction_of_second),
    Rule("date-toward-zero", (PLISTUTIL,),
         "A date is cut toward the past; plistutil cuts toward 2001.",
         (binary_file([b"\x33" + struct.pack(">d", -1.5)]),), tokens=is_cut_toward_zero),
    Rule("nan", (PLISTUTIL,),
         "A real is kept bit for bit; plistutil writes every NaN as nan.",
         (binary_file([b"\x23\xff\xf8" + bytes(6)]),), tokens=is_another_nan),
    Rule("minus-zero", (PLISTUTIL,),
         "A real is kept bit for bit; plistutil writes -0 as 0.",
         (binary_file([b"\x23\x80" + bytes(7)]),), tokens=is_unsigned_zero),
    Rule("wide-negative", (PLISTUTIL,),
         "An integer of sixteen bytes is signed; plistutil uses the low 64 bits without a sign.",
         (binary_file([b"\x14" + b"\xff" * 16]),), tokens=has_lost_its_sign),
]

RULES = BINARY_REFUSALS + XML_REFUSALS + OTHER_RULES
