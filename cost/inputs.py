"""Recordings, configurations and other inputs, each of a size and of a kind that could cost more than
its size."""

import dataclasses
import pathlib
import typing

from documents import Binary, array, dictionary, document, integer, string

BOARD = "Zed-1A05"

# What the verbs read: a recorded computer, a Config.plist, or something else.
RECORDING, CONFIGURATION, OTHER = "recording", "configuration", "other"


@dataclasses.dataclass
class Family:
    """Inputs of one kind. `write(directory, size)` writes one of about so many bytes."""
    name: str
    kind: str
    write: typing.Callable
    commands: typing.Sequence = ()  # names in commands.py; empty: all of the kind
    pairs: str = ""  # why the results that are asked for grow with the square of the size
    constant: str = ""  # why the growth says nothing: most of the cost is the same for any size


FAMILIES = []


def family(kind, commands=(), pairs="", constant=""):
    def add(write):
        FAMILIES.append(Family(write.__name__.replace("_", " "), kind, write, commands, pairs,
                               constant))
        return write
    return add


def repeated(piece, size):
    """So many pieces that they have about `size` bytes; `piece` is a function of the index."""
    pieces, length = [], 0
    while length < size:
        pieces.append(piece(len(pieces)))
        length += len(pieces[-1])
    return pieces


# Recordings.

def node(name, class_name="", properties=(), children=()):
    entries = [("Name", string(name))]
    if class_name:
        entries.append(("Class", string(class_name)))
    if properties:
        entries.append(("Properties", dictionary(properties)))
    if children:
        entries.append(("Children", array(children)))
    return dictionary(entries)


def recording(services, options=(), classes=(), board=BOARD):
    identity = "<data>" + _base64(board.encode() + b"\0") + "</data>"
    tree = dictionary([("Properties", dictionary([("board-id", identity)])),
                       ("Children", array([node("options", properties=options)]))])
    return document(dictionary([
        ("Recording Version", integer(1)), ("Classes", dictionary(classes)),
        ("Planes", dictionary([("IODeviceTree", tree),
                               ("IOService", node("Root", children=services))]))]))


def _base64(content):
    import base64
    return base64.b64encode(content).decode()


def write_recording(directory, *arguments, **named):
    (directory / "input.registry.plist").write_bytes(recording(*arguments, **named))


PORT = (("Vendor ID", integer(1)), ("Device ID", integer(2)), ("Revision ID", integer(3)),
        ("Version", integer(5)))


def port(number, more=()):
    return node(f"hpm{number}", "QuinceHPMDevice", (*PORT, ("Address", integer(number)), *more))


def ridge(number, more=(), children=()):
    return node(f"ridge{number}", "IOThunderboltSwitch",
                (("UID", integer(number << 4)), ("Depth", integer(0)),
                 ("Route String", integer(0)), *more), children)


@family(RECORDING)
def entries_side_by_side(directory, size):
    write_recording(directory, repeated(lambda i: node(f"entry{i}"), size))


@family(RECORDING)
def entries_nested_in_chains(directory, size):
    def chain(number):
        inner = node("leaf")
        for depth in range(200):
            inner = node(f"n{number}-{depth}", children=[inner])
        return inner
    write_recording(directory, repeated(chain, size))


@family(RECORDING)
def ports(directory, size):
    write_recording(directory, repeated(port, size))


@family(RECORDING)
def ports_of_other_computers(directory, size):
    other = (("Route String", integer(1)),)
    write_recording(directory, repeated(lambda i: port(i, other), size))


@family(RECORDING)
def thunderbolt_controllers(directory, size):
    write_recording(directory, repeated(ridge, size))


@family(RECORDING)
def ports_below_a_chain_of_bridges(directory, size):
    inner = repeated(lambda i: port(0), size)
    for depth in range(150):
        inner = [node(f"bridge{depth}", children=inner)]
    write_recording(directory, [ridge(1, children=inner)])


