// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "parser/ORVQDKeywords.h"
#include "parser/ORVQDNodeKinds.h"

#include <QString>

#include <memory>
#include <vector>

/// Parser of one SELECT statement and node of its tree in one class. The root node is made from the
/// statement; it holds the items of the select list first, then one otCompound child per clause.
/// A node owns its children. Parsing takes time linear in the text, and neither parsing nor
/// destroying recurses over nesting.
///
/// Every node knows its span: positions in the text that the root was made from, end exclusive.
/// A bracket, function or procedure spans its whole group with the brackets; a clause reaches to
/// where its reading ended, blanks included.
class ORV_EXPORT TorvQDParser {
public:
    /// A node that is owned.
    using Node = std::unique_ptr<TorvQDParser>;

    /// Parses a whole statement. Raises orv::Error "Given statement is not SELECT clause" when its
    /// first word is another.
    explicit TorvQDParser(const QString& Statement);

    /// An empty node: for trees that are built by hand.
    TorvQDParser(TTypeOfTie Kind, TLocationKinds Location, const QString& Text);

    TorvQDParser(const TorvQDParser&) = delete;
    TorvQDParser& operator=(const TorvQDParser&) = delete;
    ~TorvQDParser();

    /// Makes an empty node whose text is `Name`. For inUnknown `Text` must be a SELECT statement
    /// (else raises as above), whose first word is taken; for inFunction the brackets around `Text`
    /// are taken off.
    static Node CreateNode(QString& Text, TLocationKinds Location, const QString& Name);

    /// What the node is: a name, an operator, a function ...
    [[nodiscard]] TTypeOfTie Kind() const { return m_kind; }
    /// In which clause it stands.
    [[nodiscard]] TLocationKinds Location() const { return m_location; }
    /// Its word, or what it is called.
    [[nodiscard]] const QString& Text() const { return m_text; }

    /// How many children there are.
    [[nodiscard]] int Count() const { return int(m_children.size()); }
    /// The child at an index from 0 on, which must be there.
    [[nodiscard]] const TorvQDParser* Child(int Index) const {
        return m_children[std::size_t(Index)].get();
    }
    /// The children in the order of the text.
    [[nodiscard]] const std::vector<Node>& Children() const { return m_children; }
    /// Takes the node in as the last child; gives it back, borrowed.
    TorvQDParser* Append(Node Child);
    /// The first clause of that location below this node; none when there is none.
    [[nodiscard]] const TorvQDParser* Clause(TLocationKinds Location) const;

    /// Of the root: the text that it was made from, line breaks as blanks; spans count in it.
    [[nodiscard]] const QString& Source() const { return m_source; }

    /// Where it begins and ends (exclusive) in the text of the root.
    [[nodiscard]] int Start() const { return m_start; }
    [[nodiscard]] int End() const { return m_end; }

    /// Reads `S` into children of this node and leaves in `S` what belongs to an enclosing node.
    void DoParse(QString& S);

    /// The text of the last child when it is an alias of this node; else empty.
    [[nodiscard]] QString GetAliasName() const;

    /// The text of the expression below this node, put together from its nodes: children separated
    /// by ", " (operators, too), a call with its name and brackets when `AddAlias` is true and
    /// without them when it is false. Where the words of the source matter, use its span instead.
    [[nodiscard]] QString FillArguments(bool AddAlias) const;

    /// Cuts the next word off `S`. The separator stays in `S`, unless it is the last character.
    static void GetNextWord(QString& S, QString& Word);

    /// Cuts the bracketed group with which `S` begins off `S`; all of `S` when it has no end.
    static void GetTextInBraces(QString& S, QString& Text);

private:
    friend class TorvQDParseRun;

    std::vector<Node> m_children;
    QString m_text;
    QString m_source;
    int m_start = 0;
    int m_end = 0;
    TTypeOfTie m_kind = otCompound;
    TLocationKinds m_location = inUnknown;
};

/// Position of `Sub` in `S` outside quotes, counted from 1; 0 when it is absent.
[[nodiscard]] ORV_EXPORT int PosEx(const QString& Sub, const QString& S);
