#!/usr/bin/env python3
"""Checks how the house is built: levels of folders, circles of includes, lengths, the road map, and
words that have no place in the tree. Prints what is wrong, one line each; status 1 when anything is.

usage: check_structure.py [root of the tree]
"""

import os
import re
import shutil
import subprocess
import sys

# A file includes files of its own folder and of the folders before it.
LEVELS = ["base", "diag", "store", "kernels", "input", "overhead", "cable", "modal", "fit",
          "passivity", "output", "run", "companions"]
JUDGES = {("plot", "verify"), ("batch", "verify")}  # a companion and the one whose routines it calls
FILE_LINES = 600
FUNCTION_LINES = 100
NESTING = 4  # braces inside the braces of a function

# Written so that no pattern finds itself here.
UNWANTED = [
    r"\bspecificatio[n]\b", r"\bthe spe[c]\b", r"\bas specifie[d]\b", r"\bPart [0-9]+\.[0-9]",
    r"\bissue [#]", r"\bT[O]DO\b", r"\bF[I]XME\b", r"\bX[X]X\b", r"\bH[A]CK\b",
    r"""(?:^|[\s"'=(:])/(?:work|root|home)[/]""",
]

NOT_CODE = re.compile(
    r"""//[^\n]*|/\*.*?\*/|R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\\n])*"|"""
    r"""(?<!\w)'(?:\\.|[^'\\\n])+'|^[ \t]*\#(?:\\\n|[^\n])*""", re.S | re.M)
TYPE = re.compile(r"\b(struct|class|union|enum)\b")
TAIL = re.compile(r"[)}]\s*((const|noexcept|override|final|mutable)\b\s*|->[^()]*)*$")
BLOCK = re.compile(r"([\])]|\b(else|do|try|mutable|noexcept)|->[^()]*|\b(case\b[^?]*|default)\s*:)$")


class Scope:
    """What a brace opened: namespace, type, function, block or list."""

    def __init__(self, kind, line, parens, head):
        self.kind, self.line, self.parens, self.head = kind, line, parens, head


def kind_of(head, scopes):
    """What the brace behind this text opens."""
    outer = next((s.kind for s in reversed(scopes) if s.kind != "list"), "namespace")
    if outer in ("namespace", "type"):
        if re.search(r"\bnamespace\b|\bextern\b\s*\"", head):
            return "namespace"
        if TAIL.search(head):
            return "function"
        return "type" if TYPE.search(head) else "list"
    if TYPE.match(head):
        return "type"
    if head == "":
        return "list" if scopes[-1].kind == "list" else "block"
    return "block" if BLOCK.search(head) else "list"


def functions(text):
    """Yields (first line, lines, depth of the braces inside) of each function."""
    code = NOT_CODE.sub(lambda m: '""' + "\n" * m.group().count("\n")
                        if m.group()[0] in "\"'R" else "\n" * m.group().count("\n"), text)
    scopes, depths = [], []
    line, parens, head = 1, 0, 0
    for at, c in enumerate(code):
        if c == "\n":
            line += 1
        elif c == "(":
            parens += 1
        elif c == ")":
            parens -= 1
        elif c == ";" and parens == 0:
            head = at + 1
        elif c == "{":
            words = code[head:at]
            first = line - words.lstrip().count("\n")
            scopes.append(Scope(kind_of(words.strip(), scopes), first, parens, head))
            if scopes[-1].kind == "function":
                depths.append(0)
            elif scopes[-1].kind == "block" and depths:
                inside = next(i for i, s in enumerate(reversed(scopes)) if s.kind == "function")
                depths[-1] = max(depths[-1], sum(s.kind == "block" for s in scopes[-inside:]))
            parens, head = 0, at + 1
        elif c == "}" and scopes:
            scope = scopes.pop()
            parens = scope.parens
            # A list is part of its statement, and so is a block in the brackets of a call.
            head = scope.head if scope.kind == "list" or parens > 0 else at + 1
            if scope.kind == "function":
                yield scope.line, line - scope.line + 1, depths.pop()


def unit(path):
    """A header and its source are one unit: folder/name."""
    return os.path.splitext(path)[0]


def read(root, path):
    with open(os.path.join(root, path), encoding="utf-8", errors="replace") as file:
        return file.read()


