# SPDX-License-Identifier: MIT
"""The control: tables, statements, events, procedures, properties, signals."""

import decimal
import json
import threading
import unittest

from PyQt6.QtCore import QMimeData, QObject, QPoint, QPointF, Qt, QTimer, pyqtSignal
from PyQt6.QtGui import QColor, QDragEnterEvent, QDragMoveEvent, QDropEvent, QFont
from PyQt6.QtTest import QTest
from PyQt6.QtWidgets import QApplication, QFrame, QTabWidget, QWidget
from support import (
    TestCase,
    app,
    builder_with_tables,
    data_set,
    delete_deferred,
    work_area,
)

import orvquerybuilder as orv
from orvquerybuilder import (
    MessageAnswer,
    OrvError,
    SqlText,
    TDataSet,
    TOperatorList,
    TParam,
    TParams,
    TorvQDConditionOptions,
    TorvQDOperator,
    TorvQDTable,
    TorvQDWorkAreaOptions,
    TorvQueryBuilder,
    araAdd,
    araRemove,
    erAdd,
    erDelete,
    ftDate,
    ftInteger,
    ftString,
    ptInput,
    ptOutput,
)

JOINED = "SELECT O.PRICE FROM ORDERS O INNER JOIN CUSTOMER C ON (O.CUSTNO = C.CUSTNO)"
WRONG_JOIN = "SELECT O.PRICE FROM ORDERS O INNER JOIN CUSTOMER C ON (O.NONE = C.CUSTNO)"


class Creation(TestCase):
    def test_is_a_widget_with_four_pages(self):
        builder = TorvQueryBuilder()
        self.assertIsInstance(builder, QFrame)
        pages = builder.findChild(QTabWidget, "PageCtrl")
        self.assertEqual(
            [pages.tabText(index) for index in range(pages.count())],
            ["Criterions", "Selection", "Grouping criterions", "Sorting"],
        )

    def test_lies_in_its_parent(self):
        parent = QWidget()
        builder = TorvQueryBuilder(parent)
        self.assertIs(builder.parent(), parent)
        self.assertIs(parent.findChild(TorvQueryBuilder), builder)

    def test_can_be_subclassed(self):
        class Builder(TorvQueryBuilder):
            def sizeHint(self):
                return super().sizeHint() * 2

        parent = QWidget()
        builder = Builder(parent)
        builder.adjustSize()
        self.assertEqual(builder.size(), TorvQueryBuilder().sizeHint() * 2)

    def test_in_design_mode_nothing_is_on_the_diagram(self):
        builder = TorvQueryBuilder(None, True)
        self.assertIsNone(builder.ListOfTables)
        self.assertEqual(builder.GetSQLStatment(), "")
        builder.LoadSQL("SELECT A FROM B")
        builder.Clear()
        builder.CommitPendingEdits()
        self.assertEqual((builder.Validate(), builder.LoadReport()), ([], []))
        self.assertEqual(builder.SaveState(), b"")
        builder.TailText = "LIMIT 1"
        self.assertEqual(builder.TailText, "LIMIT 1")

    def test_refuses_other_parents(self):
        for arguments in ((1,), ("parent",), (None, "no", 3)):
            with self.subTest(arguments=arguments), self.assertRaises(TypeError):
                TorvQueryBuilder(*arguments)


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


