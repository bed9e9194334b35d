#!/usr/bin/python3
"""Prints the processor time in seconds that plistlib needs to load a property list.

usage: plistlib_seconds.py FILE
"""

import pathlib
import plistlib
import sys
import time


def main(path):
    data = pathlib.Path(path).read_bytes()
    start = time.process_time()
    plistlib.loads(data)
    print(time.process_time() - start)


if __name__ == "__main__":
    main(*sys.argv[1:])
