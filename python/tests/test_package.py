# SPDX-License-Identifier: MIT
"""The package as a whole: its version, its names, its texts of help."""

import enum
import importlib.util
import os
import pathlib
import subprocess
import sys
import unittest

from PyQt6.QtWidgets import QFrame
from support import TestCase

import orvquerybuilder as orv


def run_python(text, **environment):
    return subprocess.run(
        [sys.executable, "-c", text],
        capture_output=True,
        text=True,
        timeout=60,
        env={**os.environ, **environment},
    )


class Version(TestCase):
    def test_version_is_that_of_the_project(self):
        lists = pathlib.Path(__file__).parents[2] / "CMakeLists.txt"
        self.assertIn(f"VERSION {orv.__version__}\n", lists.read_text(encoding="utf-8"))

    @unittest.skipUnless("ORV_OTHER_VERSION" in os.environ, "there is no other library")
    def test_library_of_another_version_is_refused(self):
        result = run_python(
            "import orvquerybuilder", LD_PRELOAD=os.environ.get("ORV_OTHER_VERSION", "")
        )
        self.assertEqual(result.returncode, 1)
        self.assertIn(
            f"ImportError: orvquerybuilder was built for version {orv.__version__} of the library, "
            "but the library that was found is version 0.99.5",
            result.stderr,
        )

    def test_patch_versions_are_compatible(self):
        orv._check_version("0.1.0", "0.1.7")
        for built, found in (("0.1.0", "0.2.0"), ("0.1.0", "1.1.0"), ("0.10.0", "0.1.0")):
            with self.subTest(built=built, found=found), self.assertRaises(ImportError):
                orv._check_version(built, found)

    def test_package_without_its_module_says_so(self):
        source = pathlib.Path(__file__).parents[1] / "orvquerybuilder" / "__init__.py"
        spec = importlib.util.spec_from_file_location("lonely", source)
        with self.assertRaisesRegex(ImportError, "cannot load its module or the library"):
            spec.loader.exec_module(importlib.util.module_from_spec(spec))


class Names(TestCase):
    def test_all_names_are_there_and_no_others(self):
        for name in orv.__all__:
            self.assertTrue(hasattr(orv, name), name)
        public = {name for name in dir(orv) if not name.startswith("_")}
        self.assertEqual(public, set(orv.__all__) - {"__version__"})

    def test_members_of_enumerations_are_names(self):
        self.assertIs(orv.ftInteger, orv.TFieldType.ftInteger)
        self.assertIs(orv.klROuterJoin, orv.TKindOfJoin.klROuterJoin)
        self.assertEqual([edit.value for edit in orv.ORVQDWindow__1], [0, 1, 2, 3])
        self.assertEqual(len(orv.TFieldType), 30)

    def test_classes_say_where_they_are(self):
        for name in orv.__all__:
            thing = getattr(orv, name)
            if isinstance(thing, type):
                self.assertEqual((thing.__module__, thing.__qualname__), ("orvquerybuilder", name))

    def test_inner_methods_are_not_shown(self):
        for name in ("TorvQueryBuilder", "TorvQDTable", "TParam", "TorvQDWorkAreaOptions"):
            inner = [
                method
                for method in vars(getattr(orv, name))
                if method.startswith(("_get", "_set"))
            ]
            self.assertEqual(inner, [])

    def test_everything_has_a_text_of_help(self):
        self.assertTrue(orv.__doc__)
        for name in orv.__all__:
            thing = getattr(orv, name)
            if isinstance(thing, (str, enum.Enum)) or (
                isinstance(thing, type) and issubclass(thing, enum.Enum)
            ):
                continue
            self.assertTrue(thing.__doc__, name)
            if not isinstance(thing, type):
                continue
            for member, value in vars(thing).items():
                if member.startswith("_") or isinstance(value, type) or member in dir(QFrame):
                    continue
                if isinstance(value, enum.Enum):
                    continue
                if type(value).__name__ == "variabledescriptor":
                    continue  # SIP has no texts for these; the class says what they are
                text = getattr(thing, member).__doc__
                self.assertTrue(text, f"{name}.{member}")


class Import(TestCase):
    def test_importing_needs_no_application(self):
        result = run_python("import orvquerybuilder as o\nprint(o.TFieldDef('A', o.ftDate))")
        self.assertEqual((result.returncode, result.stdout), (0, "TFieldDef('A', ftDate)\n"))

    def test_importing_twice_is_one_package(self):
        result = run_python("import orvquerybuilder, orvquerybuilder as o\nfrom orvquerybuilder "
                            "import *\nprint(TFieldType is o.TFieldType)")
        self.assertEqual((result.returncode, result.stdout), (0, "True\n"))


if __name__ == "__main__":
    unittest.main()
