# SPDX-License-Identifier: MIT
"""Who keeps what alive: callables, builders, references to the diagram, and the interpreter's
end."""

import gc
import subprocess
import sys
import textwrap
import unittest
import weakref

from PyQt6 import sip
from PyQt6.QtCore import Qt
from PyQt6.QtTest import QTest
from PyQt6.QtWidgets import QWidget
from support import EVENTS, TestCase, builder_with_tables, delete_deferred, work_area

from orvquerybuilder import TDataSet, TFieldDef, TorvQueryBuilder, ftString


class Handler:
    """A callable that can be watched."""

    def __call__(self, *arguments):
        return None


def watch(builder, event):
    """Give the builder a callable that nobody else keeps; returns a weak reference to that."""
    handler = Handler()
    setattr(builder, event, handler)
    return weakref.ref(handler)


class Callables(TestCase):
    def test_builder_keeps_its_callables(self):
        for name in EVENTS:
            with self.subTest(event=name):
                builder = TorvQueryBuilder()
                watched = watch(builder, name)
                self.assertIsNotNone(watched())
                setattr(builder, name, None)
                self.assertIsNone(watched())

    def test_replaced_callable_is_released(self):
        builder = TorvQueryBuilder()
        watched = watch(builder, "OnGetTableFields")
        builder.OnGetTableFields = Handler()
        self.assertIsNone(watched())

    def test_callables_die_with_the_builder(self):
        for name in EVENTS:
            with self.subTest(event=name):
                builder = TorvQueryBuilder()
                watched = watch(builder, name)
                del builder
                self.assertIsNone(watched())

    def test_callables_die_with_a_builder_that_qt_deletes(self):
        parent = QWidget()
        builder = TorvQueryBuilder(parent)
        watched = watch(builder, "OnDragOver")
        sip.delete(parent)
        self.assertIsNone(watched())
        with self.assertRaises(RuntimeError):
            builder.OnDragOver
        with self.assertRaises(RuntimeError):
            builder.GetSQLStatment()

    def test_count_of_references_stays(self):
        builder = builder_with_tables()
        handler = Handler()
        before = sys.getrefcount(handler)
        for _ in range(100):
            builder.OnAddRemoveTable = handler
            builder.ListOfTables.AddTable("T")
            self.assertIs(builder.OnAddRemoveTable, handler)
        self.assertEqual(sys.getrefcount(handler), before + 1)
        builder.OnAddRemoveTable = None
        self.assertEqual(sys.getrefcount(handler), before)

    def test_calls_leak_no_arguments_and_answers(self):
        answer = TDataSet([("PRICE", ftString)])
        builder = TorvQueryBuilder()
        builder.OnGetTableFields = lambda name: answer
        builder.OnAddRemoveTable = lambda *arguments: answer
        counts = []
        for _ in range(3):
            for _ in range(20):
                builder.LoadSQL("SELECT O.PRICE FROM ORDERS O")
                builder.Clear()
            counts.append((sys.getrefcount(answer), sys.getrefcount(builder)))
        self.assertEqual(counts[0], counts[2])

    def test_exceptions_are_not_kept(self):
        class Raised(Exception):
            pass

        def throw(name):
            raise Raised

        builder = builder_with_tables()
        builder.OnGetTableFields = throw
        watched = None
        try:
            builder.LoadSQL("SELECT A FROM B")
        except Raised as error:
            watched = weakref.ref(error)
        gc.collect()
        self.assertIsNone(watched())

    def test_collector_finds_a_builder_that_its_callables_know(self):
        for name in EVENTS:
            with self.subTest(event=name):
                builder = TorvQueryBuilder()
                setattr(builder, name, lambda *_, known=builder: known)
                watched = weakref.ref(builder)
                del builder
                self.assertIsNotNone(watched())
                gc.collect()
                self.assertIsNone(watched())

    def test_collector_spares_a_builder_in_use(self):
        builder = TorvQueryBuilder()
        builder.OnAddRemoveTable = lambda *_, known=builder: False
        gc.collect()
        self.assertIsNone(builder.ListOfTables.AddTable("T"))

    def test_values_are_released(self):
        name = "".join(["A", "B"])
        before = sys.getrefcount(name)
        for _ in range(100):
            TFieldDef(name, ftString)
            TDataSet([(name, ftString)])
        self.assertEqual(sys.getrefcount(name), before)


