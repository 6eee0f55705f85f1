# SPDX-License-Identifier: MIT
"""What becomes of an exception in a callable: inside a call it passes to the caller, inside a Qt
event it goes to sys.excepthook."""

import sys
import traceback
import unittest

from PyQt6.QtCore import Qt
from PyQt6.QtGui import QDragEnterEvent, QDragMoveEvent, QDropEvent
from PyQt6.QtTest import QTest
from support import JOINED, WRONG_JOIN, ShownBuilder, TestCase, app, builder_with_tables, data_set

import orvquerybuilder as orv
from orvquerybuilder import (
    OrvError,
    TDataSet,
    TParam,
    TParams,
    TorvQueryBuilder,
    araRemove,
    ftInteger,
    ptInput,
)


class Refused(Exception):
    """What the callables of these tests raise."""


def refuse(*arguments):
    raise Refused(len(arguments))


class InsideACall(TestCase):
    def test_table_fields(self):
        builder = builder_with_tables("ORDERS")
        builder.OnGetTableFields = refuse
        try:
            builder.LoadSQL("SELECT A FROM B")
        except Refused as error:
            self.assertEqual(error.args, (1,))
            frames = [frame.name for frame in traceback.extract_tb(error.__traceback__)]
        self.assertEqual(frames, ["test_table_fields", "refuse"])

    def test_it_is_the_very_exception(self):
        builder = builder_with_tables()
        thrown = Refused("once")

        def throw(name):
            raise thrown

        builder.OnGetTableFields = throw
        with self.assertRaises(Refused) as caught:
            builder.LoadSQL("SELECT A FROM B")
        self.assertIs(caught.exception, thrown)

    def test_builder_can_be_used_afterwards(self):
        builder = builder_with_tables()
        builder.OnGetTableFields = refuse
        with self.assertRaises(Refused):
            builder.LoadSQL("SELECT O.PRICE FROM ORDERS O")
        builder.OnGetTableFields = data_set
        builder.LoadSQL("SELECT O.PRICE FROM ORDERS O")
        self.assertEqual(builder.GetSQLStatment(), "SELECT O.PRICE\r\nFROM ORDERS O")

    def test_table_veto(self):
        builder = builder_with_tables("ORDERS")
        builder.OnAddRemoveTable = refuse
        with self.assertRaises(Refused) as caught:
            builder.ListOfTables.AddTable("T")
        self.assertEqual(caught.exception.args, (3,))
        with self.assertRaises(Refused):
            builder.ListOfTables.DeleteTable(0)
        with self.assertRaises(Refused):
            builder.ListOfTables[0].CloseTable()
        self.assertEqual(len(builder.ListOfTables), 1)

    def test_link_veto(self):
        builder = builder_with_tables()
        builder.OnAddRemoveLink = refuse
        with self.assertRaises(Refused):
            builder.LoadSQL(JOINED)

    def test_parameter(self):
        builder = TorvQueryBuilder()
        params = TParams([TParam("X", ftInteger, ptInput)])
        table = builder.ListOfTables.AddProc("P", None, params)
        builder.OnEnterProcParameter = refuse
        with self.assertRaises(Refused):
            table.Items[0].SetCheck(True)

    def test_wrong_answers_are_type_errors(self):
        builder = builder_with_tables()
        for answer in (5, "ORDERS", [("A", ftInteger)], (TDataSet(), TDataSet()), (1, 2),
                       (TDataSet(),), TParams()):
            with self.subTest(answer=answer):
                builder.OnGetTableFields = lambda name, answer=answer: answer
                with self.assertRaisesRegex(TypeError, "OnGetTableFields must return"):
                    builder.LoadSQL("SELECT A FROM B")

    def test_answer_without_truth_passes_its_exception(self):
        class Neither:
            def __bool__(self):
                raise Refused

        builder = TorvQueryBuilder()
        builder.OnAddRemoveTable = lambda *_: Neither()
        with self.assertRaises(Refused):
            builder.ListOfTables.AddTable("T")

    def test_callable_with_other_arguments(self):
        builder = TorvQueryBuilder()
        builder.OnAddRemoveTable = lambda: True
        with self.assertRaises(TypeError):
            builder.ListOfTables.AddTable("T")

    def test_exceptions_that_end_programs_pass_too(self):
        builder = TorvQueryBuilder()
        for kind in (KeyboardInterrupt, SystemExit, GeneratorExit):
            def throw(*_, kind=kind):
                raise kind

            builder.OnAddRemoveTable = throw
            with self.subTest(kind=kind), self.assertRaises(kind):
                builder.ListOfTables.AddTable("T")

    def test_error_of_the_library_passes_through_a_callable(self):
        builder = builder_with_tables()
        builder.OnGetTableFields = lambda name: builder.ListOfTables.Tables(99)
        with self.assertRaises(OrvError):
            builder.LoadSQL("SELECT A FROM B")

    def test_message_service(self):
        builder = builder_with_tables()
        orv.setMessageService(refuse)
        with self.assertRaises(Refused):
            builder.LoadSQL(WRONG_JOIN)


