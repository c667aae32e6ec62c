#!/usr/bin/env python3
"""The check of the structure on small trees that are right, and wrong in one thing each."""

import os
import subprocess
import sys
import tempfile
import unittest

CHECK = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../tools/check_structure.py")

TREE = {
    "src/base/ground.h": "#pragma once\n#include <string>\n",
    "src/base/ground.cpp": '#include "base/ground.h"\n',
    "src/store/shelf.h": '#include "base/ground.h"\n',
    "src/run/main.cpp": '#include "store/shelf.h"\n// "{" is no brace\nint main() { return 0; }\n',
    "ROADMAP.md": "- `base/ground`: the ground\n- `shelf`: a shelf\n- `run/main`: the start\n",
}


def function(lines, head="void f(int n) {"):
    return head + "\n" + "  step();\n" * (lines - 2) + "}\n"


def nested(depth):
    opened = ["if (a) {", "for (;;) {", "switch (a) {", "runs([&] {", "do {"]
    text = "".join("  " + opened[i % len(opened)] + "\n" for i in range(depth))
    return "int g() {\n" + text + "  }\n" * depth + "}\n"


class CheckStructure(unittest.TestCase):
    def told(self, changes):
        """What the check prints on the tree with these files replaced; None takes one away."""
        with tempfile.TemporaryDirectory() as root:
            for path, text in {**TREE, **changes}.items():
                if text is None:
                    continue
                os.makedirs(os.path.dirname(os.path.join(root, path)) or root, exist_ok=True)
                with open(os.path.join(root, path), "w", encoding="utf-8") as file:
                    file.write(text)
            run = subprocess.run([sys.executable, CHECK, root], capture_output=True, text=True,
                                 check=False)
        self.assertEqual(run.stderr, "")
        self.assertEqual(run.returncode, 1 if run.stdout else 0)
        return run.stdout

    def check(self, wrong, text):
        told = self.told(wrong)
        self.assertIn(text, told)
        self.assertEqual(told.count("\n"), 1, told)

    def test_right_tree(self):
        self.assertEqual(self.told({}), "")

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
        self.check({"ROADMAP.md": whole.replace("- `shelf`", "- shelf")}, "in 0 lines")
        self.check({"ROADMAP.md": whole + "- `store/shelf`: again\n"}, "in 2 lines")
        self.check({"ROADMAP.md": whole + "- `store/gone`: x\n"}, "store/gone is not in the tree")
        self.assertEqual(self.told({"ROADMAP.md": None}).count("in 0 lines"), 3)
        # One name in two folders tells neither.
        self.assertEqual(self.told({"src/run/shelf.h": "\n"}).count("shelf is named in 0"), 2)

    def test_words(self):
        unwanted = ["Specificatio" + "n", "the spe" + "c", "as specifie" + "d", "Part " + "5.3",
                    "issue " + "#12", "TO" + "DO", "FIX" + "ME", "X" + "XX", "HA" + "CK",
                    "open(\"/ho" + "me/a\")"]
        for word in unwanted:
            for path in ("README.md", "src/run/main.cpp", "tests/a/b.txt"):
                self.check({path: f"a line\n// and {word}\n"}, path + ":2: ")
        right = "the species, a particular 5.3, an issue, XXXXXX, a hack, to do, src/work/a\n"
        self.assertEqual(self.told({"README.md": right}), "")


if __name__ == "__main__":
    unittest.main()
