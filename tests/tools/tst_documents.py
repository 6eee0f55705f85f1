# SPDX-License-Identifier: MIT
"""Checks of the documents: what they link to is there, what they show as a program is one, and the
files and functions that they name are where they say."""

import os
import re
import textwrap
import unittest

ROOT = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))


def read(name):
    with open(os.path.join(ROOT, name), encoding="utf-8") as source:
        return source.read()


def documents():
    """The documents of the project by their paths."""
    found = [name for name in os.listdir(ROOT) if name.endswith(".md")]
    for folder in ("docs", "docs/sql", "examples", "tests/data/sql"):
        found += [f"{folder}/{name}" for name in os.listdir(os.path.join(ROOT, folder))
                  if name.endswith(".md")]
    return sorted(found)


def without_code(text):
    text = re.sub(r"^```.*?^```", "", text, flags=re.M | re.S)
    return re.sub(r"(`+)(?!`).*?(?<!`)\1(?!`)", "", text)


def anchors(text):
    """What the headings of a document are linked by."""
    names = set()
    for heading in re.findall(r"^#+ (.*)$", re.sub(r"^```.*?^```", "", text, flags=re.M | re.S), re.M):
        heading = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).lower()
        names.add(re.sub(r"[^\w\- ]", "", heading).replace(" ", "-"))
    return names


class Documents(unittest.TestCase):
    maxDiff = None

    def test_links_lead_somewhere(self):
        broken = []
        for name in documents():
            for target in re.findall(r"\]\(([^)\s]+)\)", without_code(read(name))):
                if re.match(r"[a-z]+:", target):
                    continue
                path, _, anchor = target.partition("#")
                full = os.path.normpath(os.path.join(os.path.dirname(name), path)) if path else name
                if not os.path.exists(os.path.join(ROOT, full)):
                    broken.append(f"{name}: {target}: there is no {full}")
                elif anchor and anchor not in anchors(read(full)):
                    broken.append(f"{name}: {target}: {full} has no such heading")
        self.assertEqual(broken, [])

    def test_code_for_hosts_is_compiled(self):
        compiled = [textwrap.dedent(piece).strip("\n") for piece in re.findall(
            r"^ *// shown\n(.*?)^ *// end$", read("tests/examples/tst_embedding.cpp"), re.M | re.S)]
        example = read("examples/smallest/main.cpp").split("\n", 2)
        compiled.append(example[2].rstrip("\n"))
        shown = re.findall(r"^```cpp\n(.*?)\n```$", read("docs/embedding.md"), re.M | re.S)
        include, first = re.search(r"^```cpp\n(.*?)\n\n(.*?)\n```$", read("README.md"),
                                   re.M | re.S).groups()
        self.assertEqual(include, "#include <orvquerybuilder/ORVQDWindow.h>")
        shown.append(first)
        self.assertEqual(sorted(shown), sorted(compiled))

    def test_files_and_functions_that_the_house_names(self):
        wrong = []
        text = read("docs/house.md")
        for path in re.findall(r"`((?:src|app|tests|tools|include|docs)/[\w./]*\w/?)`", text):
            if not os.path.exists(os.path.join(ROOT, path)):
                wrong.append(f"there is no {path}")
        # A line of a table that names functions ends with their file.
        for line in text.split("\n"):
            file = re.search(r"`((?:src|app)/[\w./]+\.(?:cpp|h))` \|$", line)
            if not file or not os.path.exists(os.path.join(ROOT, file.group(1))):
                continue
            source = read(file.group(1))
            for function in re.findall(r"`((?:\w+::)*~?\w+)\(\)`", line):
                owner, _, last = function.rpartition("::")
                inside = not owner or re.search(rf"\b(class|struct|namespace) {owner}\b", source)
                spelt = last if inside else function
                if not re.search(r"\b" + re.escape(spelt) + r"\(", source):
                    wrong.append(f"{file.group(1)} has no {function}()")
        self.assertEqual(wrong, [])


if __name__ == "__main__":
    unittest.main()
