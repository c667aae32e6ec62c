#!/usr/bin/env python3
"""The check of the structure on small trees that are right, and wrong in one thing each."""

import contextlib
import io
import os
import pathlib
import re
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../tools"))
sys.dont_write_bytecode = True
import check_structure  # pylint: disable=wrong-import-position

TREE = {
    "src/base/ground.h": "// The ground\n// of all. More.\n#pragma once\n#include <string>\n",
    "src/base/ground.cpp": '// Not this.\n#include "base/ground.h"\n',
    "src/store/shelf.h": '// A shelf\n#include "base/ground.h"\n',
    "src/run/main.cpp": '// Start: x.\n#include "store/shelf.h"\n// "{"\n\nint main() {\nreturn 0;\n}\n',
    "tests/a_test.cpp": "int a;\nint b;\n",
    "ROADMAP.md": "Map\n\n## base: low\n\n- `base/ground`: The ground of all\n\n## store\n\nWords.\n\n"
                  "- `store/shelf`: A shelf\n\n## run\n\n- `run/main`: Start: x\n",
}


def function(lines, head="void f(int n) {"):
    return head + "\n" + "  step();\n" * (lines - 2) + "}\n"


def nested(depth):
    opened = ["if (a) {", "for (;;) {", "switch (a) {", "runs([&] {", "do {"]
    text = "".join("  " + opened[i % len(opened)] + "\n" for i in range(depth))
    return "int g() {\n" + text + "  }\n" * depth + "}\n"


