# SPDX-License-Identifier: MIT
"""Plain values: field definitions, data sets, parameters, operators."""

import copy
import datetime
import decimal
import fractions
import pickle
import unittest

from PyQt6.QtCore import QByteArray, QDate, QDateTime, QTime
from support import TestCase

import orvquerybuilder as orv
from orvquerybuilder import (
    ProcessName,
    SqlText,
    TDataSet,
    TFieldDef,
    TFieldType,
    TOperatorList,
    TParam,
    TParams,
    TorvQDOperator,
    ftDate,
    ftInteger,
    ftString,
    ptInput,
)


class Fields(TestCase):
    def test_field_has_name_and_type(self):
        field = TFieldDef("CUSTNO", ftInteger)
        self.assertEqual((field.Name, field.DataType), ("CUSTNO", ftInteger))
        self.assertIs(TFieldDef("X").DataType, TFieldType.ftUnknown)
        self.assertEqual(TFieldDef(DataType=ftString, Name="Y").Name, "Y")

    def test_fields_are_equal_by_content(self):
        self.assertEqual(TFieldDef("A", ftString), TFieldDef("A", ftString))
        self.assertNotEqual(TFieldDef("A", ftString), TFieldDef("B", ftString))
        self.assertNotEqual(TFieldDef("A", ftString), TFieldDef("A", ftDate))
        self.assertEqual(len({TFieldDef("A", ftString), TFieldDef("A", ftString)}), 1)

    def test_field_cannot_be_changed(self):
        with self.assertRaises((AttributeError, TypeError)):
            TFieldDef("A", ftString).Name = "B"

    def test_field_is_written_as_a_call(self):
        self.assertEqual(repr(TFieldDef("A'B", ftString)), 'TFieldDef("A\'B", ftString)')

    def test_wrong_types_are_refused(self):
        for arguments in ((1, ftString), (b"A", ftString), ("A", "ftString"), ("A", None), ()):
            with self.subTest(arguments=arguments), self.assertRaises(TypeError):
                TFieldDef(*arguments)

    def test_type_ordinals_are_fixed(self):
        self.assertEqual(
            (orv.ftUnknown, orv.ftInteger, orv.ftMemo, orv.ftDataSet), (0, 3, 16, 29)
        )
        self.assertEqual((orv.ptUnknown, orv.ptInput, orv.ptResult), (0, 1, 4))
        self.assertEqual((orv.araAdd, orv.araRemove), (0, 1))


class DataSets(TestCase):
    def test_takes_fields_and_pairs(self):
        fields = TDataSet([TFieldDef("A", ftString), ("B", ftInteger)]).FieldDefs
        self.assertEqual(fields, (TFieldDef("A", ftString), TFieldDef("B", ftInteger)))

    def test_takes_any_iterable(self):
        self.assertEqual(len(TDataSet((name, ftString) for name in "ABC")), 3)
        self.assertEqual(TDataSet().FieldDefs, ())

    def test_refuses_what_is_no_list_of_fields(self):
        for fields in (1, None, "AB", b"AB", [1], ["A"], [("A",)], [("A", 3.5)], [None],
                       {"A": ftString}, [(1, ftString)]):
            with self.subTest(fields=fields), self.assertRaises(TypeError):
                TDataSet(fields)

    def test_says_which_entry_is_wrong(self):
        with self.assertRaisesRegex(TypeError, "entry 1 "):
            TDataSet([("A", ftString), 7])

    def test_passes_on_what_the_iterable_raises(self):
        def broken():
            yield ("A", ftString)
            raise LookupError("gone")

        with self.assertRaisesRegex(LookupError, "gone"):
            TDataSet(broken())

    def test_holds_many_fields(self):
        fields = [(f"F{number}", ftString) for number in range(100_000)]
        kept = TDataSet(fields).FieldDefs
        self.assertEqual(len(kept), 100_000)
        self.assertEqual(kept[-1].Name, "F99999")

    def test_data_sets_are_equal_by_content(self):
        self.assertEqual(TDataSet([("A", ftString)]), TDataSet([TFieldDef("A", ftString)]))
        self.assertNotEqual(TDataSet([("A", ftString)]), TDataSet())


