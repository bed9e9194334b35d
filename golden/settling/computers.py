"""Random computers and payloads, in which personalities often match again and again."""

import plistlib
import random

SWITCH = "fernwick_bypassversioncheck"
UPDATES_SWITCH = "fernwick_bypass_usbc_updates"
PORT_TYPES = ("LegacyUSBC", "USBC", "Thunderbolt")
TYPES = PORT_TYPES + ("LegacyThunderbolt",)

# Some are stored by no controller: fractions of ports, hundredths above 63, more than eight digits.
PORT_VERSIONS = (0, 1, 41, 42, 60, 170, 171, 171.5, 172, 180, 99999999, 100000000, 1e12, -1, True)
RIDGE_VERSIONS = (
    0.63, 1, 23.02, 41.05, 41.050000001, 41.0500001, 41.06, 41.63, 41.64, 41.99, 42, 42.1, 43.005, 60,
    99999999.63, 99999999.99, 1e9, -2.5, float("nan"), float("inf"))
COMMON_PORT_VERSIONS = (41, 42, 60, 170, 171, 172, 173, 180, 200)
COMMON_RIDGE_VERSIONS = (23.02, 41.05, 41.06, 41.07, 42, 42.1, 43.01, 60)


def bcd(number):
    return int(str(number), 16)


def maybe(rng, chance, value):
    return {} if rng.random() >= chance else value


def ridge_properties(rng, nibble):
    return {
        "Depth": 0,
        "Route String": 0,
        "UID": 0x5A0 + nibble,
        "Vendor ID": 1,
        "Device ID": rng.choice((2, 3)),
        "Revision ID": 4,
        **maybe(rng, 0.9, {"ROM Version": rng.choice((0, 0x23, 0x41, 0x41, 0x42, 0x1A))}),
        **maybe(rng, 0.9, {"EEPROM Revision": rng.choice((0, 2, 5, 6, 0x3F, 0x45, 0xC5))}),
        **maybe(rng, 0.3, {"Firmware Mode": rng.random() < 0.5}),
    }


def port_properties(rng, below, rid):
    return {
        "Vendor ID": 11,
        "Device ID": rng.choice((12, 13)),
        "Revision ID": 14,
        **maybe(rng, 0.7, {"Address": 0 if below else rng.choice((0, 56))}),
        **maybe(rng, 0.9, {"Version": rng.choice((0, 0x1A, bcd(41), bcd(170), bcd(171), bcd(172), 171.0))}),
        **({} if rid is None else {"RID": rid}),
    }


def port_node(rng, name, below, rid):
    return {"Name": name, "Class": "QuinceHPMDeviceGen2", "Properties": port_properties(rng, below, rid)}


def random_services(rng):
    """The service plane. The RID of each port is its own, or that of the one controller above it."""
    children = []
    rid = 0
    for i in range(rng.randrange(0, 3)):
        children.append(port_node(rng, f"hpm{i}", False, rid))
        rid += 1
    for i in range(rng.randrange(0, 3)):
        ridge = {
            "Name": f"ridge{i}",
            "Class": "ThunderboltSwitchType7",
            "Properties": ridge_properties(rng, 10 + i),
            "Children": [],
        }
        inherits = rng.random() < 0.5
        for j in range(rng.randrange(0, 3)):
            own = None if inherits and j == 0 else rid
            ridge["Children"].append(port_node(rng, f"hpm{i}{j}", True, own))
            rid += 1
        children.append(ridge)
    return {"Name": "Root", "Children": children}


def random_options(rng):
    properties = {}
    if rng.random() < 0.2:
        properties[SWITCH] = rng.choice((b"0", b"1", "1", "0", 1))
    if rng.random() < 0.2:
        properties["boot-args"] = rng.choice(("-v", f"{SWITCH}=1", f"{SWITCH}=0 debug=1", f"-v {SWITCH}"))
    if rng.random() < 0.3:
        properties["a"] = rng.choice(("x", b"x", 1))
    return properties


def random_computer(rng, board):
    tree = {
        "Name": "Root",
        "Properties": {"board-id": board.encode() + b"\0", "board-rev": bytes([rng.randrange(4)])},
    }
    if rng.random() < 0.7:
        tree["Children"] = [{"Name": "options", "Properties": random_options(rng)}]
    return {
        "Recording Version": 1,
        "Classes": {"ThunderboltSwitchType7": "IOThunderboltSwitch", "QuinceHPMDeviceGen2": "QuinceHPMDevice"},
        "Planes": {"IODeviceTree": tree, "IOService": random_services(rng)},
    }


def random_nvram(rng):
    setting = {}
    for name, values, chance in (
        ("a", ("x", "y", b"x"), 0.2),
        ("boot-args", ("-v", f"{SWITCH}=1", ""), 0.04),
        (SWITCH, ("1", "0"), 0.08),
        (UPDATES_SWITCH, ("1", "0"), 0.03),
    ):
        if rng.random() < chance:
            setting[name] = rng.choice(values)
    clearing = [name for name in ("a", SWITCH, "boot-args") if rng.random() < 0.08]
    return {
        **({"SetNVRAM": setting} if setting else {}),
        **({"ClearNVRAM": clearing + rng.choice(([], [1]))} if clearing else {}),
    }


def versions_for(rng, kind, is_common):
    if kind in ("LegacyUSBC", "USBC") and rng.random() < 0.8:
        return COMMON_PORT_VERSIONS if is_common else PORT_VERSIONS
    return COMMON_RIDGE_VERSIONS if is_common else RIDGE_VERSIONS


def random_personality(rng, kind, image, is_common):
    versions = versions_for(rng, kind, is_common)
    personality = {
        **maybe(rng, 0.97, {"Version": rng.choice(versions)}),
        **maybe(rng, 0.99, {"Firmware": image}),
        **maybe(rng, 0.2, {"Existing Min Version": rng.choice(versions[:8])}),
        **maybe(rng, 0.2, {"Existing Max Version": rng.choice(versions[2:])}),
        **maybe(rng, 0.1, {"Port Address": [0, 56]}),
        **random_nvram(rng),
    }
    if kind != "LegacyUSBC":
        personality.update(maybe(rng, 0.2, {"RID": rng.sample(range(12), 8)}))
    if kind in ("USBC", "Thunderbolt"):
        personality.update(
            {"Port Silicon Vendor ID": 11, "Port Silicon Device ID": rng.choice((12, [12, 13])), "Port Silicon Revision": 14}
        )
        personality.update(maybe(rng, 0.1, {"MaxBoardRevision": 2}))
    if kind in ("LegacyThunderbolt", "Thunderbolt"):
        personality.update(
            {"Ridge Silicon Vendor ID": 1, "Ridge Silicon Device ID": rng.choice((2, [2, 3])), "Ridge Silicon Revision": 4}
        )
    return personality


def random_configuration(rng):
    """The image of a personality is "TYPE-INDEX.bin", which says in a plan which one it is."""
    configuration = {}
    is_common = rng.random() < 0.6
    for kind in rng.sample(TYPES, rng.randrange(1, 5)):
        count = rng.randrange(1, 4)
        personalities = [random_personality(rng, kind, f"{kind}-{i}.bin", is_common) for i in range(count)]
        configuration[kind] = personalities[0] if kind == "LegacyUSBC" else personalities
    return configuration


def write(path, value):
    path.parent.mkdir(parents=True, exist_ok=True)
    form = random.Random(str(path)).choice((plistlib.FMT_XML, plistlib.FMT_BINARY))
    with path.open("wb") as file:
        plistlib.dump(value, file, fmt=form, sort_keys=False)
