// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"
#include "parser/ORVQDLedger.h"

#include <QIcon>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

class QWidget;
class TorvQDConditionOptions;

/// One field of a box, as the pages see it.
struct PageField {
    QString alias;                ///< effective alias of the box
    QString name;                 ///< name of the row
    TFieldType type = ftUnknown;  ///< of the field

    /// "ALIAS.FIELD"
    [[nodiscard]] QString qualifiedName() const { return alias + u'.' + name; }
};

/// What a page asks of the query builder in which it lies. Pages find it by walking up their
/// parents, so that they work in any arrangement of widgets.
class IPagesHost {
public:
    virtual ~IPagesHost() = default;

    /// Effective aliases of the boxes in the order of their creation.
    [[nodiscard]] virtual QStringList tableAliases() const = 0;

    /// The output fields of a box, in row order. An alias of a statement's text is compared exactly
    /// first, then without quotes and ignoring case when that finds one box only.
    [[nodiscard]] virtual std::vector<PageField> fieldsOf(const QString& alias) const = 0;

    /// The one resolver of field names: "ALIAS.FIELD", or "FIELD" when one box alone has it. Exact
    /// names come first, then names without quotes and ignoring case when they are unique.
    [[nodiscard]] virtual std::optional<PageField> resolveField(const QString& text) const = 0;

    /// Whether the text is a name without a table that several boxes have as a field.
    [[nodiscard]] virtual bool isAmbiguous(const QString& text) const = 0;

    /// What is wrong with a name in the text, for one sentence to the user: its table or field is
    /// not there, or several tables have it. Empty when nothing is.
    [[nodiscard]] virtual QString nameProblem(const QString& text) const = 0;

    /// Tells the query builders of all running programs apart; the data of a dragged field has it.
    [[nodiscard]] virtual quint64 dragIdentity() const = 0;

    /// How conditions look. The object lives as long as the host.
    [[nodiscard]] virtual const TorvQDConditionOptions& conditionOptions() const = 0;

    /// Pictures of a table and of a field, 16 x 16.
    [[nodiscard]] virtual const QList<QIcon>& fieldImages() const = 0;

    /// Whether written statements keep the meaning of loaded ones.
    [[nodiscard]] virtual bool KeepMeaning() const = 0;

    /// What is accounted for while a statement is loaded; none at other times.
    [[nodiscard]] virtual orv::LoadLedger* ledger() = 0;

    /// Everything between these two is one change: the pages refresh once, at the end, and the host
    /// is told once if statementChanged() was called in between.
    virtual void beginChange() = 0;
    virtual void endChange() = 0;
    virtual void statementChanged() = 0;
};

namespace orv {

/// The query builder in which a page's widget lies; none in an arrangement without one.
[[nodiscard]] IPagesHost* pagesHostAbove(const QWidget* page);

}  // namespace orv