class Params(TestCase):
    def test_parameter_without_value_has_none(self):
        param = TParam("X", ftInteger, ptInput)
        self.assertEqual((param.HasValue, param.Value), (False, None))

    def test_none_is_the_value_null(self):
        param = TParam("X", ftInteger, ptInput, None)
        self.assertEqual((param.HasValue, param.Value), (True, None))
        self.assertNotEqual(param, TParam("X", ftInteger, ptInput))

    def test_values_come_back(self):
        for value in (5, -(2**40), 1.5, "text", True, SqlText("O.PRICE")):
            with self.subTest(value=value):
                self.assertEqual(TParam("X", Value=value).Value, value)

    def test_dates_of_python_become_dates(self):
        date = TParam("X", ftDate, ptInput, datetime.date(2024, 2, 29)).Value
        self.assertEqual(date.toPyDate(), datetime.date(2024, 2, 29))
        moment = datetime.datetime(2024, 2, 29, 13, 5)
        self.assertEqual(TParam("X", Value=moment).Value.toPyDateTime(), moment)
        self.assertEqual(TParam("X", Value=datetime.time(7, 8)).Value.toPyTime().minute, 8)

    def test_other_values_are_refused(self):
        for value in ([1], {}, object(), 1j, datetime.timedelta(1), fractions.Fraction(1, 3)):
            with self.subTest(value=value), self.assertRaisesRegex(TypeError, "Decimal, a text"):
                TParam("X", Value=value)

    def test_bytes_are_a_text(self):
        for value in (b"", b"it", bytearray(b"it"), QByteArray(b"it"), "für".encode()):
            with self.subTest(value=value):
                self.assertEqual(TParam("X", Value=value).Value, bytes(value))

    def test_bytes_that_are_no_text_are_refused(self):
        for value in (b"\xff", QByteArray(b"a\xc3")):
            with self.subTest(value=value), self.assertRaisesRegex(ValueError, "UTF-8"):
                TParam("X", Value=value)

    def test_decimals_keep_their_digits(self):
        for text, written in (
            ("1.10", "1.10"),
            ("-0.1", "-0.1"),
            ("12345678901234567890.123456789", "12345678901234567890.123456789"),
            ("18446744073709551616", "18446744073709551616"),
            ("1E+3", "1000"),
            ("1E-9", "0.000000001"),
            ("0E-2", "0.00"),
            ("1E+500", "1E+500"),
        ):
            with self.subTest(text=text):
                value = TParam("X", Value=decimal.Decimal(text)).Value
                self.assertEqual(value, SqlText(written))

    def test_decimals_of_another_context_keep_their_digits(self):
        with decimal.localcontext() as context:
            context.prec = 3
            context.capitals = 0
            self.assertEqual(TParam("X", Value=decimal.Decimal("1.23456")).Value, SqlText("1.23456"))

    def test_numbers_that_are_none_are_refused(self):
        infinite = float("inf")
        for value in (infinite, -infinite, float("nan"), decimal.Decimal("NaN"),
                      decimal.Decimal("-Infinity"), decimal.Decimal("sNaN")):
            with self.subTest(value=value), self.assertRaisesRegex(ValueError, "finite"):
                TParam("X", Value=value)

    def test_whole_numbers_have_64_bits(self):
        for value in (2**31, -(2**63), 2**63 - 1, 2**64 - 1):
            with self.subTest(value=value):
                self.assertEqual(TParam("X", Value=value).Value, value)
        for value in (2**64, -(2**63) - 1, 10**100):
            with self.subTest(value=value), self.assertRaisesRegex(OverflowError, "64 bits.*Decimal"):
                TParam("X", Value=value)

    def test_time_zones_are_refused(self):
        zone = datetime.timezone(datetime.timedelta(hours=1))
        for value in (
            datetime.datetime(2024, 2, 29, 13, 5, tzinfo=datetime.timezone.utc),
            datetime.datetime(2024, 2, 29, 13, 5, tzinfo=zone),
            datetime.time(13, 5, tzinfo=zone),
        ):
            with self.subTest(value=value), self.assertRaisesRegex(ValueError, "time zone"):
                TParam("X", Value=value)

    def test_dates_that_are_none_are_refused(self):
        for value in (QDate(), QTime(), QDateTime(), QDate(2024, 2, 30)):
            with self.subTest(value=value), self.assertRaisesRegex(ValueError, "not a valid"):
                TParam("X", Value=value)

    def test_list_of_parameters(self):
        params = TParams([TParam("X"), TParam("Y")])
        self.assertEqual([param.Name for param in params.Items], ["X", "Y"])
        self.assertEqual(params, TParams((TParam("X"), TParam("Y"))))
        self.assertNotEqual(params, TParams())
        with self.assertRaises(TypeError):
            TParams([("X", ftString)])


