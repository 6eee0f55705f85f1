// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/ORVQDOperators.h"
#include "core/Export.h"
#include "criteria/ORVQDCollection.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class TorvQDWherePanel;
class TorvQDWhereRow;

namespace orv {

class ConditionLayout;

/// How wide texts are in the font of the rows, in pixels.
class ORV_EXPORT TextWidths {
public:
    virtual ~TextWidths();
    /// Clickable texts are emphasised: bold and underlined.
    [[nodiscard]] virtual int width(const QString& text, bool isEmphasised) const = 0;
};

/// What rows need of their panel, and what stands in for it in tests.
struct ConditionContext {
    const TOperatorList* operators = nullptr;         ///< borrowed
    const TGroupOperators* groupOperators = nullptr;  ///< borrowed
    const QStringList* functions = nullptr;  ///< of the elements 1 and 4; none: these have no width
    const TextWidths* widths = nullptr;      ///< borrowed; none: texts have no width
    int rowHeight = 20;                      ///< pixels
    /// Told of every change: of one row's content, or, with none, of rows that came, went or moved.
    std::function<void(TorvQDWhereRow* row)> changed = {};
};

/// Pixels by which a group's rows stand further right than the group.
inline constexpr int levelIndentPx = 15;

/// The operator of a condition that is text as a whole: no name, no operands, in no list.
[[nodiscard]] ORV_EXPORT TOperatorList::Entry expressionOperator();

/// The group operator of that caption, ignoring case; none when the catalogue has none.
[[nodiscard]] ORV_EXPORT const TorvQDGroupFunc* findGroupOperator(const TGroupOperators& list,
                                                                  const QString& name);

/// How many operands an operator has, within bounds that a row can show.
[[nodiscard]] ORV_EXPORT int operandCount(const TOperatorList::Entry& entry);

}  // namespace orv

/// Kinds of elements with names; the arguments follow.
enum TElementKind : int {
    ekButton = 0,
    ekGroupOper = 1,  ///< of a group
    ekFieldFunc = 1,  ///< of a condition
    ekFieldName = 2,
    ekOperator = 3,
    ekArgFunc = 4,
    ekArgument = 5  ///< the first one
};

/// One clickable text element of a row: 0 the row's button, 1 the function or group operator, 2 the
/// field, 3 the operator, 4 the argument's function, from 5 on the arguments. Owned by its row.
class ORV_EXPORT TorvQDControl {
public:
    /// An element without a text; its row makes it and owns it.
    TorvQDControl(TorvQDWhereRow* row, int kind) : Row(row), Kind(kind) {}

    TorvQDWhereRow* Row;  ///< borrowed
    int Kind;             ///< a TElementKind; from ekArgument on, the number of the argument
    int Left = 0;         ///< pixels, content coordinates
    int Width = 0;        ///< pixels

    /// The text as it is shown.
    [[nodiscard]] const QString& GetText() const { return m_text; }
    /// The text as it is shown: nine blanks for none, at most 30 characters and "...", on one line.
    void SetText(const QString& text);

private:
    QString m_text;
};

/// The rows of one group, or the root of a panel.
class ORV_EXPORT TorvQDWhereRows : public TCollectionEx {
public:
    /// The rows of a group, or of the root with none. Context and row are borrowed.
    TorvQDWhereRows(const orv::ConditionContext* context, TorvQDWhereRow* ownerRow);

    /// The row at an index; none out of range.
    [[nodiscard]] TorvQDWhereRow* Row(int Index) const;
    /// Appends a condition that is not filled in.
    TorvQDWhereRow* AddRow();
    /// The row whose sub-rows these are; none for a panel's root.
    [[nodiscard]] TorvQDWhereRow* ownerRow() const { return m_ownerRow; }
    /// What the rows need of their panel.
    [[nodiscard]] const orv::ConditionContext& context() const { return *m_context; }

    void Update(TCollectionItemEx* Item) override;
    void EndUpdate() override;

private:
    friend class TorvQDWhereRow;  // exchanges whole collections

    const orv::ConditionContext* m_context;
    TorvQDWhereRow* m_ownerRow;
};

/// One row of a condition: a comparison, or a group of sub-rows. Texts that are not filled hold
/// nine blanks. A row is a group exactly when GroupOper is not empty.
class ORV_EXPORT TorvQDWhereRow : public TCollectionItemEx {
public:
    /// A condition that is not filled in, with the first operator of the catalogue.
    explicit TorvQDWhereRow(TorvQDWhereRows* collection);
    ~TorvQDWhereRow() override;

    std::unique_ptr<TorvQDWhereRows>
        SubRows;                    ///< the rows of a group; there, but empty, in a condition
    QString GroupOper;              ///< caption of the group operator; empty for a condition
    QString FieldFunc;              ///< function around the field
    QString FieldName;              ///< the left side; the whole text of an expression
    QString ArgFunc;                ///< function around the argument
    TOperatorList::Entry Operator;  ///< none when the catalogue is empty
    QStringList Arguments;  ///< as many as the operator has operands, or had that it came from
    bool Valid = true;      ///< the last type check succeeded
    QString AuxText;  ///< a text for the program's own use; copied, but neither shown nor written
    bool Expanded = false;  ///< whether the rows of a group are shown; SetExpanded
    bool Muted = false;     ///< kept, but not written
    std::vector<std::unique_ptr<TorvQDControl>>
        Controls;  ///< the elements: button, group operator or function, and so on; see
                   ///< TElementKind

