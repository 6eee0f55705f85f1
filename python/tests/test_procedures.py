# SPDX-License-Identifier: MIT
"""Procedures and their parameters."""

import decimal
import unittest

from support import TestCase, builder_with_tables

from orvquerybuilder import (
    SqlText,
    TDataSet,
    TParam,
    TParams,
    TorvQueryBuilder,
    ftInteger,
    ftString,
    ptInput,
)


class Procedures(TestCase):
    PARAMS = TParams([TParam("X", ftInteger, ptInput), TParam("Y", ftString, ptInput, "text")])

    def add(self, builder):
        return builder.ListOfTables.AddProc("P", TDataSet([("A", ftInteger)]), self.PARAMS)

    def test_procedure_is_called_with_its_values(self):
        builder = TorvQueryBuilder()
        table = self.add(builder)
        self.assertTrue(table.isProcedure())
        self.assertEqual([row.Name for row in table.Items], ["A", "X", "Y"])
        self.assertEqual(table.GetParameters(), ":X, 'text'")
        table.GetFieldItem("A").SetCheck(True)
        self.assertIn("FROM P(:X, 'text')", builder.GetSQLStatment())

    def test_parameters_are_set(self):
        builder = TorvQueryBuilder()
        table = self.add(builder)
        row = table.GetFieldItem("X")
        for value, written in (
            (5, "5"),
            (2**64 - 1, "18446744073709551615"),
            (None, "NULL"),
            (SqlText("T.B + 1"), "T.B + 1"),
            (b"bytes", "'bytes'"),
        ):
            with self.subTest(value=value):
                table.setParameter(row, value)
                self.assertEqual(table.GetParameters(), f"{written}, 'text'")
                self.assertEqual(row.Value, value)
                self.assertEqual(row.IsNull, value is None)
        table.setParameter(row, decimal.Decimal("0.30"))
        self.assertEqual(table.GetParameters(), "0.30, 'text'")
        table.setParameter(row)
        self.assertEqual(table.GetParameters(), ":X, 'text'")
        with self.assertRaises(TypeError):
            table.setParameter(row, [5])
        with self.assertRaises(TypeError):
            table.setParameter("X", 5)

    def test_parameters_belong_to_their_box(self):
        builder = builder_with_tables("ORDERS")
        orders = builder.ListOfTables[0]
        procedure = self.add(builder)
        with self.assertRaises(ValueError):
            procedure.setParameter(orders.Items[0], 5)
        with self.assertRaises(ValueError):
            orders.setParameter(orders.Items[0], 5)

    def test_entering_asks_the_event(self):
        builder = TorvQueryBuilder()
        table = self.add(builder)
        asked = []

        def enter(sender, procedure, row):
            asked.append((sender is builder, procedure == table, row.Name))
            procedure.setParameter(row, 7)

        builder.OnEnterProcParameter = enter
        table.GetFieldItem("X").SetCheck(True)
        self.assertEqual(asked, [(True, True, "X")])
        self.assertEqual(table.GetParameters(), "7, 'text'")

    def test_event_asks_whatever_the_row_has(self):
        builder = TorvQueryBuilder()
        table = self.add(builder)
        asked = []
        builder.OnEnterProcParameter = lambda sender, procedure, row: asked.append(row.Name)
        for name in ("X", "Y"):
            for value in (True, False):
                table.GetFieldItem(name).SetCheck(value)
        self.assertEqual(asked, ["X", "X", "Y", "Y"])
        self.assertEqual(table.GetParameters(), ":X, 'text'")
        self.assertEqual([row.Checked for row in table.Items], [False, False, True])

    def test_handler_sets_the_members_of_the_row(self):
        builder = TorvQueryBuilder()
        table = self.add(builder)
        changes = []
        builder.StatementChanged.connect(lambda: changes.append(table.GetParameters()))

        def enter(sender, procedure, row):
            row.IsNull = False
            row.Value = 7
            row.Checked = True

        builder.OnEnterProcParameter = enter
        row = table.GetFieldItem("X")
        row.SetCheck(True)
        self.assertEqual((row.Value, row.Checked, row.IsNull), (7, True, False))
        # Told once, when the handler is through.
        self.assertEqual(changes, ["7, 'text'"])

        def enter_null(sender, procedure, row):
            row.IsNull = True

        builder.OnEnterProcParameter = enter_null
        row.SetCheck(True)
        self.assertEqual(changes[1:], ["NULL, 'text'"])

        def take_back(sender, procedure, row):
            row.Checked = False

        builder.OnEnterProcParameter = take_back
        row.SetCheck(True)
        self.assertEqual(changes[2:], [":X, 'text'"])

    def test_handler_may_tick_the_row_by_SetCheck(self):
        builder = TorvQueryBuilder()
        table = self.add(builder)

        def enter(sender, procedure, row):
            row.Value = None
            row.SetCheck(True)

        builder.OnEnterProcParameter = enter
        table.GetFieldItem("X").SetCheck(True)
        self.assertEqual(table.GetParameters(), "NULL, 'text'")

    def test_members_set_outside_the_handler_are_told(self):
        builder = TorvQueryBuilder()
        row = self.add(builder).GetFieldItem("Y")
        changes = []
        builder.StatementChanged.connect(lambda: changes.append(row.Table.GetParameters()))
        row.Value = "other"
        row.IsNull = True
        row.Checked = False
        self.assertEqual(changes, [":X, 'other'", ":X, NULL", ":X, :Y"])

    def test_members_of_a_field_are_not_set(self):
        builder = builder_with_tables("ORDERS")
        procedure = self.add(builder)
        for row in (builder.ListOfTables.tableByAlias("ORDERS").Items[0], procedure.Items[0]):
            for name, value in (("Value", 5), ("Checked", True), ("IsNull", False)):
                with self.subTest(name=name), self.assertRaisesRegex(ValueError, "parameter"):
                    setattr(row, name, value)
            self.assertFalse(row.Checked)
        self.assertEqual(builder.SelectedFields(), [])

    def test_members_take_their_types_only(self):
        builder = TorvQueryBuilder()
        row = self.add(builder).GetFieldItem("Y")
        for name, value in (("Value", [5]), ("IsNull", "no"), ("Checked", None)):
            with self.subTest(name=name), self.assertRaises(TypeError):
                setattr(row, name, value)
        self.assertEqual(row.Value, "text")

    def test_event_hands_over_a_procedure(self):
        builder = TorvQueryBuilder()
        builder.OnGetTableFields = lambda name: (TDataSet([("A", ftInteger)]), self.PARAMS)
        builder.LoadSQL("SELECT P.A FROM P(1, 'b')")
        self.assertTrue(builder.ListOfTables[0].isProcedure())
        self.assertIn("FROM P(1, 'b')", builder.GetSQLStatment())


if __name__ == "__main__":
    unittest.main()
