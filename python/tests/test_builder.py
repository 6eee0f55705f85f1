# SPDX-License-Identifier: MIT
"""The control: how it is made, its properties, signals and dialogs."""

import threading
import unittest

from PyQt6.QtCore import QObject, Qt, QTimer, pyqtSignal
from PyQt6.QtGui import QColor, QFont
from PyQt6.QtWidgets import QApplication, QFrame, QTabWidget, QWidget
from support import JOINED, WRONG_JOIN, TestCase, builder_with_tables, work_area

import orvquerybuilder as orv
from orvquerybuilder import (
    MessageAnswer,
    TOperatorList,
    TorvQDConditionOptions,
    TorvQDOperator,
    TorvQDWorkAreaOptions,
    TorvQueryBuilder,
    erAdd,
    erDelete,
)


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

    def test_links_have_a_colour(self):
        builder = builder_with_tables("ORDERS", "CUSTOMER")
        builder.resize(700, 500)
        builder.LoadSQL(JOINED)
        colour = QColor(250, 10, 210)

        def is_painted():
            image = work_area(builder).viewport().grab().toImage()
            return any(
                image.pixelColor(x, y) == colour
                for x in range(image.width())
                for y in range(image.height())
            )

        self.assertFalse(is_painted())
        builder.WorkArea.setLinkColor(colour)
        self.assertTrue(is_painted())
        with self.assertRaises(TypeError):
            builder.WorkArea.setLinkColor(colour, 1)
        self.assertIsNone(TorvQueryBuilder(None, True).WorkArea)

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


if __name__ == "__main__":
    unittest.main()
