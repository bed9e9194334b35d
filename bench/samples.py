"""Computers and payloads of any number, made from the examples or by rule. The same in every run."""

import pathlib
import plistlib

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent / "examples"
BOARD = "Zed-1A05"
IMAGES = 20


def write_recordings(directory, count):
    """The recorded computers of the examples in turn, so many."""
    texts = [path.read_bytes() for path in sorted(EXAMPLES.glob("*.registry.plist"))]
    directory.mkdir()
    for i in range(count):
        (directory / f"{i:06}.registry.plist").write_bytes(texts[i % len(texts)])


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