class References(TestCase):
    def test_references_survive_the_builder(self):
        builder = builder_with_tables("ORDERS")
        tables = builder.ListOfTables
        table = tables[0]
        row = table.Items[0]
        operators = builder.Operators
        options = builder.WorkAreaOptions
        conditions = builder.ConditionOptions
        diagram = builder.WorkArea
        sip.delete(builder)
        for use in (
            lambda: tables.TablesCount(),
            lambda: len(tables),
            lambda: tables[0],
            lambda: tables.AddTable("T"),
            lambda: table.TableName,
            lambda: row.Name,
            lambda: len(operators),
            lambda: operators[0],
            lambda: operators.Clear(),
            lambda: options.Flat,
            lambda: setattr(options, "Flat", True),
            lambda: conditions.SelectRow,
            lambda: diagram.setLinkColor(Qt.GlobalColor.red),
        ):
            with self.assertRaises(RuntimeError):
                use()
        for thing in (tables, table, row, operators, options, conditions, diagram):
            self.assertTrue(repr(thing))

    def test_reference_does_not_keep_the_builder(self):
        builder = builder_with_tables("ORDERS")
        watched = weakref.ref(builder)
        tables = builder.ListOfTables
        del builder
        self.assertIsNone(watched())
        with self.assertRaises(RuntimeError):
            tables.TablesCount()

    def test_parent_keeps_the_builder(self):
        parent = QWidget()
        TorvQueryBuilder(parent).setObjectName("kept")
        gc.collect()
        self.assertEqual(parent.findChild(TorvQueryBuilder).objectName(), "kept")


class Deletion(TestCase):
    def close_box(self, builder):
        builder.resize(600, 500)
        builder.show()
        QTest.keyClick(work_area(builder), Qt.Key.Key_Delete)

    def test_callable_that_deletes_the_builder_later(self):
        builder = builder_with_tables("ORDERS")
        builder.OnAddRemoveTable = lambda sender, table, action: sender.deleteLater()
        self.close_box(builder)
        self.assertFalse(sip.isdeleted(builder))
        delete_deferred()
        self.assertTrue(sip.isdeleted(builder))

    def test_callable_that_drops_the_last_variable(self):
        held = [builder_with_tables("ORDERS")]
        watched = weakref.ref(held[0])
        area = work_area(held[0])
        self.close_box(held[0])
        held[0].ListOfTables.AddTable("T")
        held[0].OnAddRemoveTable = lambda *_: held.clear()
        QTest.keyClick(area, Qt.Key.Key_Delete)
        self.assertEqual(held, [])
        # The event is over before the builder goes.
        self.assertIsNotNone(watched())
        delete_deferred()
        gc.collect()
        self.assertIsNone(watched())

    def test_callable_that_drops_the_last_variable_in_a_call(self):
        held = [builder_with_tables("ORDERS")]
        watched = weakref.ref(held[0])
        tables = held[0].ListOfTables
        held[0].OnAddRemoveTable = lambda *_: held.clear()
        tables.DeleteTable(0)
        self.assertIsNotNone(watched())
        delete_deferred()
        gc.collect()
        self.assertIsNone(watched())

    def test_table_fields_that_drop_the_last_variable(self):
        held = [builder_with_tables()]
        watched = weakref.ref(held[0])

        def fields(name):
            held.clear()
            return TDataSet([("A", ftString)])

        held[0].OnGetTableFields = fields
        held[0].LoadSQL("SELECT B.A FROM B")
        delete_deferred()
        gc.collect()
        self.assertIsNone(watched())

    def test_builders_in_any_order(self):
        for order in ((0, 1, 2), (2, 1, 0), (1, 0, 2)):
            parent = QWidget()
            builders = [TorvQueryBuilder(parent), TorvQueryBuilder(), TorvQueryBuilder(parent)]
            for builder in builders:
                builder.OnAddRemoveTable = Handler()
                builder.ListOfTables.AddTable("T")
            for index in order:
                sip.delete(builders[index])
            del builders, parent
        gc.collect()


