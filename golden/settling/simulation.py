"""What becomes of a computer when its plans are carried out, from nothing but what `replay` prints."""

import math
import plistlib
import re
import subprocess

RIDGE_TYPES = ("LegacyThunderbolt", "Thunderbolt")
MAX_PLANS = 1000


def decode_bcd(packed):
    total, weight = 0, 1
    while packed:
        total += (packed & 15) * weight
        packed, weight = packed >> 4, weight * 10
    return total


def is_number(value):
    return isinstance(value, (int, float))


def read_u32(properties, key):
    value = properties.get(key)
    if not is_number(value):
        return None
    return int(value) & 0xFFFFFFFF


def port_version(properties):
    packed = read_u32(properties, "Version")
    return None if packed is None else decode_bcd(packed)


def ridge_version(properties):
    rom = read_u32(properties, "ROM Version")
    if rom is None:
        return None
    eeprom = read_u32(properties, "EEPROM Revision") or 0
    return math.trunc(decode_bcd(rom) * 100.0 + (eeprom & 63)) / 100.0 + 1e-9


def store_port(properties, offered):
    if math.isnan(offered) or offered < 0:
        return
    whole = 99999999 if offered >= 99999999 else math.floor(offered)
    properties["Version"] = int(str(whole), 16)


def best_hundredths(offered):
    """The greatest major * 100 + minor, minor up to 63, whose hundredth is at most the version."""
    if offered >= 99999999.63:
        return 9999999963
    major = min(math.floor(offered), 99999999)
    return max(major * 100 + minor for minor in range(64) if (major * 100 + minor) / 100.0 <= offered)


def store_ridge(properties, offered):
    if math.isnan(offered) or offered < 0:
        return
    major, minor = divmod(best_hundredths(offered), 100)
    properties["ROM Version"] = int(str(major), 16)
    properties["EEPROM Revision"] = minor


class Computer:
    """A recording, with its controllers by name."""

    def __init__(self, recording):
        self.recording = recording
        self.ports, self.ridges, self.ridge_above = {}, {}, {}
        for child in recording["Planes"]["IOService"]["Children"]:
            self.add(child, None)

    def add(self, node, above):
        name = node["Name"]
        if node["Class"].startswith("Quince"):
            self.ports[name] = node["Properties"]
            self.ridge_above[name] = above
            return
        self.ridges[name] = node["Properties"]
        for child in node["Children"]:
            self.add(child, name)

    def rid_of_port(self, name):
        if "RID" in self.ports[name]:
            return self.ports[name]["RID"]
        above = self.ridge_above[name]
        return 0 if above is None else self.ridges[above]["UID"] & 15

    def ports_with(self, rid):
        return [name for name in self.ports if self.rid_of_port(name) == rid]

    def options(self):
        tree = self.recording["Planes"]["IODeviceTree"]
        for child in tree.setdefault("Children", []):
            if child["Name"] == "options":
                return child["Properties"]
        tree["Children"].append({"Name": "options", "Properties": {}})
        return tree["Children"][-1]["Properties"]

    def versions(self):
        found = {name: port_version(properties) for name, properties in self.ports.items()}
        found.update({name: ridge_version(properties) for name, properties in self.ridges.items()})
        return found

    def state(self):
        """All properties, whatever their order. Values of different kinds are different."""

        def frozen(properties):
            return sorted((key, type(value).__name__, repr(value)) for key, value in properties.items())

        tree = self.recording["Planes"]["IODeviceTree"]
        options = [child["Properties"] for child in tree.get("Children", [])] or [{}]
        controllers = [frozen(properties) for properties in (*self.ports.values(), *self.ridges.values())]
        return repr((controllers, frozen(options[0])))

    def flash(self, kind, rid, offered):
        if not is_number(offered):
            return
        if kind == "LegacyThunderbolt":
            (ridge,) = [name for name, each in self.ridges.items() if each["UID"] & 15 == rid]
            store_ridge(self.ridges[ridge], offered)
            return
        (port,) = self.ports_with(rid)
        if kind == "Thunderbolt":
            store_ridge(self.ridges[self.ridge_above[port]], offered)
        else:
            store_port(self.ports[port], offered)


MATCH = re.compile(r"^\tPERSONALITY_TYPE: +(\w+)$.*?^\tRID: +(\d+)$.*?^\tCONFIG_FIRMWARE_NAME: +(\S+)$", re.M | re.S)


def run(lab, recording, payload, arguments):
    """The matches, as type, RID and index of the personality; the plan; the exit status."""
    command = [lab, "replay", recording, "-v", "-p", payload, *arguments]
    process = subprocess.run(command, capture_output=True, check=False)
    output = process.stdout.decode()
    if process.returncode != 0 or "<plist" not in output:
        return [], None, process.returncode, output
    head, plan = output.split("<?xml", 1)
    plan = plistlib.loads(("<?xml" + plan[: plan.index("</plist>") + 8]).encode())
    matches = [
        (kind, int(rid), int(image.rsplit("-", 1)[1].removesuffix(".bin"))) for kind, rid, image in MATCH.findall(head)
    ]
    return matches, plan, 0, output


def carry_out(computer, configuration, matches, plan):
    for kind, rid, index in matches:
        personality = configuration[kind] if kind == "LegacyUSBC" else configuration[kind][index]
        computer.flash(kind, rid, personality.get("Version"))
    settings = plan.get("SetNVRAM", {})
    if settings:
        computer.options().update(settings)
    for name in plan.get("ClearNVRAM", []):
        if isinstance(name, str):
            computer.options().pop(name, None)


def end_of(status, output):
    if status < 0:
        return "abnormal end"
    if status == 0:
        return "bypassed"
    return "no plan" if "PERSONALITY_TYPE" in output else "settled"


def settle(lab, recording, configuration, payload, path, arguments):
    """The outcome, the number of runs, the number of the state that comes back, the versions."""
    computer = Computer(recording)
    states = [computer.state()]
    while True:
        with path.open("wb") as file:
            plistlib.dump(recording, file, sort_keys=False)
        matches, plan, status, output = run(lab, path, payload, arguments)
        if plan is None:
            return end_of(status, output), len(states) - 1, None, computer.versions()
        if len(states) > MAX_PLANS:
            return "undecided", MAX_PLANS, None, computer.versions()
        carry_out(computer, configuration, matches, plan)
        state = computer.state()
        if state in states:
            return "never settles", len(states), states.index(state), computer.versions()
        states.append(state)
