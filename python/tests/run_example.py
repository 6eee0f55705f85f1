# SPDX-License-Identifier: MIT
"""Runs the example as its users do, and looks at what it prints. Its path is the argument."""

import subprocess
import sys
import unittest

EXAMPLE = sys.argv.pop(1)


def run(*arguments):
    return subprocess.run(
        [sys.executable, EXAMPLE, *arguments], capture_output=True, text=True, timeout=60
    )


class Example(unittest.TestCase):
    def test_prints_its_own_statement(self):
        result = run("--print")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        lines = result.stdout.splitlines()
        self.assertEqual(lines[:2], ["SELECT C.NAME,", "       O.PRICE"])
        self.assertIn("FROM CUSTOMER C", lines)
        self.assertIn("   INNER JOIN ORDERS O ON (C.CUSTNO = O.CUSTNO)", lines)
        self.assertEqual(lines[-1], "ORDER BY O.PRICE DESC")

    def test_prints_a_given_statement(self):
        result = run("--print", "select o.day from orders o")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual(result.stdout.splitlines(), ["SELECT O.DAY", "FROM ORDERS O"])

    def test_tells_what_is_not_kept(self):
        result = run("--print", "select o.day from orders o, nothing n")
        self.assertEqual(result.returncode, 0)
        self.assertIn("nothing n: This table is not known and is not loaded.", result.stderr)

    def test_no_statement_is_an_error(self):
        result = run("--print", "drop table orders")
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertEqual(result.stderr, "Given statement is not SELECT clause\n")


if __name__ == "__main__":
    unittest.main()
