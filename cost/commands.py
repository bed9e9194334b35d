"""The commands that read an input, by name."""

import dataclasses
import pathlib

import inputs

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent / "examples"


@dataclasses.dataclass
class Command:
    words: list  # after "fernwick-lab"
    standard_input: pathlib.Path = None


OF_RECORDINGS = ("replay", "explain", "explain --json", "show", "show --json", "convert xml",
                 "convert binary", "redact", "survey", "survey ndjson", "coverage", "settle",
                 "settle ndjson", "draft", "draft --except", "diff",
                 "report")
OF_CONFIGURATIONS = ("replay", "explain", "explain --json", "lint", "lint json", "lint sarif",
                     "survey", "survey ndjson", "survey csv", "coverage", "coverage json",
                     "settle", "settle ndjson", "sample", "diff", "diff json",
                     "report",
                     "convert CONFIGURATION xml", "convert CONFIGURATION binary")


def names_of(family):
    """The names of the commands that read the inputs of a family."""
    if family.commands:
        return family.commands
    return OF_RECORDINGS if family.kind == inputs.RECORDING else OF_CONFIGURATIONS


def command(name, directory):
    """The command of that name over the input in a directory; what the input lacks is from the
    examples."""
    recording = _existing(directory / "input.registry.plist", EXAMPLES / "ports-only.registry.plist")
    payload = _existing(directory / "payload", EXAMPLES / "payload")
    if payload.parent == directory and recording.parent != directory:
        recording = EXAMPLES / "ports-below-thunderbolt.registry.plist"
    survey = ["survey", "-j1", "-p", payload]
    diff = ["diff", "-j1", "-p", EXAMPLES / "payload", "-p", payload]
    draft = ["draft", "-j1", "--image", "a.bin", "--version", "9"]
    configuration = directory / "payload" / "Fernwick" / inputs.BOARD / "Config.plist"
    out = directory / "out"
    words = {
        "replay": ["replay", recording, "-v", "-p", payload],
        "explain": ["explain", recording, "-p", payload],
        "explain --json": ["explain", "--json", recording, "-p", payload],
        "show": ["show", recording],
        "show --json": ["show", "--json", recording],
        "redact": ["redact", "--force", "--keep-all", recording, out],
        "lint": ["lint", payload],
        "lint json": ["lint", "--format", "json", payload],
        "lint sarif": ["lint", "--format", "sarif", payload],
        "survey": [*survey, recording],
        "survey --expect": [*survey, "--expect", directory / "expected.ndjson", recording],
        "survey of a list": [*survey, "-"],
        "survey of a directory": [*survey, directory / "fleet"],
        "survey of an archive": [*survey, directory / "archive"],
        "coverage of an archive": ["coverage", "-j1", "-p", payload, directory / "archive"],
        "coverage": ["coverage", "-j1", "-p", payload, recording],
        "coverage json": ["coverage", "-j1", "--json", "-p", payload, recording],
        "settle": ["settle", "-j1", "-p", payload, recording],
        "settle ndjson": ["settle", "-j1", "--each", "--format", "ndjson", "-p", payload, recording],
        "sample": ["sample", "-p", payload, inputs.BOARD],
        "draft": [*draft, recording],
        "draft --except": [*draft, recording, "--except", EXAMPLES / "ports-only.registry.plist"],
        "diff": [*diff, recording],
        "report": ["report", "-j1", "-p", payload, "--old", EXAMPLES / "payload", "--force", "-o",
                   out, recording],
        "diff json": [*diff, "--json", recording],
    }
    for form in ("ndjson", "csv", "junit"):
        words[f"survey {form}"] = [*survey, "--format", form, recording]
    for form in ("xml", "binary"):
        convert = ["convert", "--force", "--to", form]
        words[f"convert {form}"] = [*convert, recording, out]
        words[f"convert FILE {form}"] = [*convert, directory / "list.plist", out]
        words[f"convert CONFIGURATION {form}"] = [*convert, configuration, out]
    names = directory / "names"
    return Command(words[name], names if name == "survey of a list" else None)


def _existing(path, otherwise):
    return path if path.exists() else otherwise
