#!/usr/bin/env python3
"""Checks that the built files have the hardening described in docs/security.md.

Usage: hardening_test.py OPTIMIZED FILE...    OPTIMIZED is 1 when the build optimizes, else 0
"""

import os
import re
import subprocess
import sys


def readelf(option, file):
    return subprocess.run(["readelf", "-W", option, file], check=True, capture_output=True, text=True).stdout


def missing(file, optimized):
    """Returns the hardening that a program or library lacks."""
    header, segments, dynamic, symbols = (readelf(option, file) for option in ("-h", "-l", "-d", "--dyn-syms"))
    name = os.path.basename(file)
    library = ".so" in name
    found = {
        "position-independent": re.search(r"Type:\s+DYN", header) and (library or re.search(r"FLAGS_1.*\bPIE\b", dynamic)),
        "relro": "GNU_RELRO" in segments,
        "bound at the start": re.search(r"FLAGS_1.*\bNOW\b", dynamic),
        "stack not executable": re.search(r"GNU_STACK.*\bRW\s", segments),
        "stack protector": "__stack_chk_fail" in symbols,
    }
    if optimized:
        found["checked copies"] = re.search(r"__\w+_chk@", symbols)
    if name.startswith("libipod."):
        found["never unloaded"] = re.search(r"FLAGS_1.*\bNODELETE\b", dynamic)
        found["assertions of the C++ library"] = "__glibcxx_assert_fail" in symbols
    return [name for name, there in found.items() if not there]


def main():
    optimized = sys.argv[1] == "1"
    files = sys.argv[2:]
    bad = 0
    for file in files:
        lacking = missing(file, optimized)
        bad += bool(lacking)
        if lacking:
            print(f"{file}: lacks {', '.join(lacking)}")
    print(f"{len(files) - bad} hardened, {bad} not")
    return 1 if bad or not files else 0


if __name__ == "__main__":
    sys.exit(main())
