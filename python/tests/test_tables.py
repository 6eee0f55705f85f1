# SPDX-License-Identifier: MIT
"""The boxes and links of the diagram, and what is left of them when they are gone."""

import unittest

from support import JOINED, TestCase, builder_with_tables, data_set, delete_deferred

import orvquerybuilder as orv
from orvquerybuilder import (
    OrvError,
    TDataSet,
    TParams,
    TorvQueryBuilder,
    araAdd,
    araRemove,
    ftString,
    ptOutput,
)


class Tables(TestCase):
    def test_added_tables_are_listed_from_the_front(self):
        builder = builder_with_tables("ORDERS", "CUSTOMER")
        tables = builder.ListOfTables
        self.assertEqual((tables.TablesCount(), len(tables)), (2, 2))
        self.assertEqual([table.TableName for table in tables], ["CUSTOMER", "ORDERS"])
        self.assertEqual(tables.Tables(1), tables[-1])
        self.assertNotEqual(tables[0], tables[1])
        self.assertEqual(len({tables[0], tables.Tables(0)}), 1)

    def test_table_tells_its_rows(self):
        builder = builder_with_tables("ORDERS")
        table = builder.ListOfTables[0]
        self.assertEqual([row.Name for row in table.Items], ["CUSTNO", "PRICE"])
        row = table.GetFieldItem("price")
        self.assertEqual(
            (row.Name, row.FieldType, row.ParamType, row.GetIndex(), row.GetDataName()),
            ("PRICE", orv.ftFloat, ptOutput, 1, "Float"),
        )
        self.assertEqual(row.Table, table)
        self.assertIsNone(table.GetFieldItem("NONE"))
        self.assertFalse(table.isProcedure())

    def test_second_table_of_a_name_gets_an_alias(self):
        builder = builder_with_tables("ORDERS", "ORDERS")
        tables = builder.ListOfTables
        self.assertEqual(tables[0].GetAlias(), "ORDERS1")
        self.assertEqual(tables.tableByAlias("ORDERS1"), tables[0])
        self.assertIsNone(tables.tableByAlias("orders1"))

    def test_ticked_rows_are_selected(self):
        builder = builder_with_tables("ORDERS")
        table = builder.ListOfTables[0]
        table.GetFieldItem("PRICE").SetCheck(True)
        self.assertEqual(builder.SelectedFields(), ["ORDERS.PRICE"])
        self.assertEqual(builder.AllFields(), ["ORDERS.CUSTNO", "ORDERS.PRICE"])
        self.assertTrue(table.GetFieldItem("PRICE").Checked)
        self.assertEqual(table.FieldState, 1)
        table.SetFieldState(2)
        self.assertEqual(len(builder.SelectedFields()), 2)
        table.SetFieldState(0)
        self.assertEqual(builder.SelectedFields(), [])
        with self.assertRaises(ValueError):
            table.SetFieldState(3)

    def test_places_can_be_set(self):
        builder = builder_with_tables("ORDERS")
        table = builder.ListOfTables[0]
        table.Left, table.Top = 300, 40
        table.MoveTable(10, -5)
        self.assertEqual((table.Left, table.Top), (310, 35))
        table.Expanded = False
        self.assertFalse(table.Expanded)
        with self.assertRaises(TypeError):
            table.Left = "far"

    def test_tables_are_deleted_by_index_and_by_box(self):
        builder = builder_with_tables("ORDERS", "CUSTOMER", "ORDERS")
        tables = builder.ListOfTables
        tables.DeleteTable(0)
        tables.DeleteTable(tables.tableByAlias("ORDERS"))
        self.assertEqual([table.TableName for table in tables], ["CUSTOMER"])
        tables[0].CloseTable()
        self.assertEqual(len(tables), 0)

    def test_wrong_tables_are_refused(self):
        builder = builder_with_tables("ORDERS")
        tables = builder.ListOfTables
        for call in (
            lambda: tables.AddTable(1),
            lambda: tables.AddTable("X", [("A", ftString)]),
            lambda: tables.AddTable("X", TParams()),
            lambda: tables.DeleteTable("ORDERS"),
            lambda: tables.DeleteTable(None),
            lambda: tables["ORDERS"],
        ):
            with self.assertRaises(TypeError):
                call()
        for call in (
            lambda: tables.AddTable(""),
            lambda: tables.Tables(1),
            lambda: tables.Tables(-1),
            lambda: tables.DeleteTable(1),
        ):
            with self.assertRaises(OrvError):
                call()
        with self.assertRaises(IndexError):
            tables[1]
        self.assertEqual(len(tables), 1)

    def test_table_without_data_set_has_no_rows(self):
        builder = TorvQueryBuilder()
        self.assertEqual(builder.ListOfTables.AddTable("T").Items, ())
        self.assertEqual(builder.ListOfTables.AddTable("U", None).Items, ())

    def test_table_of_many_fields(self):
        builder = TorvQueryBuilder()
        fields = TDataSet((f"F{number}", ftString) for number in range(20_000))
        table = builder.ListOfTables.AddTable("BIG", fields)
        self.assertEqual(len(table.Items), 20_000)
        table.SetFieldState(2)
        self.assertEqual(builder.SelectedFields()[-1], "BIG.F19999")

    def test_box_that_is_gone_says_so(self):
        builder = builder_with_tables("ORDERS")
        table = builder.ListOfTables[0]
        row = table.Items[0]
        self.assertTrue(table.isAlive() and row.isAlive())
        numbers = hash(table), hash(row)
        builder.Clear()
        # The event loop deletes it later; it is gone at once.
        for is_deleted in (False, True):
            with self.subTest(is_deleted=is_deleted):
                if is_deleted:
                    delete_deferred()
                self.assertFalse(table.isAlive() or row.isAlive())
                for use in (
                    lambda: table.TableName,
                    lambda: table.Items,
                    lambda: table.CloseTable(),
                    lambda: setattr(table, "Left", 3),
                    lambda: row.Name,
                    lambda: row.SetCheck(True),
                    lambda: row.Value,
                    lambda: builder.ListOfTables.DeleteTable(table),
                ):
                    with self.assertRaisesRegex(RuntimeError, "no longer on the diagram"):
                        use()
                self.assertEqual((hash(table), hash(row)), numbers)
                self.assertEqual(table, table)
                self.assertIn("deleted", repr(table))
                self.assertIn("deleted", repr(row))

    def test_box_is_gone_whatever_took_it_away(self):
        for take in (
            lambda builder, table: table.CloseTable(),
            lambda builder, table: builder.ListOfTables.DeleteTable(0),
            lambda builder, table: builder.LoadSQL("SELECT C.NAME FROM CUSTOMER C"),
            lambda builder, table: builder.RestoreState(builder_with_tables().SaveState()),
        ):
            builder = builder_with_tables("ORDERS")
            table = builder.ListOfTables[0]
            row = table.Items[0]
            take(builder, table)
            self.assertFalse(table.isAlive() or row.isAlive())
            with self.assertRaises(RuntimeError):
                row.SetCheck(True)
            self.assertEqual([f for f in builder.SelectedFields() if "ORDERS" in f], [])

    def test_box_is_there_while_the_host_is_asked_about_it(self):
        builder = TorvQueryBuilder()
        seen = []

        def look(sender, table, action):
            row = table.Items[0]
            seen.append((action, table.isAlive(), row.isAlive(), row.Name, repr(table)))

        builder.OnAddRemoveTable = look
        table = builder.ListOfTables.AddTable("ORDERS", data_set("ORDERS"))
        self.assertTrue(table.isAlive())
        table.CloseTable()
        name = "<TorvQDTable ORDERS>"
        self.assertEqual(
            seen,
            [(araAdd, True, True, "CUSTNO", name), (araRemove, True, True, "CUSTNO", name)],
        )
        self.assertFalse(table.isAlive())

    def test_link_is_gone_with_its_box(self):
        builder = builder_with_tables()
        kept = []

        def look(sender, link, action):
            kept.append((link, link.isAlive(), link.GetHint()))

        builder.OnAddRemoveLink = look
        builder.LoadSQL(JOINED)
        ((link, was_alive, hint),) = kept
        self.assertTrue(was_alive and hint)
        self.assertTrue(link.isAlive())
        link.Table2.CloseTable()
        self.assertFalse(link.isAlive())
        self.assertIn("deleted", repr(link))
        with self.assertRaisesRegex(RuntimeError, "no longer on the diagram"):
            link.Table1

    def test_muted_link_is_not_in_the_statement(self):
        builder = builder_with_tables()
        kept = []
        builder.OnAddRemoveLink = lambda sender, link, action: kept.append(link)
        builder.LoadSQL(JOINED)
        (link,) = kept
        written = builder.GetSQLStatment()
        changes = []
        builder.StatementChanged.connect(lambda: changes.append(1))
        self.assertIs(link.Muted, False)
        link.Muted = True
        link.Muted = True
        self.assertIs(link.Muted, True)
        self.assertEqual(len(changes), 1)
        self.assertNotIn("JOIN", builder.GetSQLStatment())
        self.assertIn("muted", builder.Validate()[-1].what)
        link.Muted = False
        self.assertEqual(len(changes), 2)
        self.assertEqual(builder.GetSQLStatment(), written)
        link.Table2.CloseTable()
        with self.assertRaises(RuntimeError):
            link.Muted = True


if __name__ == "__main__":
    unittest.main()
