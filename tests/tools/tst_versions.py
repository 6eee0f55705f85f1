# SPDX-License-Identifier: MIT
"""The version is that of CMakeLists.txt; texts that name it for people name the same one."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).parents[2]


def read(name):
    return (ROOT / name).read_text(encoding="utf-8")


class Versions(unittest.TestCase):
    def setUp(self):
        self.version = re.search(r"project\(OrvQueryBuilder\s+VERSION (\S+)", read("CMakeLists.txt"))[1]
        self.minor_version = self.version.rpartition(".")[0]
        self.major = self.version.partition(".")[0]

    def test_changelog_tells_of_this_version(self):
        releases = re.findall(r"^## \[(.+?)\](.*)$", read("CHANGELOG.md"), re.MULTILINE)
        self.assertIn(self.version, [name for name, _ in releases])
        for name, date in releases:
            if name != "Unreleased":
                self.assertRegex(date, r"^ - \d{4}-\d\d-\d\d$")

    def test_packages_are_named_by_this_version(self):
        text = read("docs/packages.md")
        names = re.findall(r"liborvquerybuilder(?:\.so\.)?(\d[\d.]*\d)", text)
        self.assertGreater(len(names), 2)
        self.assertEqual(set(names), {self.minor_version})
        self.assertEqual(re.findall(r"\(= ([\d.]+)\)", text), [self.version])

    def test_hosts_ask_for_this_major_version(self):
        lists = sorted((ROOT / "examples").glob("*/CMakeLists.txt"))
        texts = [path.read_text(encoding="utf-8") for path in lists]
        texts += [path.read_text(encoding="utf-8") for path in (ROOT / "docs").glob("*.md")]
        asked = re.findall(r"find_package\(OrvQueryBuilder (\d+)", "\n".join(texts))
        self.assertGreater(len(asked), len(lists))
        self.assertEqual(set(asked), {self.major})


if __name__ == "__main__":
    unittest.main()
