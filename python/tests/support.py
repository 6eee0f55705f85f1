# SPDX-License-Identifier: MIT
"""What the tests of the bindings share."""

import sys
import unittest

from PyQt6.QtCore import QEvent, QPoint, Qt
from PyQt6.QtTest import QTest
from PyQt6.QtWidgets import QAbstractScrollArea, QApplication

import orvquerybuilder as orv
from orvquerybuilder import TDataSet, TorvQueryBuilder, ftFloat, ftInteger, ftString

app = QApplication.instance() or QApplication(sys.argv)

TABLES = {
    "ORDERS": [("CUSTNO", ftInteger), ("PRICE", ftFloat)],
    "CUSTOMER": [("CUSTNO", ftInteger), ("NAME", ftString)],
}


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


def close_button(builder, table):
    """Where the close button of a box is, in the diagram's viewport."""
    area = work_area(builder)
    right = table.Left + table.Width - area.horizontalScrollBar().value()
    top = table.Top - area.verticalScrollBar().value()
    return QPoint(right - 10, top + 10)


def click_close(builder, table):
    """Close a box with the mouse."""
    at = close_button(builder, table)
    QTest.mouseClick(
        work_area(builder).viewport(), Qt.MouseButton.LeftButton, pos=at
    )


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
