#!/usr/bin/env python3
"""Knows which sources clang-tidy has passed as they stand: with the headers of the tree that they
include, the checks and the flags.

usage: lint_state.py STATE list FILES    prints those of the files that have not passed
       lint_state.py STATE pass FILES    notes that these files have
"""

import hashlib
import os
import re
import sys

ROOT = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
PLACES = ["src", "", "tests", "bench"]  # where an include is looked for, behind its own folder
FOR_ALL = [".clang-tidy", "CMakeLists.txt", "tests/CMakeLists.txt"]


def content(path):
    with open(os.path.join(ROOT, path), "rb") as file:
        return file.read()


def included(path, name):
    """The file of the tree that this include names, or None."""
    for place in [os.path.dirname(path), *PLACES]:
        found = os.path.normpath(os.path.join(place, name))
        if os.path.isfile(os.path.join(ROOT, found)):
            return found
    return None


def unit(path):
    """The file and all that it includes of the tree, in a fixed order."""
    seen, ahead = set(), [path]
    while ahead:
        at = ahead.pop()
        seen.add(at)
        names = re.findall(rb'^\s*#\s*include\s*"([^"]+)"', content(at), re.M)
        found = {included(at, name.decode()) for name in names}
        ahead += found - seen - {None}
    return sorted(seen)


def digest(path):
    state = hashlib.sha256()
    for part in FOR_ALL + unit(path):
        state.update(part.encode() + b"\0" + content(part) + b"\0")
    return state.hexdigest()


def main(state, what, paths):
    passed = {}
    if os.path.exists(state):
        with open(state, encoding="utf-8") as file:
            passed = dict(line.split() for line in file)
    digests = {path: digest(path) for path in paths}
    if what == "list":
        print("".join(path + "\n" for path in paths if passed.get(path) != digests[path]), end="")
        return
    passed.update(digests)
    with open(state, "w", encoding="utf-8") as file:
        file.writelines(f"{path} {passed[path]}\n" for path in sorted(passed))


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2], [os.path.relpath(path, ROOT) for path in sys.argv[3:]])
