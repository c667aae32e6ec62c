#!/usr/bin/env python3
"""Checks how the house is built: levels of folders, circles of includes, lengths, the road map, and
how much of the tree is tests. Prints what is wrong, one line each; status 1 when anything is.

usage: check_structure.py [--write] [root of the tree]

The lines of ROADMAP.md are the first sentences of the files; --write makes them anew. It keeps the
order of the lines and all other text, and puts a new file at the end of its section.
"""

import os
import re
import shutil
import subprocess
import sys
import textwrap

# A file includes files of its own folder and of the folders before it.
LEVELS = ["base", "diag", "store", "kernels", "input", "overhead", "cable", "modal", "fit",
          "passivity", "improved", "output", "run", "companions"]
CHOOSERS = ("improved/", "run/methods.", "companions/")  # who may include improved methods
JUDGES = {("plot", "verify"), ("batch", "verify")}  # a companion and the one whose routines it calls
FILE_LINES = 600
FUNCTION_LINES = 100
NESTING = 4  # braces inside the braces of a function

# Tests in per cent of all other code: lines that are neither blank nor comment.
TEST_CODE = (25, 30)
# All of tests/, data included, in per cent of the lines of all other folders.
TEST_LINES = (0, 50)
CODE = (".cpp", ".h", ".py", ".js", ".sh")
FOLDERS = ["src", "companions", "python", "bench", "tools"]
MAP_WIDTH = 120

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
            elif name.startswith("improved/") and not path.startswith(CHOOSERS):
                yield f"{place(path)}: a default method includes an improved one: {name}"
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


def first_sentence(text):
    """The first sentence of the comment that a file begins with."""
    comment = re.match(r"(?://[ \t]*[^\s][^\n]*\n)*", text).group()
    words = " ".join(line.removeprefix("//").strip() for line in comment.splitlines())
    return re.split(r"[.:]$|\.\s", words, maxsplit=1)[0]


def map_lines(sources):
    """The line of each unit: its name and what its header says first, or its source."""
    lines = {}
    for path in sorted(sources, key=lambda p: (unit(p), not p.endswith(".h"))):
        says = first_sentence(sources[path])
        if says and unit(path) not in lines:
            lines[unit(path)] = textwrap.fill(f"- `{unit(path)}`: {says}", MAP_WIDTH, subsequent_indent="  ",
                                              break_long_words=False, break_on_hyphens=False) + "\n"
    return lines


def section_of(name, headings):
    """The heading "## folder" or "## folder: words" of a unit, of its folder or the next one above."""
    folder = name
    while "/" in folder:
        folder = folder.rsplit("/", 1)[0]
        if folder in headings:
            return folder
    return None


def made_road_map(text, lines):
    """The road map with these lines in the place of its own."""
    parts = re.split(r"^(?=## )", text, flags=re.M)
    headings = [(re.match(r"## ([^\s:]+)", part) or [None, None])[1] for part in parts]
    homes = {name: section_of(name, headings) for name in lines}
    entry = re.compile(r"^- `([^`]+)`[^\n]*\n(?:  [^\n]*\n)*", re.M)
    for at, heading in enumerate(headings):
        here = [name for name in lines if heading and homes[name] == heading]
        listed = [m[1] for m in entry.finditer(parts[at])]
        order = list(dict.fromkeys(name for name in listed if name in here))
        order += [name for name in here if name not in order]
        first = entry.search(parts[at])
        before = parts[at][:first.start()] if first else parts[at].rstrip("\n") + "\n\n"
        after = entry.sub("", parts[at][first.start():]) if first else "\n"
        if order or first:
            parts[at] = before + "".join(lines[name] for name in order) + after
    return "".join(parts).rstrip("\n") + "\n", sorted(n for n in lines if homes[n] is None)


def check_road_map(sources, text):
    lines = map_lines(sources)
    for name in sorted({unit(path) for path in sources} - set(lines)):
        yield f"{place(name)}: no comment at the top says what it is"
    made, homeless = made_road_map(text, lines)
    for name in homeless:
        yield f"ROADMAP.md: no section for {name}"
    if made != text:
        yield "ROADMAP.md: not what the first sentences of the files make; see --write"


COMMENT = re.compile(r"""(?P<words>R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\\n])*"|"""
                     r"""(?<!\w)'(?:\\.|[^'\\\n])+'|`[^`]*`)|//[^\n]*|/\*.*?\*/""", re.S)


def code_lines(path, text):
    """Lines of a file that hold more than blanks and comments."""
    if path.endswith((".py", ".sh")):
        return sum(not re.match(r"\s*(#|$)", line) for line in text.split("\n"))
    code = COMMENT.sub(lambda m: m["words"] or "\n" * m.group().count("\n"), text)
    return sum(line.strip() != "" for line in code.split("\n"))


def check_tests(root, paths):
    """Prints how much of the tree is tests, by code and by all lines."""
    code, lines = {}, {}
    for path in paths:
        folder = path.split("/")[0]
        if "/" not in path or folder not in FOLDERS + ["tests"]:
            continue
        text = read(root, path)
        lines[folder] = lines.get(folder, 0) + text.count("\n")
        if path.endswith(CODE):
            code[folder] = code.get(folder, 0) + code_lines(path, text)
    for what, counts, limits in (("code of the tests", code, TEST_CODE),
                                 ("all lines of tests/", lines, TEST_LINES)):
        tests, rest = counts.get("tests", 0), sum(counts.get(f, 0) for f in FOLDERS)
        percent = 100.0 * tests / max(rest, 1)
        print(f"{what}: {tests} to {rest} of the rest, {percent:.1f} %")
        if limits and rest > 0 and not limits[0] <= percent <= limits[1]:
            yield f"{what}: {percent:.1f} %, not in {limits[0]} to {limits[1]} %"


def main(words):
    write = "--write" in words
    roots = [w for w in words if w != "--write"]
    root = roots[0] if roots else os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
    paths = tree_files(root)
    sources = {p.removeprefix("src/"): read(root, p) for p in paths
               if p.startswith(("src/", "companions/")) and p.endswith((".cpp", ".h"))}
    road_map = read(root, "ROADMAP.md") if "ROADMAP.md" in paths else ""
    if write:
        road_map = made_road_map(road_map, map_lines(sources))[0]
        with open(os.path.join(root, "ROADMAP.md"), "w", encoding="utf-8") as file:
            file.write(road_map)
    wrong = [*check_includes(sources), *check_lengths(sources), *check_road_map(sources, road_map),
             *check_tests(root, paths)]
    if not sources:
        wrong.append("no sources under src/")
    for line in wrong:
        print(line)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