class Vetoes(TestCase):
    def test_events_come_back_and_are_cleared(self):
        builder = TorvQueryBuilder()
        for name in (
            "OnGetTableFields",
            "OnAddRemoveTable",
            "OnAddRemoveLink",
            "OnEnterProcParameter",
            "OnStartDrag",
            "OnDragOver",
            "OnDragDrop",
            "OnEndDrag",
        ):
            with self.subTest(event=name):
                self.assertIsNone(getattr(builder, name))
                setattr(builder, name, self.fail)
                self.assertEqual(getattr(builder, name), self.fail)
                with self.assertRaisesRegex(TypeError, f"{name} must be a callable or None"):
                    setattr(builder, name, "no")
                self.assertEqual(getattr(builder, name), self.fail)
                setattr(builder, name, None)
                self.assertIsNone(getattr(builder, name))

    def test_table_veto_sees_table_and_action(self):
        builder = TorvQueryBuilder()
        seen = []

        def allow(sender, table, action):
            seen.append((sender is builder, table.TableName, [r.Name for r in table.Items], action))

        builder.OnAddRemoveTable = allow
        table = builder.ListOfTables.AddTable("ORDERS", data_set("ORDERS"))
        table.CloseTable()
        fields = ["CUSTNO", "PRICE"]
        self.assertEqual(
            seen, [(True, "ORDERS", fields, araAdd), (True, "ORDERS", fields, araRemove)]
        )
        self.assertIs(seen[0][3], araAdd)

    def test_answers_of_a_table_veto(self):
        for answer, allowed in (
            (True, True), (False, False), (None, True), (0, False), (1, True), ("", False),
        ):
            with self.subTest(answer=answer):
                builder = TorvQueryBuilder()
                builder.OnAddRemoveTable = lambda *_, answer=answer: answer
                table = builder.ListOfTables.AddTable("T")
                self.assertEqual(table is not None, allowed)
                self.assertEqual(len(builder.ListOfTables), int(allowed))

    def test_vetoed_removal_keeps_the_table(self):
        builder = builder_with_tables("ORDERS")
        builder.OnAddRemoveTable = lambda sender, table, action: action != araRemove
        builder.ListOfTables.DeleteTable(0)
        self.assertEqual(len(builder.ListOfTables), 1)

    def test_table_that_was_not_allowed_is_gone_after_the_call(self):
        builder = TorvQueryBuilder()
        kept = []
        builder.OnAddRemoveTable = lambda sender, table, action: kept.append(table) or False
        self.assertIsNone(builder.ListOfTables.AddTable("T"))
        self.assertFalse(kept[0].isAlive())
        with self.assertRaises(RuntimeError):
            kept[0].TableName

    def test_link_veto_sees_both_ends(self):
        builder = builder_with_tables()
        seen = []

        def allow(sender, link, action):
            seen.append(
                (
                    sender is builder,
                    link.Table1.GetAlias(),
                    link.Item1.Name,
                    link.operatorText(),
                    link.Table2.GetAlias(),
                    link.Item2.Name,
                    link.KindOfJoin,
                    action,
                )
            )
            return True

        builder.OnAddRemoveLink = allow
        builder.LoadSQL(JOINED)
        self.assertEqual(
            seen, [(True, "O", "CUSTNO", "=", "C", "CUSTNO", orv.klInnerJoin, araAdd)]
        )
        self.assertIn("INNER JOIN", builder.GetSQLStatment())

    def test_vetoed_link_is_not_made(self):
        builder = builder_with_tables()
        kept = []
        builder.OnAddRemoveLink = lambda sender, link, action: kept.append(link) or False
        builder.LoadSQL(JOINED)
        self.assertNotIn("JOIN", builder.GetSQLStatment())
        self.assertFalse(kept[0].isAlive())
        with self.assertRaises(RuntimeError):
            kept[0].Table1
        self.assertIn("deleted", repr(kept[0]))

    def test_event_may_be_replaced_while_it_runs(self):
        builder = TorvQueryBuilder()

        def once(sender, table, action):
            builder.OnAddRemoveTable = None
            return False

        builder.OnAddRemoveTable = once
        del once
        self.assertIsNone(builder.ListOfTables.AddTable("T"))
        self.assertIsNotNone(builder.ListOfTables.AddTable("T"))

    def test_load_inside_an_event_is_refused(self):
        builder = builder_with_tables()

        def load(sender, table, action):
            builder.LoadSQL("SELECT A FROM B")

        builder.OnAddRemoveTable = load
        with self.assertRaisesRegex(OrvError, "LoadSQL is running"):
            builder.LoadSQL("SELECT O.PRICE FROM ORDERS O")


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


