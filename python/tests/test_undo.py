# SPDX-License-Identifier: MIT
"""Steps of an undo stack."""

import unittest

from PyQt6.QtCore import QObject
from PyQt6.QtGui import QUndoStack
from support import TestCase, app, builder_with_tables, data_set

from orvquerybuilder import TorvQueryBuilder, UndoRecorder


class Undo(TestCase):
    def setUp(self):
        super().setUp()
        self.builder = builder_with_tables("ORDERS")
        app.processEvents()
        self.stack = QUndoStack()
        self.recorder = UndoRecorder(self.builder, self.stack)

    def steps(self):
        return [self.stack.text(index) for index in range(self.stack.count())]

    def tables(self):
        return [table.TableName for table in self.builder.ListOfTables]

    def add(self, name):
        self.builder.ListOfTables.AddTable(name, data_set(name))

    def test_each_change_is_a_step(self):
        before = self.builder.GetSQLStatment()
        self.add("CUSTOMER")
        self.builder.TailText = "LIMIT 1"
        after = self.builder.GetSQLStatment()
        self.assertEqual(self.steps(), ["adding CUSTOMER", "changing the end of the statement"])
        self.stack.undo()
        self.stack.undo()
        self.assertEqual(self.builder.GetSQLStatment(), before)
        self.stack.redo()
        self.stack.redo()
        self.assertEqual(self.builder.GetSQLStatment(), after)

    def test_moved_box_is_a_step_once_told(self):
        told = []
        self.builder.LayoutChanged.connect(lambda: told.append(self.recorder.isRestoring()))
        table = self.builder.ListOfTables[0]
        left = table.Left
        table.MoveTable(30, 0)
        self.recorder.record()
        app.processEvents()
        self.assertEqual(self.steps(), ["moving ORDERS"])
        self.assertEqual(told, [False])
        self.stack.undo()
        self.assertEqual(self.builder.ListOfTables[0].Left, left)

    def test_program_can_tell_undoing_from_new_changes(self):
        seen = []
        self.builder.StatementChanged.connect(lambda: seen.append(self.recorder.isRestoring()))
        self.add("CUSTOMER")
        self.stack.undo()
        self.assertEqual(seen, [False, True])
        self.assertIs(self.recorder.isRestoring(), False)

    def test_group_is_one_step(self):
        with UndoRecorder.Group(self.recorder, "making a query"):
            self.add("CUSTOMER")
            with UndoRecorder.Group(self.recorder):
                self.builder.TailText = "LIMIT 1"
            self.assertEqual(self.steps(), [])
        self.assertEqual(self.steps(), ["making a query"])
        with UndoRecorder.Group(self.recorder):
            self.builder.TailText = ""
        self.assertEqual(self.steps()[1:], ["changing the end of the statement"])
        self.stack.undo()
        self.stack.undo()
        self.assertEqual(self.tables(), ["ORDERS"])

    def test_group_ends_with_what_is_raised_in_it(self):
        with self.assertRaisesRegex(ValueError, "mine"):
            with UndoRecorder.Group(self.recorder) as group:
                self.assertIsInstance(group, UndoRecorder.Group)
                self.add("CUSTOMER")
                raise ValueError("mine")
        self.assertEqual(self.steps(), ["adding CUSTOMER"])

    def test_reset_begins_anew(self):
        self.add("CUSTOMER")
        self.recorder.reset()
        self.assertEqual(self.steps(), [])
        self.assertFalse(self.stack.canUndo())
        self.assertEqual(len(self.tables()), 2)

    def test_records_as_long_as_it_lives(self):
        parent = QObject()
        other = QUndoStack()
        UndoRecorder(self.builder, other, parent)
        self.add("CUSTOMER")
        self.assertEqual((self.stack.count(), other.count()), (1, 1))
        del self.recorder, parent
        self.builder.TailText = "LIMIT 1"
        self.assertEqual((self.stack.count(), other.count()), (1, 1))
        # Its steps have nobody left to show them.
        self.stack.undo()
        self.assertEqual(len(self.tables()), 2)

    def test_group_outlives_its_recorder(self):
        with UndoRecorder.Group(self.recorder):
            del self.recorder
            self.add("CUSTOMER")
        self.assertEqual(self.steps(), [])

    def test_refuses_what_is_no_builder_or_stack(self):
        for arguments in ((), (self.builder,), (None, self.stack), (self.builder, None)):
            with self.subTest(arguments=arguments), self.assertRaises(TypeError):
                UndoRecorder(*arguments)
        with self.assertRaises(TypeError):
            UndoRecorder.Group(None)

    def test_belongs_to_its_parent(self):
        recorder = UndoRecorder(TorvQueryBuilder(), self.stack, self.stack)
        self.assertIs(recorder.parent(), self.stack)


if __name__ == "__main__":
    unittest.main()
