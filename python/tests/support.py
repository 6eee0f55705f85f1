# SPDX-License-Identifier: MIT
"""What the tests of the bindings share."""

import sys
import unittest

from PyQt6.QtCore import QEvent, QMimeData, QPoint, QPointF, Qt
from PyQt6.QtGui import QDropEvent
from PyQt6.QtTest import QTest
from PyQt6.QtWidgets import QAbstractScrollArea, QApplication

import orvquerybuilder as orv
from orvquerybuilder import TDataSet, TorvQueryBuilder, ftFloat, ftInteger, ftString

app = QApplication.instance() or QApplication(sys.argv)

TABLES = {
    "ORDERS": [("CUSTNO", ftInteger), ("PRICE", ftFloat)],
    "CUSTOMER": [("CUSTNO", ftInteger), ("NAME", ftString)],
}

EVENTS = (
    "OnGetTableFields",
    "OnAddRemoveTable",
    "OnAddRemoveLink",
    "OnEnterProcParameter",
    "OnStartDrag",
    "OnDragOver",
    "OnDragDrop",
    "OnEndDrag",
)

JOINED = "SELECT O.PRICE FROM ORDERS O INNER JOIN CUSTOMER C ON (O.CUSTNO = C.CUSTNO)"
WRONG_JOIN = "SELECT O.PRICE FROM ORDERS O INNER JOIN CUSTOMER C ON (O.NONE = C.CUSTNO)"


def data_set(name):
    fields = TABLES.get(name.upper())
    return TDataSet(fields) if fields else None


def builder_with_tables(*names):
    builder = TorvQueryBuilder()
    builder.OnGetTableFields = data_set
    for name in names:
        builder.ListOfTables.AddTable(name, data_set(name))
    return builder


def work_area(builder):
    """The diagram of a builder, as a widget."""
    (area,) = [
        child
        for child in builder.findChildren(QAbstractScrollArea)
        if child.metaObject().className() == "TorvQDWorkArea"
    ]
    return area


def delete_deferred():
    QApplication.sendPostedEvents(None, QEvent.Type.DeferredDelete)
    QApplication.processEvents()


class TestCase(unittest.TestCase):
    """Collects what reaches sys.excepthook, the error handler and the message service; a test that
    does not expect any fails."""

    def setUp(self):
        self.hooked = []
        self.errors = []
        self.messages = []
        old_hook = sys.excepthook
        sys.excepthook = lambda *exception: self.hooked.append(exception)
        self.addCleanup(setattr, sys, "excepthook", old_hook)
        orv.setErrorHandler(self.errors.append)
        self.addCleanup(orv.setErrorHandler, None)
        orv.setMessageService(self.messages.append)
        self.addCleanup(orv.setMessageService, None)

    def tearDown(self):
        self.assertEqual(self.hooked, [])
        self.assertEqual(self.errors, [])
        self.assertEqual(self.messages, [])

    def take_hooked(self):
        hooked, self.hooked = self.hooked, []
        return [value for _, value, _ in hooked]


class ShownBuilder(TestCase):
    """A builder on the screen with one box, and things of the host that can be dragged over it."""

    def setUp(self):
        super().setUp()
        self.builder = builder_with_tables("ORDERS")
        self.builder.resize(600, 500)
        self.builder.show()
        self.addCleanup(self.builder.hide)
        self.area = work_area(self.builder)
        self.data = QMimeData()
        self.data.setText("CUSTOMER")

    def send_drag(self, kind):
        """Send such an event of a drag to a free place of the diagram; tells whether it is
        accepted."""
        at = QPoint(400, 200)
        event = kind(
            QPointF(at) if kind is QDropEvent else at,
            Qt.DropAction.CopyAction,
            self.data,
            Qt.MouseButton.LeftButton,
            Qt.KeyboardModifier.NoModifier,
        )
        app.sendEvent(self.area.viewport(), event)
        return event.isAccepted()

    def drag_a_field(self):
        """Drag the first row of the box with the mouse."""
        table = self.builder.ListOfTables[0]
        start = QPoint(table.Left + 60, table.Top + 30)
        viewport = self.area.viewport()
        QTest.mousePress(viewport, Qt.MouseButton.LeftButton, pos=start)
        QTest.mouseMove(viewport, start + QPoint(40, 3))
        QTest.mouseMove(viewport, start + QPoint(80, 6))
        QTest.mouseRelease(viewport, Qt.MouseButton.LeftButton, pos=start + QPoint(80, 6))
