# SPDX-License-Identifier: MIT
"""Statements that are loaded and written, and saved states."""

import json
import unittest

from support import JOINED, TestCase, builder_with_tables

from orvquerybuilder import OrvError, TorvQueryBuilder


class Statements(TestCase):
    def test_loaded_statement_is_written(self):
        builder = builder_with_tables()
        builder.LoadSQL("select o.custno from orders o where o.price > 5")
        self.assertEqual(
            builder.GetSQLStatment(),
            "SELECT O.CUSTNO\r\nFROM ORDERS O\r\n"
            "WHERE \r\n   (\r\n      (O.PRICE > 5)\r\n   )",
        )
        self.assertEqual(builder.LoadReport(), [])
        builder.Clear()
        self.assertEqual(builder.GetSQLStatment(), "SELECT \r\nFROM ")

    def test_unknown_table_answers_none(self):
        builder = builder_with_tables()
        asked = []
        builder.OnGetTableFields = asked.append
        builder.LoadSQL("SELECT T.A FROM T")
        self.assertEqual(asked, ["T"])
        self.assertEqual(len(builder.ListOfTables), 0)
        self.assertIn(("T", "This table is not known and is not loaded."),
                      [(finding.text, finding.what) for finding in builder.LoadReport()])

    def test_no_statement_raises_and_changes_nothing(self):
        builder = builder_with_tables("ORDERS")
        before = builder.GetSQLStatment()
        with self.assertRaisesRegex(OrvError, "^Given statement is not SELECT clause$"):
            builder.LoadSQL("DELETE FROM ORDERS")
        self.assertEqual(builder.GetSQLStatment(), before)

    def test_loading_needs_the_event(self):
        with self.assertRaisesRegex(OrvError, "OnGetTableFields"):
            TorvQueryBuilder().LoadSQL("SELECT A FROM B")

    def test_statements_are_texts(self):
        builder = builder_with_tables()
        for text in (5, b"SELECT A FROM B", ["SELECT"]):
            with self.subTest(text=text), self.assertRaises(TypeError):
                builder.LoadSQL(text)
        with self.assertRaises(TypeError):
            builder.LoadSQL()

    def test_report_says_where_and_what(self):
        builder = builder_with_tables()
        reported = []
        builder.LoadReported.connect(reported.append)
        text = "SELECT O.PRICE FROM ORDERS O; SELECT 1"
        builder.LoadSQL(text)
        (finding,) = builder.LoadReport()
        self.assertEqual(finding.what, "A second statement is not loaded.")
        self.assertEqual(text[finding.start : finding.start + finding.length], finding.text)
        self.assertTrue(finding.text.endswith("SELECT 1"))
        self.assertEqual(reported, [[finding]])
        with self.assertRaises((AttributeError, TypeError)):
            finding.text = ""

    def test_validation_finds_what_is_wrong(self):
        builder = builder_with_tables("ORDERS", "CUSTOMER")
        self.assertTrue(builder.Validate())
        self.assertTrue(all(finding.what for finding in builder.Validate()))

    def test_long_statement_is_loaded(self):
        builder = builder_with_tables()
        condition = " AND ".join(f"O.PRICE > {number}" for number in range(500))
        builder.LoadSQL(f"SELECT O.PRICE FROM ORDERS O WHERE {condition}")
        self.assertIn("(O.PRICE > 499)", builder.GetSQLStatment())

    def test_tail_follows_the_statement(self):
        builder = builder_with_tables()
        builder.LoadSQL("SELECT O.PRICE FROM ORDERS O LIMIT 7")
        self.assertEqual(builder.TailText, "LIMIT 7")
        builder.TailText = "LIMIT 8"
        self.assertTrue(builder.GetSQLStatment().endswith("LIMIT 8"))


class State(TestCase):
    def test_state_comes_back(self):
        builder = builder_with_tables()
        builder.LoadSQL(JOINED)
        state = builder.SaveState()
        self.assertIsInstance(state, bytes)
        self.assertEqual(len(json.loads(state)["tables"]), 2)
        other = TorvQueryBuilder()
        other.RestoreState(state)
        self.assertEqual(other.GetSQLStatment(), builder.GetSQLStatment())
        self.assertEqual(other.SaveState(), state)

    def test_no_state_raises_and_changes_nothing(self):
        builder = builder_with_tables("ORDERS")
        with self.assertRaisesRegex(OrvError, "^The state cannot be restored"):
            builder.RestoreState(b"{")
        self.assertEqual(len(builder.ListOfTables), 1)
        for state in (None, 5, "{}"):
            with self.subTest(state=state), self.assertRaises(TypeError):
                builder.RestoreState(state)


if __name__ == "__main__":
    unittest.main()
