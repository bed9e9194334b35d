#!/usr/bin/python3
"""Prints how many seconds of processor time plistlib takes to load a property list.

usage: plistlib_seconds.py FILE TIMES    the median of so many loads
"""

import pathlib
import plistlib
import statistics
import sys
import time


def seconds_to_load(data):
    start = time.process_time()
    plistlib.loads(data)
    return time.process_time() - start


def main(path, times):
    data = pathlib.Path(path).read_bytes()
    print(statistics.median(seconds_to_load(data) for _ in range(int(times))))


if __name__ == "__main__":
    main(*sys.argv[1:])
