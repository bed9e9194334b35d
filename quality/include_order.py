#!/usr/bin/python3
"""Checks the #include lines of the source against the order of the folders.

CMakeLists.txt states what each folder uses: fernwick_folder(NAME [DEPENDENCY...]). A file may include:

  - its own folder and the dependencies of its folder;
  - if it is a test (NAME_test.cc), also testing/;
  - in a folder whose subfolders have an order (SUBFOLDERS), only its own subfolder, those before it and
    headers that are in none;
  - outside those folders (golden/, fuzz/, ...) every folder; but no folder includes such a file.

There are no cycles.

usage: include_order.py [ROOT]    prints one line for each fault; exit status 1 if there is one
"""

import pathlib
import re
import sys

# The subfolders of a folder in their order: each uses only those that are named before it.
SUBFOLDERS = {"lab": ["support", "recordings", "what_if", "lint", "explain", "survey", "draft", "report"]}

FOLDER = re.compile(r"^fernwick_folder\(([^)]*)\)", re.MULTILINE)
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*"([^"]*)"', re.MULTILINE)


def read_folders(root):
    """The folders in the order in which they are declared, each with its dependencies."""
    text = (root / "CMakeLists.txt").read_text()
    words = [match.group(1).split() for match in FOLDER.finditer(text)]
    return {name: dependencies for name, *dependencies in words}


def declaration_faults(folders):
    """Dependencies that are not declared before the folder that names them."""
    declared = set()
    for folder, dependencies in folders.items():
        for dependency in dependencies:
            if dependency not in declared:
                yield f"CMakeLists.txt: {folder}/ uses {dependency}/, which is not declared before it"
        declared.add(folder)


def read_includes(root):
    """Every source file by its path from the root, with what it includes in quotes."""
    paths = [path.relative_to(root) for path in sorted(root.glob("*/**/*.[hc]*"))]
    return {
        str(path): INCLUDE.findall((root / path).read_text())
        for path in paths
        if path.suffix in (".h", ".cc") and not path.parts[0].startswith("build")
    }


def folder_of(path):
    return path.split("/")[0]


def subfolder_of(path):
    """The subfolder of a file; None for one at the top of its folder."""
    parts = path.split("/")
    return parts[1] if len(parts) > 2 else None


def rank_of(path, subfolders):
    """The rank of a file in the order of its folder. A file that is in none of them, as main.cc, comes
    last; but such a header comes first, because every subfolder may include it."""
    if subfolder_of(path) in subfolders:
        return subfolders.index(subfolder_of(path))
    return -1 if path.endswith(".h") else len(subfolders)


def may_include_in_folder(path, included):
    """Whether the order of the subfolders allows the one file of a folder to include the other."""
    subfolders = SUBFOLDERS.get(folder_of(path), [])
    return rank_of(included, subfolders) <= rank_of(path, subfolders) or not subfolders


def subfolder_faults(includes):
    """Subfolders that are missing in the order of their folder."""
    subfolders = {(folder_of(path), subfolder_of(path)) for path in includes if subfolder_of(path)}
    for folder, subfolder in sorted(subfolders):
        if subfolder not in SUBFOLDERS.get(folder, [subfolder]):
            yield f"{folder}/{subfolder}/ is not in the order of the subfolders of {folder}/"


def may_include(path, included, folders):
    """Whether the order of the folders allows the one file to include the other."""
    user, used = folder_of(path), folder_of(included)
    if user not in folders:
        return True
    if user == used:
        return may_include_in_folder(path, included)
    if used == "testing" and path.endswith("_test.cc"):
        return True
    return used in folders[user]


def include_faults(includes, folders):
    """Includes of files that do not exist or that the order forbids."""
    for path, used in includes.items():
        for included in used:
            if included not in includes:
                yield f'{path}: there is no "{included}"'
            elif not may_include(path, included, folders):
                user = folder_of(path)
                if user == folder_of(included):
                    user = path.rpartition("/")[0]
                yield f'{path}: {user}/ must not include "{included}"'


def find_cycle(includes):
    """A cycle of files, each included by the one before: the first is also the last. None if there is none."""
    done = set()

    def visit(path, chain):
        if path in chain:
            return chain[chain.index(path):] + [path]
        if path in done:
            return None
        for included in includes.get(path, []):
            cycle = visit(included, chain + [path])
            if cycle:
                return cycle
        done.add(path)
        return None

    return next(filter(None, (visit(path, []) for path in includes)), None)


def find_faults(root):
    """Every fault of the source below `root`, one line each."""
    folders, includes = read_folders(root), read_includes(root)
    if not folders or not includes:
        return [f"{root}: no folders with source"]
    faults = [*declaration_faults(folders), *subfolder_faults(includes), *include_faults(includes, folders)]
    cycle = find_cycle(includes)
    if cycle:
        faults.append("cycle: " + " includes ".join(cycle))
    return faults


def main():
    root = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parents[1]
    faults = find_faults(root)
    print("\n".join(faults), end="\n" if faults else "")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
