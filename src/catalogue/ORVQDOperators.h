// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "core/TPersistent.h"

#include <QDataStream>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

/// One comparison operator, described by the texts that surround its operands. A plain value.
struct ORV_EXPORT TorvQDOperator {
    QString Name =
        QStringLiteral("=");  ///< the keyword written into SQL; operators are found by it
    QString Caption = QStringLiteral("=");  ///< what the condition row shows
    QString Relate;                         ///< between two operands
    QString Postfix;                        ///< behind the last operand
    QString Prefix;                         ///< in front of the first operand
    int Count = 1;                          ///< operands on the right-hand side

    /// Takes all texts and the count over.
    void Assign(const TorvQDOperator& Source) { *this = Source; }

    /// Equal when all members are.
    friend bool operator==(const TorvQDOperator&, const TorvQDOperator&) = default;
};

/// The operator catalogue: an ordered list that owns its entries. Condition rows share ownership of
/// the entry that they show, so that a replaced catalogue never dangles.
class ORV_EXPORT TOperatorList : public TPersistent {
    Q_OBJECT

public:
    /// An entry is shared by the list and the conditions that show it.
    using Entry = std::shared_ptr<TorvQDOperator>;

    /// An empty list. The parent, if any, owns it.
    explicit TOperatorList(QObject* parent = nullptr);

    /// How many operators there are.
    [[nodiscard]] int Count() const { return int(m_items.size()); }

    /// The entry at `Index`; none when the index is out of range.
    [[nodiscard]] Entry Items(int Index) const;

    /// Appends the entry and returns its index.
    int Add(Entry Operator);
    int Add(const TorvQDOperator& Operator);

    /// Removes the entry; an index out of range is ignored.
    void Delete(int Index);
    /// Removes all entries.
    void Clear();

    /// The first entry of exactly this name (case counts); none when there is none.
    [[nodiscard]] Entry FindName(const QString& Name) const;

    /// Replaces the entries by copies of the source's; assigning the list to itself changes
    /// nothing. Raises orv::Error when the source is no operator list.
    void Assign(const TPersistent* Source) override;
    void AssignTo(TPersistent* Dest) const override;

    /// The same with a plain list of entries: whoever holds it has copies of their own.
    void Assign(const std::vector<Entry>& Source);
    void AssignTo(std::vector<Entry>& Dest) const;

    /// The entries as six texts each: name, caption, relate, prefix, postfix, count.
    [[nodiscard]] QStringList toStrings() const;

    /// Replaces the entries by those of `texts`, in one change. Raises orv::Error at the first text
    /// that is no count, or when the last entry is not whole; entries read before stay in the list.
    /// Where none was whole the list stays as it was.
    void fromStrings(const QStringList& texts);

    /// Called in front of and behind every change, for owners that show entries.
    std::function<void()> aboutToChange;
    std::function<void()> changed;

private:
    template <typename Change>
    void change(const Change& apply);
    void replace(std::vector<Entry> entries);

    friend ORV_EXPORT QDataStream& operator>>(QDataStream& stream, TOperatorList& list);

    std::vector<Entry> m_items;
};

/// Writes and reads the list as a stream: a mark that it begins; for each entry its name, caption,
/// relate, prefix and postfix as texts and its count as a number, each behind a mark of its type; a
/// mark that it ends. Reading replaces the entries in one change. It raises orv::Error when the
/// stream is damaged, whose text says where; entries read before stay in the list.
ORV_EXPORT QDataStream& operator<<(QDataStream& stream, const TOperatorList& list);
ORV_EXPORT QDataStream& operator>>(QDataStream& stream, TOperatorList& list);

/// One group operator: how the conditions of a group are joined. A plain value.
struct ORV_EXPORT TorvQDGroupFunc {
    QObject* Owner = nullptr;                     ///< the query builder; borrowed
    QString Caption = QStringLiteral("All");      ///< the word at the head of the group
    QString Prefix = QStringLiteral(" ");         ///< in front of the group: "not" negates it
    QString Connector = QStringLiteral(" and ");  ///< between two conditions

    /// The query builder; none for one that was made by hand.
    [[nodiscard]] QObject* GetOwner() const { return Owner; }
};

/// The group operators in the order of their menu.
using TGroupOperators = std::vector<TorvQDGroupFunc>;

namespace orv {

/// What an unfilled text of a condition row or of the aggregate column holds: nine blanks. Whoever
/// tests such a text trims it first.
[[nodiscard]] ORV_EXPORT QString blankText();

/// Appends the six plain comparisons.
ORV_EXPORT void fillSmallOperators(TOperatorList& list);

/// Appends the fourteen default operators.
ORV_EXPORT void fillOperators(TOperatorList& list);

/// Appends the four default group operators.
ORV_EXPORT void fillGroupOperators(TGroupOperators& list, QObject* owner);

/// Appends the six default entries of the aggregate catalogue; the first stands for no aggregate.
ORV_EXPORT void fillAggregates(QStringList& list);

}  // namespace orv