class InsideAnEvent(ShownBuilder):
    def close_box(self):
        QTest.keyClick(self.area, Qt.Key.Key_Delete)

    def test_without_exception_the_event_does_its_work(self):
        actions = []
        self.builder.OnAddRemoveTable = lambda sender, table, action: actions.append(action)
        self.close_box()
        self.assertEqual(actions, [araRemove])
        self.assertEqual(len(self.builder.ListOfTables), 0)

    def test_table_veto(self):
        self.builder.OnAddRemoveTable = refuse
        self.close_box()
        (error,) = self.take_hooked()
        self.assertIsInstance(error, Refused)
        self.assertEqual(error.__traceback__.tb_frame.f_code.co_name, "refuse")
        self.assertEqual(len(self.builder.ListOfTables), 1)

    def test_parameter(self):
        params = TParams([TParam("X", ftInteger, ptInput)])
        self.builder.ListOfTables.AddProc("P", None, params)
        self.builder.OnEnterProcParameter = refuse
        QTest.keyClick(self.area, Qt.Key.Key_Down)
        QTest.keyClick(self.area, Qt.Key.Key_Space)
        (error,) = self.take_hooked()
        self.assertIsInstance(error, Refused)

    def test_drag_over(self):
        self.builder.OnDragOver = refuse
        self.send_drag(QDragEnterEvent)
        (error,) = self.take_hooked()
        self.assertIsInstance(error, Refused)

    def test_drop(self):
        self.builder.OnDragOver = lambda *_: True
        self.builder.OnDragDrop = refuse
        for kind in (QDragEnterEvent, QDragMoveEvent):
            self.send_drag(kind)
        self.assertEqual(self.take_hooked(), [])
        self.send_drag(QDropEvent)
        (error,) = self.take_hooked()
        self.assertIsInstance(error, Refused)
        self.assertIsNone(self.builder.DragMimeData())

    def test_beginning_and_end_of_a_drag(self):
        for name, count in (("OnStartDrag", 2), ("OnEndDrag", 4)):
            with self.subTest(event=name):
                setattr(self.builder, name, refuse)
                self.drag_a_field()
                errors = self.take_hooked()
                self.assertTrue(errors)
                for error in errors:
                    self.assertIsInstance(error, Refused)
                    self.assertEqual(error.args, (count,))
                setattr(self.builder, name, None)
        told = []
        self.builder.OnStartDrag = lambda sender, field: told.append(field.field)
        self.drag_a_field()
        self.assertEqual(told, ["CUSTNO"])

    def link_by_keys(self):
        """Link the current rows of the two boxes."""
        QTest.keyClick(self.area, Qt.Key.Key_Insert)
        QTest.keyClick(self.area, Qt.Key.Key_PageDown, Qt.KeyboardModifier.ControlModifier)
        QTest.keyClick(self.area, Qt.Key.Key_Insert)

    def test_link_veto(self):
        self.builder.ListOfTables.AddTable("CUSTOMER", data_set("CUSTOMER"))
        self.builder.OnAddRemoveLink = refuse
        self.link_by_keys()
        (error,) = self.take_hooked()
        self.assertIsInstance(error, Refused)
        self.assertEqual(error.args, (3,))
        self.assertNotIn("JOIN", self.builder.GetSQLStatment())
        self.builder.OnAddRemoveLink = None
        QTest.keyClick(self.area, Qt.Key.Key_Escape)
        self.link_by_keys()
        self.assertIn("INNER JOIN", self.builder.GetSQLStatment())

    def test_veto_of_a_removal_that_is_posted(self):
        self.builder.ListOfTables.AddTable("CUSTOMER", data_set("CUSTOMER"))
        self.link_by_keys()
        orv.setMessageService(lambda request: orv.MessageAnswer.Yes)
        for handler, is_left in ((refuse, True), (None, False)):
            self.builder.OnAddRemoveLink = handler
            QTest.keyClick(self.area, Qt.Key.Key_PageDown, Qt.KeyboardModifier.AltModifier)
            QTest.keyClick(self.area, Qt.Key.Key_Delete)
            app.processEvents()
            errors = [type(error) for error in self.take_hooked()]
            self.assertEqual(errors, [Refused] if handler else [])
            self.assertEqual("INNER JOIN" in self.builder.GetSQLStatment(), is_left)

    def test_message_service(self):
        self.builder.ListOfTables.AddTable("CUSTOMER", data_set("CUSTOMER"))
        self.link_by_keys()
        orv.setMessageService(refuse)
        QTest.keyClick(self.area, Qt.Key.Key_PageDown, Qt.KeyboardModifier.AltModifier)
        # It asks whether the link is to go.
        QTest.keyClick(self.area, Qt.Key.Key_Delete)
        app.processEvents()
        (error,) = self.take_hooked()
        self.assertIsInstance(error, Refused)
        self.assertIn("INNER JOIN", self.builder.GetSQLStatment())

    def test_exceptions_that_end_programs_do_not(self):
        for kind in (SystemExit, KeyboardInterrupt):
            def throw(*_, kind=kind):
                raise kind(3)

            self.builder.OnAddRemoveTable = throw
            self.close_box()
            (error,) = self.take_hooked()
            self.assertIsInstance(error, kind)

    def test_wrong_answer(self):
        class Neither:
            def __bool__(self):
                raise Refused

        self.builder.OnAddRemoveTable = lambda *_: Neither()
        self.close_box()
        (error,) = self.take_hooked()
        self.assertIsInstance(error, Refused)

    def test_error_handler_gets_only_errors_of_the_library(self):
        self.builder.OnAddRemoveTable = lambda *_: self.builder.Clear()
        self.close_box()
        # It was raised in Python, as OrvError.
        (error,) = self.take_hooked()
        self.assertIsInstance(error, OrvError)
        self.assertEqual(str(error), "LoadSQL is running")

    def test_hook_that_raises_is_survived(self):
        unraisable = []
        old = sys.unraisablehook
        self.addCleanup(setattr, sys, "unraisablehook", old)
        sys.unraisablehook = unraisable.append
        sys.excepthook = refuse
        self.builder.OnAddRemoveTable = refuse
        self.close_box()
        self.assertEqual([type(entry.exc_value) for entry in unraisable], [Refused])

    def test_next_event_works(self):
        self.builder.OnAddRemoveTable = refuse
        self.close_box()
        self.take_hooked()
        self.builder.OnAddRemoveTable = None
        self.close_box()
        self.assertEqual(len(self.builder.ListOfTables), 0)


if __name__ == "__main__":
    unittest.main()
