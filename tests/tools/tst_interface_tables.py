# SPDX-License-Identifier: MIT
"""Tests of tools/interface_tables: headers of a few lines, and what is said of them."""

import importlib.machinery
import importlib.util
import os
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools",
                      "interface_tables")


def load_script():
    loader = importlib.machinery.SourceFileLoader("interface_tables", SCRIPT)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module


tables = load_script()


def members(text):
    """The entries of the one class of a header: kind, name and comment of each."""
    found = tables.Reader(text).read()
    return [(entry.kind, entry.name, entry.comment.strip()) for entry in found[0].entries
            if entry.kind != "none"]


class Reading(unittest.TestCase):
    def test_public_members_of_all_kinds(self):
        self.assertEqual(members("""
class ORV_EXPORT A : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name WRITE setName RESET resetName)

public:
    /// A type.
    enum Kind : quint8 { one, two };
    Q_ENUM(Kind)
    /// Makes one.
    explicit A(QObject* parent = nullptr);
    /// The name.
    [[nodiscard]] const QString& Name() const { return m_name; }
    TAddEvent OnAdd;    ///< an event
    std::function<void(int a, int b)> told;    ///< another one
    int width = 0;      ///< pixels
                        ///< of the whole
    std::vector<std::unique_ptr<A>> parts = {};    ///< owned
    QString text = QStringLiteral("(");    ///< words

Q_SIGNALS:
    /// It has changed.
    void changed();

protected:
    void hidden();

private:
    int m_hidden = 0;
};
"""), [("property", "Name", ""), ("type", "A::Kind", "A type."), ("method", "A", "Makes one."),
            ("method", "Name", "The name."), ("event", "OnAdd", "an event"),
            ("event", "told", "another one"), ("member", "width", "pixels\n of the whole"),
            ("member", "parts", "owned"), ("member", "text", "words"), ("signal", "changed", "It has changed.")])

    def test_a_struct_is_public_and_a_class_is_not(self):
        self.assertEqual(members("struct A {\n    int a;\n};\n"), [("member", "a", "")])
        self.assertEqual(members("class A {\n    int a;\n};\n"), [])

    def test_a_comment_is_for_what_follows_without_a_gap(self):
        self.assertEqual(members("""
struct A {
    /// Both.
    void one();
    void two();

    void alone();
    // No comment for hosts.
    void three();
};
"""), [("method", "one", "Both."), ("method", "two", "Both."), ("method", "alone", ""),
            ("method", "three", "")])

    def test_names_of_functions(self):
        found = members("""
struct A {
    template <typename T>
    void each(const std::function<void(T, T)>& body);
    bool operator()(int x) const;
    bool operator<(const A& other) const;
    A(int x) : value(x), other{x} {}
    A(const A&) = delete;
    ~A();
    friend bool operator==(const A&, const A&) = default;
    static std::optional<int> from(const QString& text = QStringLiteral(";{("));
};
""")
        self.assertEqual([name for _, name, _ in found],
                         ["each", "operator()", "operator<", "A", "from"])

    def test_namespaces_and_classes_in_classes(self):
        found = tables.Reader("""
namespace orv {
struct A {
    struct B {
        int inner;
    };
};
void free(int x);
}  // namespace orv
""", "a.h").read()
        self.assertEqual([entry.name for entry in tables.classes_of(found)], ["orv::A", "orv::A::B"])
        self.assertEqual([(e.kind, e.name) for e in found
                          if e.kind not in ("class", "none")],
                         [("function", "free")])

    def test_what_cannot_be_read_is_said(self):
        with self.assertRaises(tables.HeaderError):
            tables.Reader("struct A {\n    void f(;\n").read()


class Writing(unittest.TestCase):
    def lines(self, text):
        found = tables.Reader(text).read()
        return "\n".join(tables.tables_of(found[0].entries))

    def test_functions_of_a_property_stand_beside_it(self):
        text = self.lines("""
class A {
    Q_PROPERTY(bool Flat READ Flat WRITE setFlat)

public:
    /// Drawn flat.
    bool Flat() const;
    void setFlat(bool flat);
};
""")
        self.assertIn("| `Flat` | `bool` | `Flat()`, `setFlat()` | Drawn flat. |", text)
        self.assertNotIn("methods", text)

    def test_one_comment_makes_one_row(self):
        self.assertIn("| `void a()`<br>`void b(int x = 0)` | Both of \\_them\\_. |",
                      self.lines("struct A {\n    /// Both of _them_.\n    void a();\n"
                                 "    void b(int x = 0);\n};\n"))

    def test_what_overrides_is_told_elsewhere(self):
        text = self.lines("struct A {\n    /// Own.\n    void a() override;\n"
                          "    void b() override;\n};\n")
        self.assertIn("`void a()`", text)
        self.assertNotIn("`void b()`", text)

    def test_the_filter_keeps_the_lines(self):
        text = ("struct A {\n    /// Both.\n    void a();\n    void b();\n"
                "    void c() override;\n};\n")
        self.assertEqual(tables.filtered(text).split("\n")[2:5],
                         ["    void a();", "/** Both. */     void b();", "    void c() override;"])

    def test_marks(self):
        with tempfile.TemporaryDirectory() as root:
            def write(name, text):
                os.makedirs(os.path.dirname(os.path.join(root, name)), exist_ok=True)
                with open(os.path.join(root, name), "w", encoding="utf-8") as out:
                    out.write(text)
            write("include/orvquerybuilder/A.h", '#include "core/A.h"\n')
            write("src/core/A.h", '#include "core/B.h"\nstruct A {\n    int a;  ///< a\n};\n')
            write("src/core/B.h", "struct B {\n    int b;  ///< b\n};\n")
            write("src/core/C.h", "struct C {\n    int c;  ///< c\n};\n")
            old = "x\n<!-- interface: {} -->\nold\n<!-- end of interface -->\ny\n"
            one = tables.with_tables(root, old.format("A"))
            self.assertIn("| `int a` | a |", one)
            self.assertNotIn("old", one)
            self.assertTrue(one.startswith("x\n") and one.endswith("\ny\n"), one)
            others = tables.with_tables(root, old.format("all but A"))
            self.assertIn("### B", others)
            self.assertNotIn("### A", others)
            self.assertNotIn("### C", others)
            with self.assertRaises(tables.HeaderError):
                tables.with_tables(root, old.format("D"))


if __name__ == "__main__":
    unittest.main()
