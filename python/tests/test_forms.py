# SPDX-License-Identifier: MIT
"""Forms of Qt Designer, read by PyQt6: the same files that C++ programs read."""

import io
import unittest

from PyQt6 import uic
from PyQt6.QtWidgets import QWidget
from support import TestCase

from orvquerybuilder import TorvQueryBuilder

FORM = """<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>Form</class>
 <widget class="QWidget" name="Form">
  <layout class="QVBoxLayout" name="layout">
   <item>
    <widget class="TorvQueryBuilder" name="queryBuilder">
     <property name="Align"><enum>TorvQueryBuilder::alTop</enum></property>
     <property name="TabsHeight"><number>160</number></property>
     <property name="OperatorsList">
      <stringlist notr="true">
       <string>~</string><string>like</string><string> ~ </string>
       <string/><string/><string>1</string>
      </stringlist>
     </property>
     <property name="KeepMeaning"><bool>true</bool></property>
     <property name="TailText"><string notr="true">LIMIT 5</string></property>
     <property name="WorkAreaFlat"><bool>true</bool></property>
     <property name="WorkAreaFont"><font><pointsize>17</pointsize></font></property>
     <property name="WorkAreaTableColor">
      <color><red>1</red><green>2</green><blue>3</blue></color>
     </property>
     <property name="ConditionSelectRow"><bool>false</bool></property>
    </widget>
   </item>
  </layout>
 </widget>
 <customwidgets>
  <customwidget>
   <class>TorvQueryBuilder</class>
   <extends>QFrame</extends>
   <header>orvquerybuilder/ORVQDWindow.h</header>
  </customwidget>
 </customwidgets>
</ui>
"""


class Forms(TestCase):
    def check(self, builder):
        self.assertIsInstance(builder, TorvQueryBuilder)
        self.assertEqual(
            (builder.Align, builder.TabsHeight, builder.KeepMeaning, builder.TailText),
            (TorvQueryBuilder.alTop, 160, True, "LIMIT 5"),
        )
        self.assertEqual(builder.OperatorsList, ["~", "like", " ~ ", "", "", "1"])
        self.assertEqual(
            (builder.WorkAreaOptions.Flat, builder.WorkAreaFont.pointSize(),
             builder.WorkAreaTableColor.name(), builder.ConditionOptions.SelectRow),
            (True, 17, "#010203", False),
        )

    def test_form_is_loaded(self):
        form = uic.loadUi(io.StringIO(FORM))
        self.check(form.queryBuilder)

    def test_form_is_compiled(self):
        code = io.StringIO()
        uic.compileUi(io.StringIO(FORM), code)
        namespace = {"__name__": "form"}
        exec(code.getvalue(), namespace)
        widget = QWidget()
        form = namespace["Ui_Form"]()
        form.setupUi(widget)
        self.check(form.queryBuilder)


if __name__ == "__main__":
    unittest.main()