@family(RECORDING)
def classes_in_a_chain(directory, size):
    classes = [(f"Class{i}", string(f"Class{i + 1}")) for i in range(size // 60)]
    entries = [node(f"e{i}", name) for i, (name, _) in enumerate(classes[::4])]
    write_recording(directory, entries, classes=classes)


@family(RECORDING)
def planes(directory, size):
    planes = [(f"Plane{i}", node("Root")) for i in range(size // 60)]
    (directory / "input.registry.plist").write_bytes(document(dictionary([
        ("Recording Version", integer(1)), ("Planes", dictionary(planes))])))


@family(RECORDING)
def links_between_planes(directory, size):
    def defined(number):
        return dictionary([("Name", string(f"e{number}")), ("ID", string(f"id{number}"))])
    entries = repeated(defined, size // 2)
    links = [dictionary([("Link", string(f"id{i}"))]) for i in range(len(entries))]
    (directory / "input.registry.plist").write_bytes(document(dictionary([
        ("Recording Version", integer(1)),
        ("Planes", dictionary([("IOService", node("Root", children=entries)),
                               ("IOPower", node("Root", children=links))]))])))


@family(RECORDING)
def properties_of_one_entry(directory, size):
    properties = [(f"property {i}", integer(i)) for i in range(size // 50)]
    write_recording(directory, [node("entry", properties=properties)])


@family(RECORDING)
def one_long_property(directory, size):
    write_recording(directory, [node("entry", properties=[("Vendor ID", string("x" * size))])])


@family(RECORDING)
def one_long_name(directory, size):
    write_recording(directory, [node("x" * size, "QuinceHPMDevice", PORT)])


@family(RECORDING)
def a_long_board_identifier(directory, size):
    write_recording(directory, [port(0)], board="Zed\n" * (size // 4))


@family(RECORDING)
def a_long_boot_argument(directory, size):
    write_recording(directory, [port(0)], options=[("boot-args", string("a=1 " * (size // 4)))])


@family(RECORDING)
def values_nested_deeply(directory, size):
    deep = "<array>" * 400 + "<true/>" * (size // 7) + "</array>" * 400
    write_recording(directory, [node("entry", properties=[("Vendor ID", deep)])])


@family(RECORDING)
def data_as_one_property(directory, size):
    data = "<data>" + _base64(b"\x5a" * (size * 3 // 4)) + "</data>"
    write_recording(directory, [node("entry", properties=[("Vendor ID", data)])])


@family(RECORDING, ("redact",))
def identifiers_and_texts(directory, size):
    def entry(number):
        return node(f"e{number}", properties=[("UID", string(f"AB{number:08d}CD")),
                                              ("Vendor ID", string(f"text {number} of AB"))])
    write_recording(directory, repeated(entry, size))


@family(RECORDING, ("redact",))
def identifiers_that_begin_alike(directory, size):
    identifiers = repeated(lambda i: node(f"e{i}", properties=[
        ("UID", string("A" * 200 + str(i)))]), size // 2)
    text = node("text", properties=[("Vendor ID", string("a" * (size // 2)))])
    write_recording(directory, [*identifiers, text])


@family(RECORDING, ("redact",))
def one_identifier_everywhere(directory, size):
    text = string("serial-1234567890 " * (size // 18))
    write_recording(directory, [node("e", properties=[("UID", string("serial-1234567890")),
                                                      ("Vendor ID", text)])])


@family(RECORDING, ("redact",))
def identifiers_as_data(directory, size):
    def entry(number):
        data = "<data>" + _base64(number.to_bytes(16, "little")) + "</data>"
        return node(f"e{number:032x}", properties=[("UID", data)])
    write_recording(directory, repeated(entry, size))


# Binary recordings, in which the same objects are reached many times.

def binary_recording(directory, services):
    """`services(binary)` adds the children of the service plane's root: their references."""
    binary = Binary()
    root = binary.named([("Name", binary.string("Root")), ("Children", binary.array(services(binary)))])
    identity = binary.named([("board-id", binary.data(BOARD.encode() + b"\0"))])
    planes = binary.named([("IODeviceTree", binary.named([("Properties", identity)])),
                           ("IOService", root)])
    top = binary.named([("Recording Version", binary.integer(1)), ("Planes", planes)])
    (directory / "input.registry.plist").write_bytes(binary.file(top))


def shared_port(binary, more=()):
    properties = binary.named([("Version", binary.integer(5)), ("Vendor ID", binary.integer(1)),
                               ("Device ID", binary.integer(2)),
                               ("Revision ID", binary.integer(3)), *more])
    return binary.named([("Name", binary.string("hpm")), ("Properties", properties),
                         ("Class", binary.string("QuinceHPMDevice"))])


@family(RECORDING)
def shared_ports(directory, size):
    binary_recording(directory, lambda b: [shared_port(b)] * (size // 8))


@family(RECORDING)
def shared_entries(directory, size):
    binary_recording(directory, lambda b: [b.named([("Name", b.string("e"))])] * (size // 2))


@family(RECORDING)
def shared_long_strings(directory, size):
    def services(b):
        text = b.string("y" * (size // 2))
        entry = b.named([("Name", b.string("e")), ("Properties", b.named([("Vendor ID", text)]))])
        return [entry] * min(size // 4, 100)
    binary_recording(directory, services)


@family(RECORDING)
def shared_long_keys(directory, size):
    def services(b):
        name = b.string("k" * (size // 2))
        properties = b.dictionary([(name, b.integer(1))])
        return [b.named([("Name", b.string("e")), ("Properties", properties)])] * min(size // 4, 100)
    binary_recording(directory, services)


@family(RECORDING)
def shared_elements_nested_deeply(directory, size):
    def services(b):
        value = b.array([b.integer(1)] * (size // 2))
        for _ in range(400):
            value = b.array([value])
        return [b.named([("Name", b.string("e")), ("Properties", b.named([("Vendor ID", value)]))])]
    binary_recording(directory, services)


@family(RECORDING, constant="a file may have 65,536 values more than bytes")
def shared_arrays_of_arrays(directory, size):
    def services(b):
        value = b.integer(1)
        for _ in range(16):
            value = b.array([value, value])
        pad = b.data(b"\0" * size)
        return [b.named([("Name", b.string("e")),
                         ("Properties", b.named([("Vendor ID", value), ("Pad", pad)]))])]
    binary_recording(directory, services)


# Configurations.

def write_configuration(directory, types):
    _write_configuration(directory, document(dictionary(types)))


def _write_configuration(directory, content):
    board = directory / "payload" / "Fernwick" / BOARD
    board.mkdir(parents=True)
    for utility in ("RidgeFlash.efi", "PortFlash.efi"):
        (directory / "payload" / "Fernwick" / utility).write_bytes(b"utility")
    (board / "a.bin").write_bytes(b"image")
    (board / "Config.plist").write_bytes(content)


def personality(more=(), version=9):
    return dictionary([("Version", integer(version)), ("Firmware", string("a.bin")),
                       ("Port Silicon Vendor ID", integer(1)),
                       ("Port Silicon Device ID", integer(2)),
                       ("Port Silicon Revision", integer(3)), *more])


@family(CONFIGURATION)
def personalities_that_match_nothing(directory, size):
    write_configuration(directory, [("USBC", array(repeated(
        lambda i: personality([("RID", integer(i + 100))]), size)))])


@family(CONFIGURATION)
def personalities_that_are_equal(directory, size):
    write_configuration(directory, [("USBC", array(repeated(lambda i: personality(), size)))])


@family(CONFIGURATION)
def personalities_without_keys(directory, size):
    write_configuration(directory, [("USBC", "<array>" + "<dict/>" * (size // 7) + "</array>")])


@family(CONFIGURATION)
def candidates_of_other_kinds(directory, size):
    write_configuration(directory, [("USBC", "<array>" + "<true/>" * (size // 7) + "</array>")])


@family(CONFIGURATION)
def unread_keys(directory, size):
    unread = [(f"Unread {i}", "<true/>") for i in range(size // 30)]
    write_configuration(directory, [("LegacyUSBC", personality(unread))])


@family(CONFIGURATION)
def similar_unread_keys(directory, size):
    unread = [(f"Port Address {i}", "<true/>") for i in range(size // 30)]
    write_configuration(directory, [("USBC", array([personality(unread)]))])


@family(CONFIGURATION)
def the_same_key_often(directory, size):
    same = [("Version", integer(i)) for i in range(size // 40)]
    write_configuration(directory, [("USBC", array([personality(same)]))])


@family(CONFIGURATION)
def top_level_keys(directory, size):
    write_configuration(directory, [*((f"Type {i}", "<array/>") for i in range(size // 30)),
                                    ("USBC", array([personality()]))])


@family(CONFIGURATION)
def long_lists_of_numbers(directory, size):
    def numbers(i):
        return array([integer(5), *(integer(i * 1000 + j) for j in range(1, 500))])
    write_configuration(directory, [("USBC", array(repeated(
        lambda i: personality([("RID", numbers(i)), ("Port Address", numbers(i))]), size)))])


@family(CONFIGURATION)
def two_lists_of_numbers(directory, size):
    def numbers(first):
        return array([integer(first + j) for j in range(size // 48)])
    write_configuration(directory, [("USBC", array([personality([("RID", numbers(5))]),
                                                    personality([("RID", numbers(6))])]))])


@family(CONFIGURATION)
def variables_to_set(directory, size):
    variables = [(f"variable-{i}", string("x")) for i in range(size // 50)]
    write_configuration(directory, [("USBC", array([personality([
        ("SetNVRAM", dictionary(variables))])]))])


@family(CONFIGURATION)
def variables_to_clear(directory, size):
    names = array([string(f"variable-{i}") for i in range(size // 28)])
    write_configuration(directory, [("USBC", array([personality([("ClearNVRAM", names)])]))])


@family(CONFIGURATION)
def a_long_image_name(directory, size):
    write_configuration(directory, [("LegacyUSBC", dictionary([
        ("Version", integer(9)), ("Firmware", string("x" * size))]))])


@family(CONFIGURATION)
def a_version_nested_deeply(directory, size):
    deep = "<array>" * 400 + "<true/>" * (size // 7) + "</array>" * 400
    write_configuration(directory, [("LegacyUSBC", dictionary([
        ("Version", deep), ("Firmware", string("a.bin"))]))])


def binary_configuration(directory, make):
    binary = Binary()
    _write_configuration(directory, binary.file(make(binary)))


def shared_personality(b, more=()):
    return b.named([("Version", b.integer(9)), ("Firmware", b.string("a.bin")),
                    ("Port Silicon Vendor ID", b.integer(1)),
                    ("Port Silicon Device ID", b.integer(2)),
                    ("Port Silicon Revision", b.integer(3)), *more])


@family(CONFIGURATION)
def shared_personalities(directory, size):
    binary_configuration(directory, lambda b: b.named([
        ("USBC", b.array([shared_personality(b)] * (size // 8)))]))


@family(CONFIGURATION)
def shared_images_of_long_names(directory, size):
    def make(b):
        long = b.named([("Firmware", b.string("x" * (size // 2))), ("Version", b.integer(9))])
        return b.named([("USBC", b.array([long] * min(size // 4, 100)))])
    binary_configuration(directory, make)


@family(CONFIGURATION)
def shared_unread_keys(directory, size):
    def make(b):
        unread = [(b.string(f"Unread {i}"), b.integer(i)) for i in range(size // 80)]
        return b.named([("USBC", b.array([b.dictionary(unread)] * 50))])
    binary_configuration(directory, make)


# Computers and configurations together.

@family(OTHER, ("replay", "explain", "explain --json", "survey", "survey ndjson", "coverage", "settle",
                "diff"), pairs="each controller is tried with each personality")
def ports_and_personalities(directory, size):
    write_recording(directory, repeated(port, size // 2))
    write_configuration(directory, [("USBC", array(repeated(
        lambda i: personality([("RID", integer(i + 100))]), size // 2)))])


@family(OTHER, ("replay", "explain", "survey", "survey ndjson", "survey junit", "coverage", "settle",
                "settle ndjson", "diff", "diff json"))
def ports_that_all_match(directory, size):
    write_recording(directory, repeated(port, size))
    write_configuration(directory, [("LegacyUSBC", personality())])


@family(OTHER, ("replay", "explain", "survey", "survey ndjson", "diff"))
def shared_ports_that_all_match(directory, size):
    binary_recording(directory, lambda b: [shared_port(b)] * (size // 8))
    write_configuration(directory, [("LegacyUSBC", personality())])


@family(OTHER, ("survey", "survey ndjson", "diff"))
def ports_that_set_the_same_variables(directory, size):
    variables = [(f"variable-{i}", string("x")) for i in range(size // 100)]
    write_recording(directory, repeated(port, size // 2))
    write_configuration(directory, [("LegacyUSBC", personality([
        ("SetNVRAM", dictionary(variables))]))])


@family(OTHER, ("survey", "survey ndjson", "diff"),
        pairs="the tool's plan lists the names once for each port")
def ports_that_clear_the_same_variables(directory, size):
    names = array([string(f"variable-{i}") for i in range(size // 56)])
    write_recording(directory, repeated(port, size // 2))
    write_configuration(directory, [("LegacyUSBC", personality([("ClearNVRAM", names)]))])


@family(OTHER, ("replay", "explain", "explain --json", "survey", "survey ndjson", "coverage", "settle",
                "diff"))
def ports_that_match_unread_keys(directory, size):
    write_ports_and_unread_keys(directory, size, vendor=1)


@family(OTHER, ("replay", "explain", "explain --json", "survey", "survey ndjson", "coverage", "settle",
                "draft", "diff"))
def ports_rejected_by_unread_keys(directory, size):
    write_ports_and_unread_keys(directory, size, vendor=2)


def write_ports_and_unread_keys(directory, size, vendor):
    unread = [(f"Unread {i}", "<true/>") for i in range(size // 60)]
    write_recording(directory, repeated(port, size // 2))
    write_configuration(directory, [("USBC", array([dictionary([
        *unread, ("Version", integer(9)), ("Firmware", string("a.bin")),
        ("Port Silicon Vendor ID", integer(vendor)), ("Port Silicon Device ID", integer(2)),
        ("Port Silicon Revision", integer(3))])]))])


@family(OTHER, ("replay", "explain", "survey", "diff"),
        pairs="an inventory is collected for each top-level key")
def ports_and_top_level_keys(directory, size):
    write_recording(directory, repeated(port, size // 2))
    write_configuration(directory, [(f"Type {i}", "<array/>") for i in range(size // 60)])


# What a survey reads besides.

def rows(size, make):
    row = ('{{"file":"{}","outcome":"no plan","status":13,"reason":null,"board":null,"revision":0,'
           '"matches":[],"diagnostics":[],"plan":{}}}\n')
    return "".join(repeated(lambda i: row.format(*make(i)), size))


@family(OTHER, ("survey --expect",))
def an_expectation_of_many_rows(directory, size):
    (directory / "expected.ndjson").write_text(rows(size, lambda i: (f"{i}.plist", "null")))


@family(OTHER, ("survey --expect",))
def an_expectation_of_one_file(directory, size):
    (directory / "expected.ndjson").write_text(rows(size, lambda i: ("same.plist", "null")))


@family(OTHER, ("survey --expect",))
def an_expectation_of_many_keys(directory, size):
    variables = ",".join(f'"variable-{i}":"x"' for i in range(size // 20))
    plan = f'{{"priority":0,"setNVRAM":{{{variables}}},"clearNVRAM":[],"options":""}}'
    (directory / "expected.ndjson").write_text(rows(1, lambda i: ("a.plist", plan)))


@family(OTHER, ("survey --expect",))
def an_expectation_nested_deeply(directory, size):
    depth = min(size // 2, 900)
    plan = ('{"priority":0,"setNVRAM":' + '{"a":' * depth + "[" + "1," * (size // 2) + "1]"
            + "}" * depth + ',"clearNVRAM":[],"options":""}')
    (directory / "expected.ndjson").write_text(rows(1, lambda i: ("a.plist", plan)))


@family(OTHER, ("survey of a list",))
def a_list_of_names(directory, size):
    (directory / "names").write_text("".join(repeated(lambda i: f"absent-{i}.plist\n", size)))


@family(OTHER, ("survey of a list",))
def a_name_without_an_end(directory, size):
    (directory / "names").write_bytes(b"x" * size)


@family(OTHER, ("survey of a directory",))
def recordings_in_a_directory(directory, size):
    (directory / "fleet").mkdir()
    content = recording([port(0)])
    for number in range(max(size // len(content), 1)):
        (directory / "fleet" / f"{number}.registry.plist").write_bytes(content)


# Archives of recordings, which commands recognise by their contents.

RECORDING_OF_A_PORT = recording([port(0)])


def tar_archive(members, mode="w"):
    """The bytes of a tar archive. `members` are pairs of a name and its contents, or None: a link."""
    import io
    import tarfile
    out = io.BytesIO()
    with tarfile.open(fileobj=out, mode=mode) as written:
        for name, content in members:
            member = tarfile.TarInfo(name)
            if content is None:
                member.type, member.linkname = tarfile.SYMTYPE, "elsewhere"
            else:
                member.size = len(content)
            written.addfile(member, io.BytesIO(content or b""))
    return out.getvalue()


def recordings_of_ports(size):
    return [(f"{i}.registry.plist", RECORDING_OF_A_PORT)
            for i in range(max(size // len(RECORDING_OF_A_PORT), 1))]


@family(OTHER, ("survey of an archive", "coverage of an archive"))
def recordings_in_an_archive(directory, size):
    (directory / "archive").write_bytes(tar_archive(recordings_of_ports(size)))


@family(OTHER, ("survey of an archive", "coverage of an archive"))
def recordings_in_a_zip_file(directory, size):
    import zipfile
    with zipfile.ZipFile(directory / "archive", "w") as written:
        for name, content in recordings_of_ports(size):
            written.writestr(name, content)


# Compressed, what they expand to decides; "padding" gives the file its size.
@family(OTHER, ("survey of an archive",))
def recordings_in_a_compressed_archive(directory, size):
    (directory / "archive").write_bytes(tar_archive(recordings_of_ports(size), "w:gz"))
    (directory / "padding").write_bytes(b"x" * size)


@family(OTHER, ("survey of an archive",))
def other_members_of_an_archive(directory, size):
    members = [(f"{i}", b"") for i in range(size // 512)]
    (directory / "archive").write_bytes(tar_archive(members + recordings_of_ports(1)))


@family(OTHER, ("survey of an archive",))
def other_members_of_a_zip_file(directory, size):
    import zipfile
    with zipfile.ZipFile(directory / "archive", "w") as written:
        for number in range(size // 100):
            written.writestr(f"{number}", "")
        written.writestr("a.registry.plist", RECORDING_OF_A_PORT)


@family(OTHER, ("survey of an archive",))
def links_in_an_archive(directory, size):
    members = [(f"{i}.registry.plist", None) for i in range(size // 512)]
    (directory / "archive").write_bytes(tar_archive(members))


@family(OTHER, ("survey of an archive",))
def long_names_in_an_archive(directory, size):
    members = [("x" * (size // 4) + f"{i}.registry.plist", RECORDING_OF_A_PORT) for i in range(4)]
    (directory / "archive").write_bytes(tar_archive(members))


# Property lists as such.

@family(OTHER, ("convert FILE xml", "convert FILE binary"))
def a_text_of_escapes(directory, size):
    (directory / "list.plist").write_text('{ a = "' + "\\U0041\\101" * (size // 10) + '"; }')


@family(OTHER, ("convert FILE xml", "convert FILE binary"))
def empty_arrays(directory, size):
    (directory / "list.plist").write_bytes(document("<array>" + "<array/>" * (size // 8) + "</array>"))


@family(OTHER, ("convert FILE xml", "convert FILE binary"))
def shared_strings_at_every_offset(directory, size):
    binary = Binary()
    shared = binary.string("z" * min(size // 2, 1000))
    binary_list = binary.array([shared] * (size // 2))
    (directory / "list.plist").write_bytes(binary.file(binary_list))


@family(OTHER, ("convert FILE xml", "convert FILE binary"))
def keys_of_one_dictionary(directory, size):
    entries = [(f"{i * 7919 % 1000003}", "<true/>") for i in range(size // 30)]
    (directory / "list.plist").write_bytes(document(dictionary(entries)))


def input_size(directory):
    """The bytes of everything that a family wrote."""
    return sum(path.stat().st_size for path in pathlib.Path(directory).rglob("*") if path.is_file())