class Properties(TestCase):
    def test_simple_properties(self):
        builder = TorvQueryBuilder()
        self.assertIs(builder.KeepMeaning, False)
        builder.KeepMeaning = True
        self.assertIs(builder.KeepMeaning, True)
        self.assertEqual(builder.TabsHeight, 100)
        builder.TabsHeight = 50
        self.assertEqual(builder.TabsHeight, 100)
        self.assertIs(builder.Align, TorvQueryBuilder.TAlign.alNone)
        builder.Align = TorvQueryBuilder.TAlign.alTop
        self.assertIs(builder.Align, TorvQueryBuilder.TAlign.alTop)

    def test_wrong_types_are_refused(self):
        builder = TorvQueryBuilder()
        for name, value in (
            ("TailText", 5),
            ("TabsHeight", "high"),
            ("OperatorsList", 5),
            ("OperatorsList", [1]),
            ("Align", "alTop"),
            ("Operators", 5),
            ("Operators", ["="]),
            ("WorkAreaOptions", TorvQDConditionOptions()),
            ("ConditionOptions", None),
        ):
            with self.subTest(name=name, value=value), self.assertRaises(TypeError):
                setattr(builder, name, value)
        with self.assertRaises(AttributeError):
            builder.ListOfTables = None

    def test_qt_properties_are_the_same(self):
        builder = TorvQueryBuilder()
        builder.setProperty("KeepMeaning", True)
        self.assertTrue(builder.KeepMeaning)
        builder.setProperty("WorkAreaFlat", True)
        self.assertTrue(builder.WorkAreaOptions.Flat)
        builder.ConditionOptions.SelectRow = False
        self.assertIs(builder.property("ConditionSelectRow"), False)

    def test_options_are_attributes_too(self):
        builder = TorvQueryBuilder()
        builder.WorkAreaTableBorder = orv.edgeBump
        builder.ConditionOptions.BtnsStyle = orv.btn3DLook
        self.assertIs(builder.WorkAreaOptions.TableBorder, orv.edgeBump)
        self.assertIs(builder.ConditionBtnsStyle, orv.btn3DLook)
        with self.assertRaises(TypeError):
            builder.WorkAreaTableBorder = "edgeBump"

    def test_each_writable_property_of_qt_is_an_attribute_with_a_setter(self):
        builder = TorvQueryBuilder()
        meta = builder.metaObject()
        names = [
            meta.property(index).name()
            for index in range(meta.propertyOffset(), meta.propertyCount())
            if meta.property(index).isWritable()
        ]
        self.assertEqual(len(names), 17)
        for name in names:
            with self.subTest(name=name):
                value = getattr(builder, name)
                getattr(builder, "set" + name)(value)
                self.assertEqual(getattr(builder, name), value)

    def test_work_area_options(self):
        builder = TorvQueryBuilder()
        options = builder.WorkAreaOptions
        self.assertEqual(
            (options.HideSelection, options.DragFieldName, options.Flat, options.ShowFieldsType,
             options.FlatCaptionBtns, options.TableBorder, options.Font.family()),
            (True, False, False, False, True, orv.edgeRaised, "Arial"),
        )
        options.Flat = True
        options.TableBorder = orv.edgeSunken
        options.TableColor = QColor("red")
        options.Font = QFont("Arial", 20)
        again = builder.WorkAreaOptions
        self.assertEqual(
            (again.Flat, again.TableBorder, again.TableColor.name(), again.Font.pointSize()),
            (True, orv.edgeSunken, "#ff0000", 20),
        )
        with self.assertRaises(TypeError):
            options.TableBorder = "edgeBump"

    def test_assigned_options_are_copied(self):
        builder = TorvQueryBuilder()
        own = TorvQDWorkAreaOptions()
        own.ShowFieldsType = True
        builder.WorkAreaOptions = own
        own.ShowFieldsType = False
        self.assertTrue(builder.WorkAreaOptions.ShowFieldsType)
        conditions = TorvQDConditionOptions()
        conditions.BtnsStyle = orv.btnRaise
        builder.ConditionOptions = conditions
        self.assertEqual(builder.ConditionOptions.BtnsStyle, orv.btnRaise)

    def test_operators_are_a_list(self):
        builder = TorvQueryBuilder()
        self.assertEqual(builder.Operators[0].Name, "=")
        self.assertEqual(len(builder.Operators), 14)
        self.assertEqual(len(builder.OperatorsList), 14 * 6)
        builder.Operators = [TorvQDOperator("~")]
        self.assertEqual([entry.Name for entry in builder.Operators], ["~"])
        builder.Operators = builder.Operators
        self.assertEqual(len(builder.Operators), 1)
        builder.Operators.Add(TorvQDOperator("!~"))
        self.assertEqual(builder.OperatorsList[6], "!~")
        builder.Operators = TOperatorList()
        self.assertEqual(len(builder.Operators), 0)

    def test_damaged_operator_texts_go_to_the_error_handler(self):
        TorvQueryBuilder().OperatorsList = ["N", "C", "R", "PO", "PR", "many"]
        self.assertEqual(len(self.errors), 1)
        self.errors.clear()


class Signals(TestCase):
    def test_statement_changed_once_per_call(self):
        builder = builder_with_tables()
        count = []
        builder.StatementChanged.connect(lambda: count.append(1))
        builder.LoadSQL(JOINED)
        self.assertEqual(len(count), 1)
        builder.ListOfTables.AddTable("T")
        self.assertEqual(len(count), 2)
        builder.KeepMeaning = True
        self.assertEqual(len(count), 3)


class Closer(QObject):
    """Closes the dialog that is shown, when another thread asks for it."""

    asked = pyqtSignal()

    def __init__(self):
        super().__init__()
        self.asked.connect(self.close, Qt.ConnectionType.QueuedConnection)

    def close(self):
        QApplication.activeModalWidget().reject()


