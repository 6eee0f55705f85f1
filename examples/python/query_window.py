#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A small window with the query builder: tables on the left, the statement below.

usage: query_window.py [--print] [STATEMENT]

Double-click a table to put it on the diagram, or drag it there. With --print the window is not
shown: the statement is loaded, printed as the query builder writes it, and the program ends, with
status 1 when the statement cannot be loaded. What could not be kept is told on stderr.
"""

import argparse
import sys

from PyQt6.QtCore import Qt
from PyQt6.QtWidgets import (
    QApplication,
    QListWidget,
    QMainWindow,
    QMessageBox,
    QPlainTextEdit,
    QPushButton,
    QSplitter,
    QVBoxLayout,
    QWidget,
)

from orvquerybuilder import (
    OrvError,
    TDataSet,
    TorvQueryBuilder,
    araRemove,
    ftDate,
    ftFloat,
    ftInteger,
    ftString,
)

TABLES = {
    "CUSTOMER": TDataSet([("CUSTNO", ftInteger), ("NAME", ftString), ("CITY", ftString)]),
    "ORDERS": TDataSet(
        [("ORDERNO", ftInteger), ("CUSTNO", ftInteger), ("DAY", ftDate), ("PRICE", ftFloat)]
    ),
}

STATEMENT = """select c.name, o.price
from customer c inner join orders o on c.custno = o.custno
where o.price > 100
order by o.price desc"""


class QueryWindow(QMainWindow):
    """The window: table list, query builder, statement."""

    def __init__(self):
        super().__init__()
        self.setWindowTitle("Query")

        self.builder = TorvQueryBuilder()
        self.builder.KeepMeaning = True
        self.builder.OnGetTableFields = lambda name: TABLES.get(name.upper())
        self.builder.OnAddRemoveTable = self.may_change
        self.builder.OnDragOver = lambda sender, source, x, y: source is self.tables
        self.builder.OnDragDrop = lambda *_: self.add_table(self.tables.currentItem())
        self.builder.StatementChanged.connect(self.show_statement)

        self.tables = QListWidget()
        self.tables.addItems(TABLES)
        self.tables.setDragEnabled(True)
        self.tables.itemActivated.connect(self.add_table)

        self.text = QPlainTextEdit()
        load = QPushButton("&Load")
        load.clicked.connect(lambda: self.load(self.text.toPlainText()))

        below = QWidget()
        column = QVBoxLayout(below)
        column.addWidget(self.text)
        column.addWidget(load)
        right = QSplitter(Qt.Orientation.Vertical)
        right.addWidget(self.builder)
        right.addWidget(below)
        whole = QSplitter()
        whole.addWidget(self.tables)
        whole.addWidget(right)
        whole.setSizes([150, 750])
        self.setCentralWidget(whole)
        self.resize(900, 700)

    def add_table(self, item):
        self.builder.ListOfTables.AddTable(item.text(), TABLES[item.text()])

    def may_change(self, sender, table, action):
        """A table with ticked fields stays until the user says otherwise."""
        if action != araRemove or not self.isVisible() or table.FieldState == 0:
            return True
        question = f"Remove {table.GetCaption()} with its fields?"
        answer = QMessageBox.question(self, "Query", question)
        return answer == QMessageBox.StandardButton.Yes

    def show_statement(self):
        try:
            self.text.setPlainText(self.builder.GetSQLStatment())
        except OrvError as error:
            self.text.setPlainText(f"-- {error}")

    def load(self, statement):
        try:
            self.builder.LoadSQL(statement)
        except OrvError as error:
            QMessageBox.warning(self, "Query", str(error))
            return
        report = "\n".join(f"{found.text}: {found.what}" for found in self.builder.LoadReport())
        if report:
            QMessageBox.information(self, "Query", report)


def print_statement(builder, statement):
    try:
        builder.LoadSQL(statement)
        print(builder.GetSQLStatment())
    except OrvError as error:
        print(error, file=sys.stderr)
        return 1
    for found in builder.LoadReport():
        print(f"{found.start}: {found.text}: {found.what}", file=sys.stderr)
    return 0


def main():
    app = QApplication(sys.argv)
    parser = argparse.ArgumentParser(description="Build a query with the mouse.")
    parser.add_argument("--print", action="store_true", help="print the statement and end")
    parser.add_argument("statement", nargs="?", default=STATEMENT, help="the statement to load")
    arguments = parser.parse_args(app.arguments()[1:])

    window = QueryWindow()
    if arguments.print:
        return print_statement(window.builder, arguments.statement)
    window.show()
    window.load(arguments.statement)
    return app.exec()


if __name__ == "__main__":
    sys.exit(main())
