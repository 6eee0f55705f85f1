# SPDX-License-Identifier: MIT
"""Tests of tools/check_includes: small trees with one include each, and what is said of them."""

import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools",
                      "check_includes")


class CheckIncludes(unittest.TestCase):
    def run_on(self, files):
        """Writes the files {path: text} into an empty tree; gives status and printed lines."""
        with tempfile.TemporaryDirectory() as root:
            for path, text in files.items():
                full = os.path.join(root, path)
                os.makedirs(os.path.dirname(full), exist_ok=True)
                with open(full, "w", encoding="utf-8") as out:
                    out.write(text)
            done = subprocess.run([sys.executable, SCRIPT, root], stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, text=True, check=False)
            return done.returncode, done.stdout.splitlines()

    def assert_allowed(self, path, include, **others):
        status, lines = self.run_on({path: f"#include {include}\n", **others.get("files", {})})
        self.assertEqual((status, lines), (0, []))

    def assert_refused(self, path, include, rule, files=None):
        text = f"// one line\n#include {include}\n"
        status, lines = self.run_on({path: text, **(files or {})})
        self.assertEqual(status, 1, lines)
        self.assertTrue(lines[0].startswith(f"{path}:2: {include[1:-1]}: "), lines)
        self.assertIn(rule, lines[0])
        self.assertEqual(len(lines), 2, lines)

    def test_own_folder_and_lower_floors(self):
        self.assert_allowed("src/core/A.h", '"core/B.h"')
        self.assert_allowed("src/data/A.cpp", '"core/B.h"')
        self.assert_allowed("src/diagram/A.cpp", '"contract/B.h"')
        self.assert_allowed("src/workarea/A.cpp", '"diagram/B.h"')
        self.assert_allowed("src/querybuilder/A.cpp", '"selection/B.h"')
        self.assert_allowed("app/main.cpp", '"Catalog.h"', files={"app/Catalog.h": ""})
        self.assert_allowed("app/main.cpp", '"querybuilder/A.h"',
                            files={"src/querybuilder/A.h": ""})

    def test_never_up(self):
        self.assert_refused("src/core/A.h", '"data/B.h"', "must not look up to data/ (floor 2)")
        self.assert_refused("src/diagram/A.h", '"workarea/B.h"', "must not look up")
        self.assert_refused("src/querybuilder/A.cpp", '"app/B.h"', "must not look up")

    def test_never_sideways(self):
        self.assert_refused("src/data/A.h", '"parser/B.h"', "same floor (2)")
        self.assert_refused("src/selection/A.h", '"workarea/B.h"', "same floor (5)")
        self.assert_refused("app/main.cpp", '"designer/B.h"', "same floor (7)",
                            files={"designer/B.h": ""})

    def test_folders_of_the_program(self):
        self.assert_allowed("app/database/A.cpp", '"names/B.h"', files={"app/names/B.h": ""})
        self.assert_allowed("app/database/A.cpp", '"database/B.h"', files={"app/database/B.h": ""})
        self.assert_allowed("app/main.cpp", '"window/B.h"', files={"app/window/B.h": ""})
        self.assert_refused("app/database/A.cpp", '"window/B.h"',
                            "database/ (floor 4) must not look up to window/ (floor 7)",
                            files={"app/window/B.h": ""})
        self.assert_refused("app/names/A.h", '"words/B.h"',
                            "names/ and words/ stand on the same floor (2)",
                            files={"app/words/B.h": ""})
        self.assert_refused("app/cellar/A.h", '"core/B.h"', "app/cellar/ is no folder")

    def test_pages_do_not_know_the_diagram(self):
        self.assert_refused("src/criteria/A.h", '"diagram/B.h"', "must not know diagram/")
        self.assert_refused("src/selection/A.cpp", '"diagram/B.h"', "must not know diagram/")

    def test_core_and_parser_use_qtcore_alone(self):
        for folder in ("core", "parser"):
            path = f"src/{folder}/A.cpp"
            self.assert_allowed(path, "<QString>")
            self.assert_allowed(path, "<QtCore/QHash>")
            self.assert_allowed(path, "<algorithm>")
            for header in ("<QWidget>", "<QColor>", "<QtGui/QColor>", "<QtWidgets>", "<qwidget.h>"):
                self.assert_refused(path, header, "QtCore alone")
        self.assert_allowed("src/toolkit/A.cpp", "<QMessageBox>")

    def test_form_of_includes(self):
        self.assert_refused("src/core/A.cpp", '"B.h"', "from src/ on", files={"src/core/B.h": ""})
        self.assert_refused("src/data/A.cpp", '"../core/B.h"', "from src/ on")
        self.assert_refused("src/data/A.cpp", "<core/B.h>", "in quotes")
        self.assert_refused("src/data/A.cpp", '"nowhere/B.h"', "knows")
        self.assert_refused("src/data/A.cpp", "<orvquerybuilder/B.h>", "for hosts")

    def test_forwarding_headers_stand_for_their_target(self):
        forwarding = {"include/orvquerybuilder/A.h": '#include "querybuilder/A.h"\n',
                      "src/querybuilder/A.h": ""}
        self.assert_allowed("app/main.cpp", "<orvquerybuilder/A.h>", files=forwarding)
        self.assert_refused("app/main.cpp", "<orvquerybuilder/B.h>", "there is no", forwarding)

    def test_forwarding_headers_lead_somewhere(self):
        self.assert_refused("include/orvquerybuilder/A.h", '"core/A.h"', "there is no src/core/A.h")

    def test_generated_files_and_comments_are_passed_over(self):
        self.assert_allowed("src/core/A.cpp", '"moc_A.cpp"')
        self.assert_allowed("src/core/A.cpp", '"A.moc"')
        status, lines = self.run_on({"src/core/A.cpp": '/* so not:\n#include "data/B.h"\n*/\n'})
        self.assertEqual((status, lines), (0, []))

    def test_unknown_folder(self):
        status, lines = self.run_on({"src/attic/A.h": ""})
        self.assertEqual(status, 1)
        self.assertIn("src/attic: ", lines[0])

    def test_findings_are_sorted_and_counted(self):
        status, lines = self.run_on({
            "src/core/B.h": '#include "data/C.h"\n#include "app/D.h"\n',
            "src/core/A.h": "#  include <QWidget>\n",
        })
        self.assertEqual(status, 1)
        self.assertEqual([line.split(": ")[0] for line in lines[:3]],
                         ["src/core/A.h:1", "src/core/B.h:1", "src/core/B.h:2"])
        self.assertTrue(lines[3].startswith("3 include(s)"), lines)


if __name__ == "__main__":
    unittest.main()