class Operators(TestCase):
    def test_operator_has_the_texts_around_its_operands(self):
        between = TorvQDOperator("BETWEEN", "is between", " and ", Prefix=" between ", Count=2)
        self.assertEqual(
            (between.Name, between.Caption, between.Relate, between.Postfix, between.Prefix,
             between.Count),
            ("BETWEEN", "is between", " and ", "", " between ", 2),
        )
        self.assertEqual(TorvQDOperator(), TorvQDOperator("=", "=", "", "", "", 1))

    def test_operator_has_no_negative_count(self):
        with self.assertRaises(ValueError):
            TorvQDOperator(Count=-1)

    def test_list_is_one_of_python(self):
        entries = [TorvQDOperator("A"), TorvQDOperator("B")]
        operators = TOperatorList(entries)
        self.assertEqual(list(operators), entries)
        self.assertEqual((len(operators), operators.Count()), (2, 2))
        self.assertEqual(operators[-1], entries[1])
        with self.assertRaises(IndexError):
            operators[2]
        with self.assertRaises(TypeError):
            operators["A"]

    def test_list_changes_by_its_methods(self):
        operators = TOperatorList()
        self.assertEqual(operators.Add(TorvQDOperator("A")), 0)
        self.assertEqual(operators.Add(TorvQDOperator("B")), 1)
        operators.Delete(0)
        operators.Delete(7)
        self.assertEqual(operators.Items(0).Name, "B")
        self.assertIsNone(operators.Items(1))
        self.assertIsNone(operators.FindName("b"))
        self.assertEqual(operators.FindName("B").Caption, "=")
        operators.Clear()
        self.assertEqual(len(operators), 0)

    def test_list_as_texts(self):
        operators = TOperatorList([TorvQDOperator("N", "C", "R", "PO", "PR", 3)])
        self.assertEqual(operators.toStrings(), ["N", "C", "R", "PR", "PO", "3"])
        other = TOperatorList()
        other.fromStrings(operators.toStrings())
        self.assertEqual(list(other), list(operators))
        with self.assertRaises(orv.OrvError):
            other.fromStrings(["N", "C", "R", "PO", "PR", "many"])
        with self.assertRaises(TypeError):
            other.fromStrings([1])
        with self.assertRaises(TypeError):
            TOperatorList(["="])


class Copies(TestCase):
    def test_values_are_copied_and_pickled(self):
        for value in (
            TFieldDef("A", ftDate),
            TDataSet([("A", ftString), ("B", ftInteger)]),
            TParam("X", ftInteger, ptInput),
            TParam("X", ftInteger, ptInput, None),
            TParam("X", ftInteger, ptInput, SqlText("T.A")),
            TParam("X", ftString, ptInput, b"text"),
            TParams([TParam("X"), TParam("Y", Value=5)]),
            TorvQDOperator("N", "C", "R", "PO", "PR", 3),
            SqlText("T.A"),
            orv.klLOuterJoin,
        ):
            with self.subTest(value=value):
                self.assertEqual(copy.copy(value), value)
                self.assertEqual(copy.deepcopy(value), value)
                self.assertEqual(pickle.loads(pickle.dumps(value)), value)


class Names(TestCase):
    def test_names_are_quoted_when_they_need_it(self):
        self.assertEqual(ProcessName("ORDERS"), "ORDERS")
        self.assertEqual(ProcessName("my table"), '"my table"')
        with self.assertRaises(ValueError):
            ProcessName("")
        with self.assertRaises(TypeError):
            ProcessName(5)

    def test_reserved_words_are_quoted(self):
        self.assertEqual(orv.reservedWords(), [])
        self.addCleanup(orv.setReservedWords, [])
        orv.setReservedWords(["ORDER"])
        self.assertEqual((ProcessName("ORDER"), orv.reservedWords()), ('"ORDER"', ["ORDER"]))


if __name__ == "__main__":
    unittest.main()
