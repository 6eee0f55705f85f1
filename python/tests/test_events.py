# SPDX-License-Identifier: MIT
"""What the control asks its host, and drags."""

import unittest

from PyQt6.QtGui import QDragEnterEvent, QDragMoveEvent, QDropEvent
from support import EVENTS, JOINED, ShownBuilder, TestCase, builder_with_tables, data_set

import orvquerybuilder as orv
from orvquerybuilder import OrvError, TorvQueryBuilder, araAdd, araRemove


class Vetoes(TestCase):
    def test_events_come_back_and_are_cleared(self):
        builder = TorvQueryBuilder()
        for name in EVENTS:
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


class Drags(ShownBuilder):
    def test_things_of_the_host_are_dropped(self):
        seen = []

        def over(sender, source, x, y):
            seen.append((sender is self.builder, source, x, y, sender.DragMimeData().text()))
            return True

        self.builder.OnDragOver = over
        self.builder.OnDragDrop = lambda sender, source, x, y: seen.append(
            (x, y, sender.DragMimeData().text())
        )
        self.assertTrue(self.send_drag(QDragEnterEvent))
        self.assertTrue(self.send_drag(QDragMoveEvent))
        self.send_drag(QDropEvent)
        self.assertEqual(seen[-2], (True, None, 400, 200, "CUSTOMER"))
        self.assertEqual(seen[-1], (400, 200, "CUSTOMER"))
        self.assertIsNone(self.builder.DragMimeData())

    def test_nothing_said_means_no_drop(self):
        dropped = []
        self.builder.OnDragDrop = lambda *arguments: dropped.append(arguments)
        for answer in (None, False):
            self.builder.OnDragOver = lambda *_, answer=answer: answer
            self.send_drag(QDragEnterEvent)
            self.assertFalse(self.send_drag(QDragMoveEvent))
        self.assertEqual(dropped, [])

    def test_data_of_a_drag_outlives_it(self):
        kept = []
        self.builder.OnDragOver = lambda sender, *_: kept.append(sender.DragMimeData())
        self.send_drag(QDragEnterEvent)
        self.send_drag(QDragMoveEvent)
        self.data = None
        self.assertEqual(kept[0].text(), "CUSTOMER")

    def test_dragged_field_is_told(self):
        seen = []
        self.builder.OnStartDrag = lambda sender, field: seen.append(
            (field.alias, field.field, field.qualifiedName())
        )
        self.builder.OnEndDrag = lambda sender, target, x, y: seen.append((target, x, y))
        self.drag_a_field()
        self.assertEqual(seen, [("ORDERS", "CUSTNO", "ORDERS.CUSTNO"), (None, 0, 0)])


if __name__ == "__main__":
    unittest.main()