class CheckStructure(unittest.TestCase):
    def run_check(self, changes, *words):
        """Lines that the check prints on the tree with these files replaced (None takes one away), and
        the road map that it leaves."""
        with tempfile.TemporaryDirectory() as root:
            for path, text in {**TREE, **changes}.items():
                if text is not None:
                    pathlib.Path(root, path).parent.mkdir(parents=True, exist_ok=True)
                    pathlib.Path(root, path).write_text(text, encoding="utf-8")
            with contextlib.redirect_stdout(io.StringIO()) as printed:
                status = check_structure.main([*words, root])
            road_map = pathlib.Path(root, "ROADMAP.md")
            made = road_map.read_text(encoding="utf-8") if road_map.exists() else ""
        lines = printed.getvalue().splitlines(keepends=True)
        wrong = [line for line in lines if " of the rest, " not in line]
        self.assertEqual(len(lines) - len(wrong), 2)
        self.assertEqual(status, 1 if wrong else 0)
        return lines, made

    def told(self, changes):
        """What is wrong with the tree but for its road map and the share of its tests."""
        return "".join(line for line in self.run_check(changes)[0]
                       if not re.match(r"ROADMAP|code of|all lines|.*no comment", line))

    def check(self, wrong, text):
        told = self.told(wrong)
        self.assertIn(text, told)
        self.assertEqual(told.count("\n"), 1, told)

    def test_right_tree(self):
        self.assertEqual(self.run_check({})[0],
                         ["code of the tests: 2 to 8 of the rest, 25.0 %\n",
                          "all lines of tests/: 2 to 15 of the rest, 13.3 %\n"])

    def test_empty_tree(self):
        self.check({path: None for path in TREE}, "no sources")

    def test_includes(self):
        self.check({"src/base/ground.cpp": '#include "store/shelf.h"\n'}, "includes upward")
        self.check({"companions/a/x.h": '#include "companions/b/y.h"\n',
                    "companions/b/y.h": "\n", "ROADMAP.md": TREE["ROADMAP.md"] + "- `x`: x\n- `y`: y\n"},
                   "includes another companion")
        self.check({"src/base/ground.cpp": '#include "shelf.h"\n'}, "not in the tree by that path")
        self.check({"src/odd/shelf.h": "\n", "src/store/shelf.h": None, "src/run/main.cpp": "\n"},
                   "a folder without a level")

    def test_circles(self):
        self.check({"src/store/shelf.h": '#include "store/shelf.h"\n#include "store/board.h"\n',
                    "src/store/board.cpp": '#include "store/nail.h"\n', "src/store/board.h": "\n",
                    "src/store/nail.h": '#include "store/shelf.h"\n',
                    "ROADMAP.md": TREE["ROADMAP.md"] + "- `board`: x\n- `nail`: x\n"},
                   "store/shelf -> store/board -> store/nail -> store/shelf")

    def test_lengths(self):
        main = "src/run/main.cpp"
        self.assertEqual(self.told({main: "\n" * 600}), "")
        self.check({main: "\n" * 601}, "601 lines")
        self.assertEqual(self.told({main: function(100) + function(100)}), "")
        for head in ("void f(int n) {", "bool T::f(const T& t) const noexcept {",
                     "auto f() -> std::vector<int> {", "template <class T> void f(T t) {",
                     "T::T(int n) : a(n), b{n} {", "static char f(char c = '}') {"):
            self.check({main: function(101, head)}, "1: a function of 101 lines")
            self.check({main: "namespace lcp {\n" + function(101, head) + "}\n"}, "2: a function")
            self.check({main: "struct S {\n" + function(101, head) + "};\n"}, "2: a function")
        self.check({main: function(100, 'int f(const std::string& s = "}",\n      int n = 0) {')},
                   "1: a function of 101 lines")
        table = "const int t[] = {\n" + "  1,\n" * 200 + "};\n"
        long_type = "struct S {\n" + "  int a = 0;\n" * 200 + "};\n"
        self.assertEqual(self.told({main: table + long_type}), "")

    def test_nesting(self):
        for depth in (0, 1, 4):
            self.assertEqual(self.told({"src/run/main.cpp": nested(depth)}), "", nested(depth))
        for depth in (5, 9):
            self.check({"src/run/main.cpp": nested(4) + nested(depth)}, f"{depth} braces deep")
        lists = "int g() {\n  T t = {{{{{{1}}}}}};\n  f({{1, 2}});\n}\n"
        self.assertEqual(self.told({"src/run/main.cpp": lists}), "")

    def test_road_map(self):
        whole = TREE["ROADMAP.md"]
        added = {"src/run/a/new.cpp": "// What is\n// new here:\n//\n// all\n"}
        changed = whole.replace("Start", "Begin"), whole.replace("- `store/shelf`: A shelf\n", ""), "", \
            whole + "- `run/main`: Start: x\n", whole.replace("Words.\n\n", "Words.\n\n- `store/gone`: x\n  y\n")
        for text, files in [(text, {}) for text in changed] + [(whole, added)]:
            lines = self.run_check({"ROADMAP.md": text, **files})[0]
            self.assertIn("ROADMAP.md: not what", "".join(lines))
        for text in changed:
            made = self.run_check({"ROADMAP.md": text}, "--write")[1]
            self.assertEqual(made, whole if text else "\n")
        self.assertEqual(self.run_check(added, "--write")[1], whole + "- `run/a/new`: What is new here\n")
        self.assertIn("ROADMAP.md: no section for cable/x\n", self.run_check({"src/cable/x.h": "// X.\n"})[0])
        self.assertIn("src/base/x: no comment at the top says what it is\n",
                      self.run_check({"src/base/x.h": "int x; // X.\n"})[0])

    def test_share_of_tests(self):
        code = 'int a;\n\n// no\nint b; /* no\n no */ int c; // no\nchar d[] = "/* yes";\n/* no */\n'
        for path, text, lines in (("tests/x.cpp", code, 6), ("tests/x.py", "# no\n\nx = 1  # yes\n", 3),
                                  ("tests/x.sh", "#!/bin/sh\n  # no\nls\n", 3), ("tests/x.txt", "a\n" * 9, 2)):
            self.assertIn(f"code of the tests: {lines} to 8 of", self.run_check({path: text})[0][0])
        for tests, rest, right in ((24, 100, False), (25, 100, True), (30, 100, True), (31, 100, False)):
            files = {"tests/a_test.cpp": "x\n" * tests, "python/a.py": "x\n" * (rest - 9), "tools/a.js": "x\n"}
            wrong = self.run_check(files)[0][2:]
            self.assertEqual(wrong, [] if right else [f"code of the tests: {tests}.0 %, not in 25 to 30 %\n"])
        files = {"tests/a_test.cpp": "x\n" * 25, "python/a.py": "x\n" * 91, "tools/a.js": "x\n"}
        for data, told in ((25, []), (35, ["all lines of tests/: "])):
            lines = self.run_check({**files, "tests/data.txt": "x\n" * data})[0][2:]
            self.assertEqual([line[:21] for line in lines], told)


if __name__ == "__main__":
    unittest.main()
