"""Runs a document through each of the three readers."""

import os
import pathlib
import plistlib
import re
import subprocess
import sys

from descriptions import Outcome, describe

# The other readers do not limit the nesting, and their results are walked recursively.
sys.setrecursionlimit(20_000)

SERIALISATIONS = {"0": "none", "1": "text", "100": "xml", "200": "binary"}


class DescriberFailure(Exception):
    """Our reader did not print a line for every document: it crashed, or the program is wrong."""


def read_ours(describer, documents):
    """Pairs of a serialisation and an Outcome, one for each document, by one process for all."""
    given = b"".join(b"%d\n%b" % (len(document), document) for document in documents)
    finished = subprocess.run([describer], input=given, capture_output=True, check=False)
    lines = finished.stdout.decode("ascii").splitlines()
    if finished.returncode != 0 or len(lines) != len(documents):
        culprit = documents[min(len(lines), len(documents) - 1)]
        raise DescriberFailure(
            f"status {finished.returncode} at document {len(lines)}: {culprit!r} "
            f"{finished.stderr.decode(errors='replace')}")
    return [_parse_line(line) for line in lines]


def _parse_line(line):
    code, _, rest = line.partition(" ")
    error = re.fullmatch(r'error "(.*)"', rest)
    return SERIALISATIONS[code], Outcome(None, error[1]) if error else Outcome(rest)


def read_plistlib(document):
    """The result of Python's plistlib. What is not binary is read by its XML parser."""
    form = plistlib.FMT_BINARY if document.startswith(b"bplist00") else plistlib.FMT_XML
    try:
        return Outcome(describe(plistlib.loads(document, fmt=form)))
    except (RecursionError, MemoryError) as failure:
        return Outcome(None, type(failure).__name__)
    except Exception as failure:  # whatever a damaged document provokes: plistlib documents none
        return Outcome(None, f"{type(failure).__name__}: {failure}")


def read_plistutil(plistutil, document):
    """The result of plistutil for a binary document: it writes XML, which plistlib reads."""
    finished = _convert(plistutil, document)
    if finished.returncode != 0:
        return Outcome(None, f"plistutil: status {finished.returncode}")
    if re.search(rb'<plist version="1.0">\n</plist>\n\Z', finished.stdout):
        return Outcome(None, "plistutil: no value")
    return read_plistlib(finished.stdout)._replace(written=finished.stdout)


def convert_with_plistutil(plistutil, xml):
    """An XML document converted to binary by plistutil; unchanged when that fails."""
    finished = _convert(plistutil, xml)
    return finished.stdout if finished.stdout.startswith(b"bplist00") else xml


def _convert(plistutil, document):
    return subprocess.run([plistutil, "-i", "-", "-o", "-"], input=document, capture_output=True,
                          check=False)


def default_describer():
    """The describer of the usual build."""
    root = pathlib.Path(__file__).resolve().parents[1]
    return root / os.environ.get("FERNWICK_BUILD", "build") / "describe_property_list"
