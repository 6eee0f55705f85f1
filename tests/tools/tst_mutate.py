# SPDX-License-Identifier: MIT
"""Tests of tools/mutate: which places it breaks, which a seed chooses, and which tests run."""

import importlib.machinery
import importlib.util
import os
import sys
import tempfile
import unittest

TOOLS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools")


def load(name):
    """A script of tools/, as a module."""
    loader = importlib.machinery.SourceFileLoader(name, os.path.join(TOOLS, name))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(name, loader))
    loader.exec_module(module)
    return module


mutate = load("mutate")
mutants = sys.modules["mutants"]


def broken(*lines):
    """What a source of these lines is broken to, as {line number: the broken lines}."""
    found = mutants.mutants_of("src/core/A.cpp", "\n".join(lines))
    return {number: [mutant.after.strip() for mutant in of_line]
            for number, of_line in found.items()}


class Mutants(unittest.TestCase):
    def assert_broken(self, line, *after):
        self.assertEqual(broken(line), {1: list(after)} if after else {}, line)

    def test_operators_are_exchanged(self):
        self.assert_broken("return a == b;", "return a != b;")
        self.assert_broken("return a <= b;", "return a < b;")
        self.assert_broken("if (a && !b) {", "if (a || !b) {", "if (a && b) {")
        self.assert_broken("const int c = a - b;", "const int c = a + b;")

    def test_constants_are_changed(self):
        self.assert_broken("return 0;", "return 1;")
        self.assert_broken("return 1;", "return 0;")
        self.assert_broken("return 40;", "return 41;")
        self.assert_broken("return true;", "return false;")

    def test_statements_are_removed(self):
        self.assertEqual(broken("{", "    run(a);", "    m_a = b;", "    delete c;"),
                         {2: [";"], 3: [";"], 4: [";"]})
        self.assertEqual(broken("if (a)", "    run();"), {2: [";"]})

    def test_parts_of_statements_and_declarations_are_not_removed(self):
        for lines in (["{", "    const QString a(b);"], ["{", "    QString text;"],
                      ["{", "    run(a,", "        b);"], ["return a(b,", "         c(d));"],
                      ["{", "    return run();"], ["{", "    break;"], ["{", "    Q_OBJECT;"],
                      ["class A;"], ["using A::b;"], ["    virtual void run() = 0;"]):
            self.assertEqual(broken(*lines), {}, lines)

    def test_templates_and_names_are_no_operators(self):
        for line in ("QList<int> a;", "auto&& b = c;", "const int* a = b->c;", "f1(x2);  // ?"):
            self.assert_broken(line)

    def test_never_a_comment_or_a_text(self):
        for line in ("// a == 1", "/* a == 1 */", 'f = QStringLiteral("1 == !a && true");',
                     'f = "a \\" == 1";', "f = u'1';", "f = R\"x(a == 1 \" )\" == 2)x\";"):
            self.assert_broken("x " + line)
        self.assertEqual(broken("/* one", "a == 1;", "*/", "return a == b;"),
                         {4: ["return a != b;"]})

    def test_signs_in_numbers_do_not_begin_a_text(self):
        self.assertEqual(broken("int a = 10'000;", "return b == 'x';", "return c == d;"),
                         {2: ["return b != 'x';"], 3: ["return c != d;"]})

    def test_never_an_assertion_a_macro_or_a_log(self):
        for line in ("Q_ASSERT(a == 1);", "#define A 1", "#if A == 1", "static_assert(a == 1);",
                     "qWarning() << a;", "a.reserve(b + 1);"):
            self.assertEqual(broken("{", line), {}, line)
        self.assertEqual(broken("Q_ASSERT(a == 1 &&", "         b(c) != 2);", "return 2;"),
                         {3: ["return 3;"]})

    def test_only_its_line_is_changed(self):
        text = "a();\nreturn b == c;\n"
        mutant = mutants.mutants_of("src/core/A.cpp", text)[2][0]
        self.assertEqual(mutants.mutated(text, mutant), "a();\nreturn b != c;\n")
        with self.assertRaises(ValueError):
            mutants.mutated("a();\nreturn b;\n", mutant)

    def test_masked_text_keeps_its_places(self):
        text = 'a(); // b\nc("d\\n", u\'e\'); /* f\n g */ h();\n'
        self.assertEqual(list(map(len, mutants.masked(text).split("\n"))),
                         list(map(len, text.split("\n"))))


