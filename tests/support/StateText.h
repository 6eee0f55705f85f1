// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

class TorvQueryBuilder;

namespace orvtest {

/// How a state is put into lines.
enum class StateForm {
    Exact,   ///< as it is
    Normal,  ///< without what its own text does not keep; see stateLines
};

/// What its own text is to bring back.
enum class StateView {
    Present,   ///< the state as it is
    Reloaded,  ///< as it comes back when the control's own text is loaded
};

/// A state of the control as sorted or ordered lines, one for each thing that its text holds.
///
/// Its own text brings a state back but for this, which the normal form leaves out:
///   1. The order of the boxes and of the joins, which side of a join its first table is on, bounds
///      and stacking. With the meaning kept the FROM text is compared as a text besides.
///   2. Case outside quotes: a statement is read in upper case. Parameters keep theirs.
///   3. A group of one row is that row: brackets around one condition are not kept.
///   4. "None" and "Not all" around a single row, or around a group, are one negation each, and two
///      of them are none: NOT (NOT (x)) is read as x.
///   5. Blanks beside brackets and commas inside operands: calls and lists are put together anew.
///   6. On a page with functions of its own, a call of one of them is the function's cell and its
///      argument, whether it was typed or chosen: both have the same text.
///   7. Conditions on groups are there only with a GROUP BY list, which they stand behind.
///   8. Sorting by one of several columns of one field is sorting by the first of them: the field
///      is what ORDER BY names.
///   9. Blanks in a column of fields with operators between them: such a chain is put together
///   anew.
///
/// Without the meaning kept this is added for `StateView::Reloaded`:
///  10. A link is seen from the table that is written first, and its operator is not turned round
///      with its sides: "A.X < B.Y" comes back as "B.Y < A.X" when B is written first.
[[nodiscard]] QStringList stateLines(TorvQueryBuilder& builder, StateForm form, StateView view);

/// Whether nothing in the state is redundant, so that its own text comes back byte for byte when
/// the meaning is kept: the allowances 2 to 9 change nothing in it, and its operands have the
/// spacing that a loaded one has.
[[nodiscard]] bool isPlainState(TorvQueryBuilder& builder);

/// What is not promised of a state, and why.
struct Promise {
    QString lost;            ///< why the state does not come back; empty when it does
    QString reported;        ///< why loading must report something; empty when it must not
    bool mayReport = false;  ///< loading may report something or not
};

/// What loading the builder's own text into another builder promises. Nothing is lost but:
///   - with the meaning kept, a join that closes a circle when it or the join of the line that its
///     conditions go to is an outer one (the text shows the latter only);
///   - without, a circle; a box that is written behind one whose alias is its table's name,
///     which is then taken for that box; an output name that SQL does not take for one; the name of
///     a computed column that is its field's own, which is not written.
/// Each of those that the text shows must be reported. Without the meaning kept, loading also
/// reports an operator that would be turned round by writing the loaded state, and outer joins that
/// give other rows in another order; it may report outer joins beside a comma.
[[nodiscard]] Promise promiseOf(TorvQueryBuilder& builder);

/// Without the meaning kept: why the loaded state would be written with another meaning, which its
/// load has to report; empty when it would not.
[[nodiscard]] QString changedByWriting(TorvQueryBuilder& loaded);

/// The lines that only one of two states has, marked with "-" and "+".
[[nodiscard]] QString difference(const QStringList& expected, const QStringList& actual);

}  // namespace orvtest
