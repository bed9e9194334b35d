"""Computers and payloads of any number, made from the examples or by rule. The same in every run."""

import pathlib
import plistlib
import random
import re
import subprocess
import tarfile

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent / "examples"
BOARD = "Zed-1A05"
OF_BOARD = "ports-below-thunderbolt"  # the example
IMAGES = 20

# What is unique to a controller, except the last digit of a UID, which is the position of its Ridge.
IDENTIFIER = re.compile(rb"0x[0-9A-F]{13}(?=[0-9A-F]<)|[0-9A-F]{8}(?:-[0-9A-F]{4}){3}-[0-9A-F]{12}")


def example_texts(pattern="*"):
    return [path.read_bytes() for path in sorted(EXAMPLES.glob(f"{pattern}.registry.plist"))]


def write_recordings(directory, count):
    """The recorded computers of the examples in turn, so many."""
    texts = example_texts()
    directory.mkdir()
    for i in range(count):
        (directory / f"{i:06}.registry.plist").write_bytes(texts[i % len(texts)])


def unique_recordings(count, pattern="*"):
    """The recorded computers of the examples in turn, so many, each with identifiers of its own."""
    texts = example_texts(pattern)
    choice = random.Random(1)

    def another(found):
        return b"0x%013X" % choice.getrandbits(52) if found[0].startswith(b"0x") else another_uuid()

    def another_uuid():
        digits = b"%032X" % choice.getrandbits(128)
        return b"-".join([digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]])

    for index in range(count):
        yield IDENTIFIER.sub(another, texts[index % len(texts)])


def write_archive(path, count, pattern="*"):
    """A tar archive of unique recordings, compressed by zstd, a thousand to a directory."""
    with subprocess.Popen(["zstd", "--quiet", "--force", "-o", path], stdin=subprocess.PIPE) as zstd:
        for index, recording in enumerate(unique_recordings(count, pattern)):
            member = tarfile.TarInfo(f"{index // 1000:04}/{index % 1000:03}.registry.plist")
            member.size = len(recording)
            zstd.stdin.write(member.tobuf(tarfile.USTAR_FORMAT))
            zstd.stdin.write(recording + bytes(-len(recording) % tarfile.BLOCKSIZE))
        zstd.stdin.write(bytes(2 * tarfile.BLOCKSIZE))
    if zstd.returncode != 0:
        raise RuntimeError(f"zstd ended with {zstd.returncode}")


def personality(index):
    """One that can match. Others that want the same of a controller are rare."""
    return {
        "Version": 44 + index % 50 / 100,
        "Priority": index % 100,
        "Firmware": image(index),
        "Port Address": 0,
        "RID": index % 4,
        "Port Silicon Vendor ID": 0x4D1,
        "Port Silicon Device ID": index % 65_521 + 1,
        "Port Silicon Revision": [1, 2, 3] if index % 3 else 2,
        "Ridge Silicon Vendor ID": 0x5A86,
        "Ridge Silicon Device ID": index // 65_521 + 1,
        "Ridge Silicon Revision": 4,
        "Device Model Name": f"Model {index % 37}",
        "Existing Min Version": 20,
    }


def alike(index):
    """One that shares a value under every key with every other, and wants another one as well."""
    return {**personality(0), "Port Silicon Revision": [0, index + 1]}


def image(index):
    return f"ridge-{index % IMAGES}.bin"


def write_payload(directory, personalities, make=personality):
    """A payload for one board, with so many personalities of one type, which `make` makes."""
    board = directory / "Fernwick" / BOARD
    board.mkdir(parents=True)
    for utility in ("RidgeFlash.efi", "PortFlash.efi"):
        (directory / "Fernwick" / utility).write_bytes(b"utility")
    for index in range(min(IMAGES, personalities)):
        (board / image(index)).write_bytes(b"image")
    configuration = {"Thunderbolt": [make(index) for index in range(personalities)]}
    with open(board / "Config.plist", "wb") as file:
        plistlib.dump(configuration, file, sort_keys=False)