class InterpretersEnd(TestCase):
    """Programs that end in some way; all of them must end with their own exit code."""

    PROLOGUE = """
        import sys
        from PyQt6.QtCore import QTimer
        from PyQt6.QtWidgets import QApplication
        from orvquerybuilder import *
        app = QApplication(sys.argv)
        builder = TorvQueryBuilder()
        builder.OnGetTableFields = lambda name: TDataSet([("A", ftInteger)])
        builder.OnAddRemoveTable = lambda *_: print("asked", flush=True)
        builder.LoadSQL("SELECT T.A FROM T")
    """

    def run_program(self, body):
        text = textwrap.dedent(self.PROLOGUE) + textwrap.dedent(body)
        return subprocess.run(
            [sys.executable, "-c", text], capture_output=True, text=True, timeout=60
        )

    def assert_ends(self, body, code=0):
        result = self.run_program(body)
        self.assertEqual((result.returncode, result.stdout), (code, "asked\n"), result.stderr)
        return result.stderr

    def test_with_a_live_builder(self):
        self.assertNotIn("Traceback", self.assert_ends(""))

    def test_with_a_shown_builder(self):
        self.assert_ends("builder.show()\nQTimer.singleShot(0, app.quit)\nsys.exit(app.exec())")

    def test_with_services_of_python(self):
        self.assert_ends("setErrorHandler(print)\nsetMessageService(lambda request: None)")

    def test_with_references(self):
        self.assert_ends("t = builder.ListOfTables[0]\nr = t.Items[0]\no = builder.Operators")

    def test_with_a_cycle(self):
        self.assert_ends("builder.OnEndDrag = lambda *_, b=builder: b")

    def test_without_the_application(self):
        self.assert_ends("del app")

    def test_with_the_application_deleted_first(self):
        self.assert_ends("from PyQt6 import sip\ndel builder\nsip.delete(app)")

    def test_with_an_exit_code(self):
        self.assert_ends("sys.exit(7)", 7)

    def test_with_a_builder_kept_by_a_module(self):
        self.assert_ends("import math\nmath.builder = builder")

    def test_with_the_default_hook_an_exception_in_an_event_does_not_end_it(self):
        stderr = self.assert_ends(
            """
            from PyQt6.QtCore import Qt
            from PyQt6.QtTest import QTest
            from PyQt6.QtWidgets import QAbstractScrollArea
            def refuse(*_):
                raise LookupError("in an event")
            builder.OnAddRemoveTable = refuse
            (area,) = [child for child in builder.findChildren(QAbstractScrollArea)
                       if child.metaObject().className() == "TorvQDWorkArea"]
            QTest.keyClick(area, Qt.Key.Key_Delete)
            sys.exit(len(builder.ListOfTables))
            """,
            1,
        )
        self.assertIn("LookupError: in an event", stderr)

    def test_a_builder_needs_an_application(self):
        result = subprocess.run(
            [sys.executable, "-c", "import orvquerybuilder\norvquerybuilder.TorvQueryBuilder()"],
            capture_output=True,
            text=True,
            timeout=60,
        )
        self.assertEqual(result.returncode, 1)
        self.assertIn("RuntimeError: a QApplication must be made before", result.stderr)


if __name__ == "__main__":
    unittest.main()