class Choice(unittest.TestCase):
    lines = [[mutants.Mutant("src/core/A.cpp", number, "constant", f"{number};", f"{way};")
              for way in "ab"] for number in range(100)]

    def firsts(self, count, seed):
        return [part[0] for part in mutants.choose(self.lines, count, seed)]

    def test_a_seed_chooses_the_same_again(self):
        self.assertEqual(self.firsts(10, 7), self.firsts(10, 7))
        self.assertNotEqual(self.firsts(10, 7), self.firsts(10, 8))

    def test_choice_is_spread_evenly(self):
        self.assertEqual([mutant.line // 10 for mutant in self.firsts(10, 7)], list(range(10)))

    def test_each_line_of_a_part_can_stand_in(self):
        part = mutants.choose(self.lines, 10, 7)[3]
        self.assertEqual(sorted(mutant.line for mutant in part), list(range(30, 40)))

    def test_only_sources_below_src_are_read(self):
        with tempfile.TemporaryDirectory() as root:
            for name in ("src/core/B.cpp", "src/core/A.cpp", "src/core/A.h", "app/C.cpp"):
                os.makedirs(os.path.dirname(os.path.join(root, name)), exist_ok=True)
                with open(os.path.join(root, name), "w", encoding="utf-8") as out:
                    out.write("return 1;\n")
            self.assertEqual([line[0].path for line in mutants.read_lines(root)],
                             ["src/core/A.cpp", "src/core/B.cpp"])


class Run(unittest.TestCase):
    def test_own_tests_run_first(self):
        tests = [mutate.Test(name, folder, "", []) for name, folder in (
            ("tst_links", "diagram"), ("tst_window", "querybuilder"), ("tst_text", "core"),
            ("tst_floattable", "diagram"), ("tst_floattablekeys", "diagram"),
            ("tst_floatobject", "diagram"))]
        seconds = {test.name: 1 for test in tests} | {"tst_floattable": 2, "tst_links": 0.5}
        names = [test.name for test in
                 mutate.order(tests, "src/diagram/ORVQDFloatTable.cpp", seconds)]
        self.assertEqual(names, ["tst_floattablekeys", "tst_floattable", "tst_links",
                                 "tst_floatobject", "tst_window", "tst_text"])
        self.assertEqual(mutate.order(tests, "src/diagram/ORVQDFloatTablePaint.cpp", seconds)[0],
                         tests[3])

    def test_results_outlive_a_stop(self):
        with tempfile.TemporaryDirectory() as root:
            os.makedirs(os.path.join(root, "build/mutation/10-3"))
            run = mutate.Mutation(root, 10, 3)
            run.append({"count": 10, "seed": 3, "sources": "x"})
            run.append({"index": 4, "caught": None})
            run.append({"index": 4, "caught": "tst_a"})
            with open(run.results_path, "a", encoding="utf-8") as out:
                out.write('{"index": 5, "cau')
            later = mutate.Mutation(root, 10, 3)
            later.read_results()
            self.assertEqual(later.header["sources"], "x")
            self.assertEqual(later.results, {4: {"index": 4, "caught": "tst_a"}})
            later.append({"index": 6, "caught": None})
            again = mutate.Mutation(root, 10, 3)
            again.read_results()
            self.assertEqual(sorted(again.results), [4, 6])

    def test_summary_counts_by_folder(self):
        def result(folder, **more):
            return {"path": f"src/{folder}/A.cpp", "line": 8, "kind": "operator",
                    "before": "  a == b;", "after": "  a != b;", "caught": "tst_a", "stage": 0,
                    "why": "status 1", **more}

        self.assertEqual(mutate.summary([
            result("core"), result("core", stage=3), result("data", why="timeout"),
            result("data", caught=None),
            result("data", caught=None, why=mutate.NOT_COMPILED)]), [
                "folder | mutants | caught | by own tests | timeouts | survived",
                "core   |       2 |      2 |            1 |        0 |        0",
                "data   |       2 |      1 |            1 |        1 |        1",
                "total  |       4 |      3 |            2 |        1 |        1",
                "",
                "src/data/A.cpp:8 survived (operator):",
                "  - a == b;",
                "  + a != b;"])

    def test_copies_follow_their_source(self):
        with tempfile.TemporaryDirectory() as root:
            source, target = os.path.join(root, "a"), os.path.join(root, "b")
            for path, text in (("a/x/1", "one"), ("b/x/1", "two"), ("b/gone", ""), ("b/y/2", "")):
                os.makedirs(os.path.dirname(os.path.join(root, path)), exist_ok=True)
                with open(os.path.join(root, path), "w", encoding="utf-8") as out:
                    out.write(text)
            self.assertNotEqual(mutate.digest(source), mutate.digest(target))
            mutate.mirror(source, target)
            self.assertEqual(mutate.digest(source), mutate.digest(target))
            self.assertEqual(os.listdir(target), ["x"])


if __name__ == "__main__":
    unittest.main()
