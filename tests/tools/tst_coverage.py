# SPDX-License-Identifier: MIT
"""Tests of tools/coverage: what it makes of gcov's counters, and the table it prints of them."""

import importlib.machinery
import importlib.util
import io
import os
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "coverage")


def load(path):
    """A script without ending, as a module."""
    loader = importlib.machinery.SourceFileLoader("tool", path)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("tool", loader))
    loader.exec_module(module)
    return module


coverage = load(TOOL)


def branch(count, throw=False):
    return {"count": count, "throw": throw, "fallthrough": not throw}


def line(number, count, branches=(), function="f"):
    return {"line_number": number, "count": count, "branches": list(branches),
            "function_name": function}


def document(src, name, lines, functions=(("f", 1),)):
    return {"current_working_directory": src, "files": [{
        "file": name, "lines": lines,
        "functions": [{"name": function, "start_line": start, "start_column": 1}
                      for function, start in functions]}]}


class Coverage(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.src = folder.name

    def write(self, name, *lines):
        path = os.path.join(self.src, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as out:
            out.write("\n".join(lines) + "\n")

    def read(self, *documents):
        return coverage.read_sources(documents, self.src)

    def figures(self, text, *lines, functions=(("f", 1),)):
        self.write("core/A.cpp", *[text] * 9)
        return self.read(document(self.src, "core/A.cpp", lines, functions))["core/A.cpp"].figures()

    def test_lines_and_branches_are_counted(self):
        self.assertEqual(self.figures("x", line(1, 3, [branch(3), branch(0)]), line(2, 0)),
                         (2, 1, 2, 1))

    def test_a_call_that_may_throw_is_no_branch(self):
        call = [branch(5), branch(0, throw=True)]
        self.assertEqual(self.figures("x", line(1, 5, call)), (1, 1, 0, 0))
        self.assertEqual(
            self.figures("x", line(1, 5, [*call, branch(4), branch(1), *call])), (1, 1, 2, 2))

    def test_assertions_and_brackets_are_no_decisions(self):
        both = [branch(5), branch(0)]
        self.assertEqual(self.figures("Q_ASSERT(a);", line(1, 5, both)), (1, 1, 0, 0))
        self.assertEqual(self.figures("});", line(1, 0, both)), (0, 0, 0, 0))
        self.assertEqual(self.figures("Q_UNREACHABLE();", line(1, 0, both)), (0, 0, 0, 0))

    def test_objects_and_instances_of_a_template_are_added_up(self):
        self.write("core/A.h", "x")
        first = document(self.src, "core/A.h", [line(1, 1, [branch(1), branch(0)], "f<int>"),
                                                line(1, 0, [branch(0), branch(0)], "f<long>")],
                         [("f<int>", 1), ("f<long>", 1)])
        second = document(self.src, "core/A.h", [line(1, 2, [branch(0), branch(2)], "f<int>")],
                          [("f<int>", 1)])
        self.assertEqual(self.read(first)["core/A.h"].figures(), (1, 1, 2, 1))
        self.assertEqual(self.read(first, second)["core/A.h"].figures(), (1, 1, 2, 2))

    def test_a_lambda_has_branches_of_its_own(self):
        both = [branch(1), branch(0)]
        self.assertEqual(
            self.figures("x", line(1, 1, both), line(1, 1, both, "lambda"),
                         functions=[("f", 1), ("lambda", 2)]), (1, 1, 4, 2))

    def test_files_outside_src_are_passed_over(self):
        self.assertEqual(self.read(document(self.src, "/usr/include/vector", [line(1, 1)]),
                                   document(self.src, "core/Gone.h", [line(1, 1)])), {})

    def test_table_has_folders_and_their_total(self):
        for name in ("core/A.cpp", "core/B.cpp", "parser/C.cpp"):
            self.write(name, "x", "x")
        sources = self.read(
            document(self.src, "parser/C.cpp", [line(1, 1, [branch(1), branch(1)]), line(2, 1)]),
            document(self.src, "core/B.cpp", [line(1, 1), line(2, 0)]),
            document(self.src, "core/A.cpp", [line(1, 1), line(2, 1)]))
        self.assertEqual(coverage.report(sources), [
            "folder | lines | covered | branches | covered",
            "core   |     4 |  75.0 % |        0 | 100.0 %",
            "parser |     2 | 100.0 % |        2 | 100.0 %",
            "total  |     6 |  83.3 % |        2 | 100.0 %",
            "",
            "Below the aim of 95 % of the lines and 85 % of the branches:",
            "file       | lines | covered | branches | covered",
            "core/B.cpp |     2 |  50.0 % |        0 | 100.0 %"])

    def test_uncovered_lines_are_listed(self):
        self.write("core/A.cpp", "if (a)", "    b();", "c();")
        sources = self.read(document(self.src, "core/A.cpp", [
            line(1, 2, [branch(0), branch(2)]), line(2, 0), line(3, 2)]))
        out = io.StringIO()
        coverage.list_uncovered(sources, out)
        self.assertEqual(out.getvalue().splitlines(), [
            "src/core/A.cpp:1: 1 of 2 branches not taken: if (a)",
            "src/core/A.cpp:2: not run: b();"])


if __name__ == "__main__":
    unittest.main()