    /// Whether it is a group, be it without rows.
    [[nodiscard]] bool isGroup() const { return !GroupOper.isEmpty(); }
    /// Whether the row is one text with no operator of the catalogue.
    [[nodiscard]] bool isExpression() const { return Operator == orv::expressionOperator(); }

    /// Brings arguments and elements in line with the operator; the first arguments stay.
    void SetArgumentStrings();
    /// Takes the operator, and brings arguments and elements in line with it.
    void setOperator(const TOperatorList::Entry& entry);
    /// Takes arguments as they are: a row whose operator was replaced keeps those that it had.
    void setArguments(const QStringList& texts);
    /// Makes a group of the row, with its rows shown, or changes its operator; an empty name makes
    /// a condition of it.
    void SetGroupOper(const QString& Name);
    /// Shows or hides the rows of a group.
    void SetExpanded(bool Value);
    /// Mutes the row with all below it, or has it written again.
    void SetMuted(bool Value);
    /// Whether the condition of its group has the row: it is not muted, nor, as a group, all that
    /// is in it. A group without rows is written, as a place that is not filled.
    [[nodiscard]] bool isWritten() const;
    /// Whether the row lies in a muted group, or is muted itself.
    [[nodiscard]] bool isMutedWithin() const;
    /// Brings the elements' texts up to date.
    void refreshTexts();

    /// Brings the elements up to date and places them side by side from `left` on, in pixels of the
    /// content. Those that are not shown have no width: all but button and group operator of a
    /// group, functions where the panel has none.
    void SetDimentionControls(int left);
    /// Where the first element begins, in pixels of the content.
    [[nodiscard]] int GetLeftBound() const { return Controls.front()->Left; }
    /// In pixels of the content, as of the last layout of the panel; -1 while the row is not shown.
    [[nodiscard]] int GetTopBound() const;
    /// Moves the elements from a position on to the left, by so many pixels.
    void OffsetControls(int fromIndex, int dx);
    /// Where the last element ends, in pixels of the content.
    [[nodiscard]] int rightBound() const;

    /// Where an element's text is kept, for those that are typed: the field and the arguments; none
    /// for others.
    [[nodiscard]] QString* textOf(int kind);

    /// Number of the row as its button shows it: "1.2."; a blank for the root row.
    [[nodiscard]] QString GetFullIndex() const;
    /// The rows shown above and below; none at the ends.
    [[nodiscard]] TorvQDWhereRow* GetPreviousRow() const;
    [[nodiscard]] TorvQDWhereRow* GetNextRow() const;
    /// The group that the row lies in; none for the root row.
    [[nodiscard]] TorvQDWhereRow* parentRow() const;
    /// The collection that owns the row.
    [[nodiscard]] TorvQDWhereRows* rows() const;
    /// 1 for the root row, one more for each group around a row.
    [[nodiscard]] int depth() const;

    /// Takes the sub-rows of another row, which gets those of this one.
    void takeSubRows(TorvQDWhereRow& from);

    /// Copies all but the sub-rows.
    void Assign(const TCollectionItemEx& Source) override;

    /// The SQL text of the row and what is below it; over several lines, indented by the depth, or
    /// on one line.
    [[nodiscard]] QString GetSQLCondition(bool MultiLine) const;
    /// The same on one line, but no more of it than about `limit` characters.
    [[nodiscard]] QString shortCondition(int limit) const;

    /// The same over several lines, indented as if the row were the root row.
    [[nodiscard]] QString conditionAsRoot() const;

    /// Dies with the row; for references that outlive it.
    [[nodiscard]] std::weak_ptr<TorvQDWhereRow*> handle() const { return m_handle; }

private:
    friend class orv::ConditionLayout;
    friend class TorvQDWhereRows;
    struct Writer;

    void contentChanged();
    void refreshTexts(const QString& number);
    void placeControls(int left, const QString& number);

    void append(Writer& writer, int depth) const;
    void appendGroup(Writer& writer, int depth) const;
    void appendSimple(Writer& writer, int depth) const;

    std::shared_ptr<TorvQDWhereRow*> m_handle;
    int m_shownAt = -1;       // position among the rows that are shown
    int m_placedRight = 0;    // right bound when the elements were placed last
    bool m_isPlaced = false;  // the elements are up to date
};

namespace orv {

/// Refers to an element of a row without keeping it: rows come and go while a menu or an editor is
/// open. A plain value.
class ORV_EXPORT ElementRef {
public:
    /// Refers to nothing, to an element, or to that kind of element of a row.
    ElementRef() = default;
    explicit ElementRef(const TorvQDControl* element);
    ElementRef(const TorvQDWhereRow& row, int kind) : m_row(row.handle()), m_kind(kind) {}

    /// The row; none when it is gone.
    [[nodiscard]] TorvQDWhereRow* row() const;
    /// The element; none when its row is gone or has no such element any more.
    [[nodiscard]] TorvQDControl* get() const;
    /// Which element of the row it is: a TElementKind.
    [[nodiscard]] int kind() const { return m_kind; }

    /// Equal when they lead to the same element now, or both to none.
    friend bool operator==(const ElementRef& one, const ElementRef& other) {
        return one.get() == other.get();
    }

private:
    std::weak_ptr<TorvQDWhereRow*> m_row;
    int m_kind = 0;
};

}  // namespace orv
