// SPDX-License-Identifier: MIT
#pragma once

#include "data/SqlText.h"
#include "diagram/ORVQDFloatTable.h"

#include <functional>
#include <optional>

/// A stored procedure on the diagram: below the rows of its result stands one row for each of its
/// parameters. FROM calls it with the values of its input rows. What such a row holds:
///
///     not ticked            no value: the call has a placeholder, ":X"
///     ticked, IsNull        NULL
///     ticked, not IsNull    Value: a whole or broken number, a text, a date or time, a Boolean, or
///                           an orv::SqlText, which is written as it stands; an empty one leaves
///                           the argument out where no other follows
class ORV_EXPORT TorvQDSProc : public TorvQDTable {
    Q_OBJECT

public:
    /// A box for the columns and parameters; none of either adds no rows. An input parameter that
    /// has a value makes a ticked row. Raises orv::Error for a parameter without a name.
    TorvQDSProc(QWidget* AParent, const TDataSet* DataSet, const QString& Name,
                const TParams* Params);

    [[nodiscard]] QColor GetClientColor() const override;
    /// The arguments of the call, as they stand between its brackets.
    [[nodiscard]] QString GetParameters() const;
    /// The call as FROM has it: the name and, in brackets, the arguments. With meaning kept, one
    /// that was loaded without brackets has none while it has no arguments.
    [[nodiscard]] QString call() const;
    /// Whether the call was loaded without brackets.
    [[nodiscard]] bool isWithoutBrackets() const { return m_withoutBrackets; }
    void setWithoutBrackets(bool value) { m_withoutBrackets = value; }

    /// The parameters as the host gave them; the rows hold the present values.
    [[nodiscard]] const TParams& Params() const { return m_params; }
    /// The same parameters with the values that their rows hold now.
    [[nodiscard]] TParams currentParams() const;
    /// The rows of the parameters, in their order.
    [[nodiscard]] std::vector<TorvQDListItem*> parameterRows() const;
    /// Gives an input row its value: an invalid one for none, a null one for NULL. Rows of another
    /// kind stay as they are. Raises orv::Error for a value that no SQL stands for; see hasText.
    void setParameter(TorvQDListItem* item, const QVariant& value);
    /// Replaces each value that is SQL by what `change` makes of it; tells nobody.
    void changeSqlTexts(const std::function<QString(const QString&)>& change);
    /// What setParameter took: the value that the row holds.
    [[nodiscard]] static QVariant valueOf(const TorvQDListItem& item);

    /// The SQL that the input row holds; none for a value of another kind.
    [[nodiscard]] static std::optional<QString> sqlOf(const TorvQDListItem& item);

    /// The name of the row's placeholder, without its colon.
    [[nodiscard]] static QString placeholderName(const TorvQDListItem& item);
    /// The same for a row that is still to be made, by its name and its place in the box.
    [[nodiscard]] static QString placeholderName(const QString& name, int index);
    /// How a value is written for a row of that type; nothing for a value of no kind that can be
    /// written. With meaning kept, inner apostrophes are doubled and dates are those of ISO 8601;
    /// else apostrophes stay as they are, and dates are in the short form of the user's country. A
    /// moment of another time zone is written as the same moment in local time.
    [[nodiscard]] static QString valueText(const QVariant& value, TFieldType type,
                                           bool keepsMeaning);
    /// Whether some SQL can stand for a value of its kind: not for a number that is none or has no
    /// end, nor for a date or time that is not valid or whose year is not of 0 to 9999. A row that
    /// holds such a value is written as one without a value.
    [[nodiscard]] static bool hasText(const QVariant& value);
    /// The value that an argument stands for: a null one for NULL; a text, number or Boolean where
    /// that would be written as the argument is, by the type of the parameter; else an orv::SqlText
    /// with the argument itself.
    [[nodiscard]] static QVariant valueFromText(const QString& text, TFieldType type,
                                                bool keepsMeaning);

private:
    [[nodiscard]] bool keepsMeaning() const;
    void store(TorvQDListItem& item, const QVariant& value);

    TParams m_params;
    std::size_t m_firstParameter = 0;  // row
    bool m_withoutBrackets = false;
    int m_parameterVersion = 0;  // of the rows: others that were assigned have none
};
