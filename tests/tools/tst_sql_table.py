# SPDX-License-Identifier: MIT
"""Tests of tools/sql_table: cases of a few lines, and what its pages say of them."""

import importlib.machinery
import importlib.util
import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "sql_table")


def load_script():
    loader = importlib.machinery.SourceFileLoader("sql_table", SCRIPT)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module


table = load_script()


class Fates(unittest.TestCase):
    def fate(self, text):
        return table.fate(table.read_cases("== case\n" + text, "x.txt")[2][0])

    def assert_held(self, sql, written, tail=""):
        self.assertEqual(self.fate(f"sql:\n{sql}\ntext:\n{written}\ntail: {tail}\n"),
                         ("held", "held"))

    def assert_written(self, sql, written, clauses):
        self.assertEqual(self.fate(f"sql:\n{sql}\ntext:\n{written}\n"),
                         ("changed", f"held, written {clauses}"))

    def test_spelling_is_no_difference(self):
        self.assert_held("select a.x from a", "SELECT A.X\nFROM A")
        self.assert_held("select a.x from a where a.x=1 and(a.y != 'o''b')",
                         "SELECT A.X\nFROM A\nWHERE \n   (\n      (A.X = 1)\n   and \n"
                         "      (A.Y <> 'o''b')\n   )")
        self.assert_held("select x y from a -- why\norder by 1 asc;",
                         "SELECT X AS Y\nFROM A\nORDER BY 1")
        self.assert_held("select a.x from a join b on a.x = b.x",
                         "SELECT A.X\nFROM A\nINNER JOIN B ON (A.X = B.X)")
        self.assert_held("select [a b] from `a`", 'SELECT "a b"\nFROM "a"')

    def test_words_are(self):
        self.assert_written("select * from a", "SELECT A.X\nFROM A", "`SELECT A.X`")
        self.assert_written("select x from a cross join b", "SELECT X\nFROM A,\nB", "`FROM A, B`")
        self.assert_written("select x from a where not (not (x = 2))",
                            "SELECT X\nFROM A\nWHERE \n   (\n      (X = 2)\n   )",
                            "`WHERE X = 2`")
        self.assert_written("select x from a where x = 'A'",
                            "SELECT X\nFROM A\nWHERE \n   (\n      (X = 'a')\n   )",
                            "`WHERE X = 'a'`")
        self.assert_written("select x from a group by x", "SELECT X\nFROM A", "`without GROUP BY`")

    def test_clauses_are_those_of_the_statement_itself(self):
        self.assertEqual(
            table.clauses("select x from a where x in (select y from b) group by x limit 3;",
                          "limit 3"),
            {"SELECT": ["X"], "FROM": ["A"], "GROUP BY": ["X"],
             "WHERE": ["X", "IN", "(", "SELECT", "Y", "FROM", "B", ")"]})
        self.assert_held("select x from a order by x ascending", "SELECT X\nFROM A\nORDER BY X")

    def test_a_tail_is_no_clause(self):
        self.assert_held("select x from a union select y from b where z = 1",
                         "SELECT X\nFROM A\nunion select y from b where z = 1",
                         "union select y from b where z = 1")

    def test_distinct_from_begins_no_clause(self):
        self.assert_held("select x from a where x is distinct from 2",
                         "SELECT X\nFROM A\nWHERE \n   (\n      (X IS DISTINCT FROM 2)\n   )")

    def test_told_and_refused(self):
        self.assertEqual(self.fate("sql:\nselect x from n\nfindings:\n[n] Not | *known*.\n"
                                   "messages:\nNo <table>\ntext:\nSELECT X\n"),
                         ("told", "told: `n`: Not \\| \\*known\\*.<br>message: No &lt;table>"))
        self.assertEqual(self.fate("sql:\ndrop\nerror: No SELECT\n"),
                         ("refused", "refused: No SELECT"))
        self.assertEqual(self.fate("sql:\nselect x from a\ntext:\n! No aggregate\n"),
                         ("told", "told: nothing can be written: No aggregate"))

    def test_statements_in_cells(self):
        self.assertEqual(table.code("select  a\n from b || c"), "`select a from b \\|\\| c`")
        self.assertEqual(table.code("select `a`"), "`` select `a` ``")
        self.assertEqual(table.code("select 1 -- one\nfrom a"), "`select 1 -- one`<br>`from a`")
        self.assertTrue(table.code("select " + "x, " * 200).endswith(" ...`"))

    def test_what_is_no_case_is_said(self):
        with self.assertRaises(table.CaseError):
            table.read_cases("== case\nwhat\n", "x.txt")


class Pages(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = folder.name
        self.write("tests/data/sql/some_kind.txt",
                   "# Of some kind.\ntable A: X ftInteger, Y ftString\n\n== first\nsql:\n"
                   "select x from a\ntext:\nSELECT X\nFROM A\n\n== second\nmode: classic\nsql:\n"
                   "select x from b\nfindings:\n[b] No.\ntext:\nSELECT X\nFROM A\n")
        self.write("docs/sql.md", f"# SQL\n{table.BEGIN}\nold\n{table.END}\nend\n")

    def write(self, name, text):
        path = os.path.join(self.root, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as out:
            out.write(text)

    def read(self, name):
        with open(os.path.join(self.root, name), encoding="utf-8") as source:
            return source.read()

    def run_script(self, *arguments):
        done = subprocess.run([sys.executable, SCRIPT, *arguments, self.root],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              check=False)
        return done.returncode, done.stdout

    def test_pages_are_written_and_checked(self):
        status, said = self.run_script("--check")
        self.assertEqual(status, 1)
        self.assertIn("docs/sql.md is not up to date", said)
        self.assertIn("docs/sql/some_kind.md is not up to date", said)
        self.assertEqual(self.run_script(), (0, ""))
        self.assertEqual(self.run_script("--check"), (0, ""))
        index = self.read("docs/sql.md")
        self.assertIn("| [some kind](sql/some_kind.md) | Of some kind. | 1 |  | 1 |  |", index)
        self.assertTrue(index.startswith("# SQL\n") and index.endswith("\nend\n"), index)
        page = self.read("docs/sql/some_kind.md")
        self.assertIn("- `A: X, Y`", page)
        plain = page.index("## With the plain rules")
        self.assertLess(page.index("| first | `select x from a` | held |"), plain)
        self.assertGreater(page.index("| second | `select x from b` | told: `b`: No. |"), plain)

    def test_pages_of_files_that_are_gone_go(self):
        self.write("docs/sql/gone.md", "x")
        self.assertIn("docs/sql/gone.md", self.run_script("--check")[1])
        self.run_script()
        self.assertFalse(os.path.exists(os.path.join(self.root, "docs/sql/gone.md")))


if __name__ == "__main__":
    unittest.main()