def tree_files(root):
    """Files of the tree, below the root, without what is built or ignored."""
    listed = None
    if shutil.which("git"):
        listed = subprocess.run(["git", "-C", root, "ls-files", "-co", "--exclude-standard"],
                                capture_output=True, text=True, check=False)
    if listed and listed.returncode == 0:
        return sorted(f for f in listed.stdout.split("\n") if os.path.isfile(os.path.join(root, f)))
    found = []
    for folder, folders, files in os.walk(root):
        folders[:] = [f for f in folders if f not in ("build", ".git")]
        found += [os.path.relpath(os.path.join(folder, f), root) for f in files]
    return sorted(found)


def place(path):
    """Where a source stands: companions beside src/, all else in it."""
    return path if path.startswith("companions/") else "src/" + path


def may_meet(path, name):
    """Companions share what is in companions/shared; those that judge a model do it by verify."""
    rooms = [p.split("/")[1] for p in (path, name) if p.startswith("companions/")]
    return len(rooms) < 2 or rooms[1] in (rooms[0], "shared") or tuple(rooms) in JUDGES


def check_includes(sources):
    """Includes run downward, and no two units include each other round any corner."""
    graph = {}
    for path, text in sources.items():
        folder = path.split("/")[0]
        if folder not in LEVELS:
            yield f"{place(path)}: a folder without a level"
            continue
        for name in re.findall(r'^\s*#\s*include\s*"([^"]+)"', text, re.M):
            if name not in sources:
                yield f"{place(path)}: includes {name}, which is not in the tree by that path"
            elif LEVELS.index(name.split("/")[0]) > LEVELS.index(folder):
                yield f"{place(path)}: includes upward: {name}"
            elif not may_meet(path, name):
                yield f"{place(path)}: includes another companion: {name}"
            elif unit(name) != unit(path):
                graph.setdefault(unit(path), set()).add(unit(name))
    done = set()
    for start in sorted(graph):
        yield from circles(graph, start, [], done)


def circles(graph, at, road, done):
    if at in road:
        yield "a circle of includes: " + " -> ".join(road[road.index(at):] + [at])
    elif at not in done:
        for following in sorted(graph.get(at, ())):
            yield from circles(graph, following, road + [at], done)
        done.add(at)


def check_lengths(sources):
    for path, text in sources.items():
        lines = text.count("\n")
        if lines > FILE_LINES:
            yield f"{place(path)}: {lines} lines, at most {FILE_LINES}"
        for first, length, depth in functions(text):
            if length > FUNCTION_LINES:
                yield f"{place(path)}:{first}: a function of {length} lines, at most {FUNCTION_LINES}"
            if depth > NESTING:
                yield f"{place(path)}:{first}: {depth} braces deep, at most {NESTING}"


def check_road_map(sources, text):
    """Lines "- `folder/name`: ..." (or the name alone, when it is the only one) tell each unit once."""
    units = sorted({unit(path) for path in sources})
    told = re.findall(r"^- `([^`]+)`", text, re.M)
    for u in units:
        name = u.split("/")[-1]
        alone = sum(v.split("/")[-1] == name for v in units) == 1
        times = told.count(u) + (told.count(name) if alone and name != u else 0)
        if times != 1:
            yield f"ROADMAP.md: {u} is named in {times} lines, not in one"
    for name in told:
        if name not in units and not any(u.endswith("/" + name) for u in units):
            yield f"ROADMAP.md: {name} is not in the tree"


def check_words(root, paths):
    pattern = re.compile("|".join(UNWANTED), re.I)
    shouted = ("todo", "fixme", "xxx", "hack")  # words only in capitals
    for path in paths:
        for number, line in enumerate(read(root, path).split("\n"), 1):
            for found in pattern.finditer(line):
                word = found.group().strip()
                if word.lower() not in shouted or word.isupper():
                    yield f"{path}:{number}: \"{word}\""


def main():
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..")
    paths = tree_files(root)
    sources = {p.removeprefix("src/"): read(root, p) for p in paths
               if p.startswith(("src/", "companions/")) and p.endswith((".cpp", ".h"))}
    road_map = read(root, "ROADMAP.md") if "ROADMAP.md" in paths else ""
    wrong = [*check_includes(sources), *check_lengths(sources), *check_road_map(sources, road_map),
             *check_words(root, paths)]
    if not sources:
        wrong.append("no sources under src/")
    for line in wrong:
        print(line)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
