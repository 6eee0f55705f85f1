# SPDX-License-Identifier: MIT
"""Uses the Python package that is found, and checks that it and its library lie below a prefix."""

import os
import sys

from PyQt6.QtWidgets import QApplication

import orvquerybuilder as orv

prefix = os.path.realpath(sys.argv[1]) + os.sep
app = QApplication(sys.argv)
builder = orv.TorvQueryBuilder()
builder.OnGetTableFields = lambda name: orv.TDataSet([("CUSTNO", orv.ftInteger)])
builder.LoadSQL("select custno from orders")
statement = builder.GetSQLStatment()
with open("/proc/self/maps", encoding="utf-8") as maps:
    loaded = {line.split(None, 5)[5].strip() for line in maps if "orvquerybuilder" in line}
print(statement, *sorted(loaded), sep="\n")
names = {os.path.basename(path).split(".")[0] for path in loaded}
if "FROM ORDERS" not in statement:
    sys.exit("That is not the statement")
if names != {"_core", "liborvquerybuilder"} or not all(p.startswith(prefix) for p in loaded):
    sys.exit(f"Not all of it lies below {prefix}")