class Dialogs(TestCase):
    def test_other_threads_run_while_a_dialog_is_shown(self):
        builder = TorvQueryBuilder()
        closer = Closer()
        shown = threading.Event()

        def work():
            if shown.wait(60):
                closer.asked.emit()

        thread = threading.Thread(target=work)
        thread.start()
        QTimer.singleShot(0, shown.set)
        builder.ModifyOperators()
        thread.join()

    def test_operator_dialog_is_shown_and_forbids(self):
        builder = TorvQueryBuilder()
        shown = []

        def close():
            dialog = QApplication.activeModalWidget()
            shown.append(dialog.metaObject().className())
            dialog.reject()

        for restrictions in ((), {erAdd, erDelete}, [erAdd]):
            QTimer.singleShot(0, close)
            builder.ModifyOperators(restrictions)
        self.assertEqual(shown, ["TorvQDOperatorsPropertyDlg"] * 3)
        for restrictions in (erAdd, "erAdd", ["erAdd"], 5):
            with self.subTest(restrictions=restrictions), self.assertRaises(TypeError):
                builder.ModifyOperators(restrictions)

    def test_messages_go_to_the_service(self):
        builder = builder_with_tables()
        requests = []

        def answer(request):
            requests.append(request)
            return MessageAnswer.Ok

        old = orv.setMessageService(answer)
        self.assertEqual(old, self.messages.append)
        builder.LoadSQL(WRONG_JOIN)
        self.assertEqual(requests[0].text, "Could not find field: NONE in O")
        self.assertEqual(requests[0].caption, "Error!")
        self.assertEqual(requests[0].icon, orv.MessageIcon.Exclamation)
        self.assertEqual(requests[0].buttons, orv.MessageButtons.Ok)
        with self.assertRaises(TypeError):
            orv.setMessageService(5)
        with self.assertRaises(TypeError):
            orv.setErrorHandler("print")

    def test_wrong_answer_is_a_type_error(self):
        orv.setMessageService(lambda request: "yes")
        builder = builder_with_tables()
        with self.assertRaises(TypeError):
            builder.LoadSQL(WRONG_JOIN)


class Drags(TestCase):
    def setUp(self):
        super().setUp()
        self.builder = builder_with_tables("ORDERS")
        self.builder.resize(600, 500)
        self.builder.show()
        self.addCleanup(self.builder.hide)
        self.data = QMimeData()
        self.data.setText("CUSTOMER")
        self.viewport = work_area(self.builder).viewport()

    def send(self, kind, at=QPoint(400, 200)):
        arguments = (
            Qt.DropAction.CopyAction,
            self.data,
            Qt.MouseButton.LeftButton,
            Qt.KeyboardModifier.NoModifier,
        )
        event = kind(QPointF(at) if kind is QDropEvent else at, *arguments)
        app.sendEvent(self.viewport, event)
        return event.isAccepted()

    def test_things_of_the_host_are_dropped(self):
        seen = []

        def over(sender, source, x, y):
            seen.append((sender is self.builder, source, x, y, sender.DragMimeData().text()))
            return True

        self.builder.OnDragOver = over
        self.builder.OnDragDrop = lambda sender, source, x, y: seen.append(
            (x, y, sender.DragMimeData().text())
        )
        self.assertTrue(self.send(QDragEnterEvent))
        self.assertTrue(self.send(QDragMoveEvent))
        self.send(QDropEvent)
        self.assertEqual(seen[-2], (True, None, 400, 200, "CUSTOMER"))
        self.assertEqual(seen[-1], (400, 200, "CUSTOMER"))
        self.assertIsNone(self.builder.DragMimeData())

    def test_nothing_said_means_no_drop(self):
        dropped = []
        self.builder.OnDragDrop = lambda *arguments: dropped.append(arguments)
        for answer in (None, False):
            self.builder.OnDragOver = lambda *_, answer=answer: answer
            self.send(QDragEnterEvent)
            self.assertFalse(self.send(QDragMoveEvent))
        self.assertEqual(dropped, [])

    def test_data_of_a_drag_outlives_it(self):
        kept = []
        self.builder.OnDragOver = lambda sender, *_: kept.append(sender.DragMimeData())
        self.send(QDragEnterEvent)
        self.send(QDragMoveEvent)
        self.data = None
        self.assertEqual(kept[0].text(), "CUSTOMER")

    def test_dragged_field_is_told(self):
        seen = []
        self.builder.OnStartDrag = lambda sender, field: seen.append(
            (field.alias, field.field, field.qualifiedName())
        )
        self.builder.OnEndDrag = lambda sender, target, x, y: seen.append((target, x, y))
        table = self.builder.ListOfTables[0]
        start = QPoint(table.Left + 60, table.Top + 30)
        QTest.mousePress(self.viewport, Qt.MouseButton.LeftButton, pos=start)
        QTest.mouseMove(self.viewport, start + QPoint(40, 3))
        QTest.mouseMove(self.viewport, start + QPoint(80, 6))
        QTest.mouseRelease(self.viewport, Qt.MouseButton.LeftButton, pos=start + QPoint(80, 6))
        self.assertEqual(seen, [("ORDERS", "CUSTNO", "ORDERS.CUSTNO"), (None, 0, 0)])


if __name__ == "__main__":
    unittest.main()
