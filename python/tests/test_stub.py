# SPDX-License-Identifier: MIT
"""The type hints say what the package has: no more, no less, and nothing else."""

import ast
import enum
import pathlib
import unittest

from PyQt6.QtWidgets import QFrame
from support import TestCase

import orvquerybuilder as orv

STUB = pathlib.Path(orv.__file__).with_name("__init__.pyi")


def names_in(body):
    names = set()
    for node in body:
        if isinstance(node, (ast.ClassDef, ast.FunctionDef)):
            names.add(node.name)
        elif isinstance(node, ast.AnnAssign):
            names.add(node.target.id)
        elif isinstance(node, ast.Assign):
            names.update(target.id for target in node.targets)
    return names


def public(names):
    return {name for name in names if not name.startswith("_")}


class Stub(TestCase):
    @classmethod
    def setUpClass(cls):
        cls.tree = ast.parse(STUB.read_text(encoding="utf-8"))
        cls.classes = {node.name: node for node in cls.tree.body if isinstance(node, ast.ClassDef)}

    def test_package_is_typed(self):
        self.assertTrue(STUB.with_name("py.typed").is_file())

    def test_names_are_those_of_the_package(self):
        self.assertEqual(public(names_in(self.tree.body)), public(orv.__all__))

    def test_members_are_those_of_the_classes(self):
        for name, node in self.classes.items():
            thing = getattr(orv, name)
            if issubclass(thing, enum.Enum):
                members = set(thing.__members__)
            else:
                # What is protected there, SIP adds to each class.
                members = public(vars(thing)) - set(dir(QFrame))
            with self.subTest(name=name):
                self.assertEqual(public(names_in(node.body)), members)

    def test_special_methods_are_there(self):
        for name, node in self.classes.items():
            for member in names_in(node.body) - public(names_in(node.body)):
                if member == "__iter__":
                    continue  # by index
                with self.subTest(name=name, member=member):
                    self.assertIn(member, dir(getattr(orv, name)))

    def test_members_of_enumerations_have_their_ordinals(self):
        for name, node in self.classes.items():
            for part in [node, *(part for part in node.body if isinstance(part, ast.ClassDef))]:
                thing = getattr(orv, name)
                if part is not node:
                    thing = getattr(thing, part.name)
                if not issubclass(thing, enum.Enum):
                    continue
                stated = {
                    entry.targets[0].id: entry.value.value
                    for entry in part.body
                    if isinstance(entry, ast.Assign)
                }
                with self.subTest(name=part.name):
                    self.assertEqual(
                        stated, {member.name: member.value for member in thing}
                    )

    def test_what_cannot_be_assigned_is_a_property_of_its_own(self):
        for name, node in self.classes.items():
            thing = getattr(orv, name)
            for member in node.body:
                if not isinstance(member, ast.AnnAssign) or issubclass(thing, enum.Enum):
                    continue
                value = vars(thing)[member.target.id]
                if isinstance(value, property):
                    with self.subTest(name=name, member=member.target.id):
                        self.assertIsNotNone(value.fset)
            decorated = [
                (member.name, decorator)
                for member in node.body
                if isinstance(member, ast.FunctionDef)
                for decorator in member.decorator_list
            ]
            settable = {
                of
                for of, decorator in decorated
                if isinstance(decorator, ast.Attribute) and decorator.attr == "setter"
            }
            for member, _ in decorated:
                value = vars(thing).get(member)
                if isinstance(value, property):
                    with self.subTest(name=name, member=member):
                        self.assertEqual(value.fset is not None, member in settable)


if __name__ == "__main__":
    unittest.main()
