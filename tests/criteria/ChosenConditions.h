// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDWherePanel.h"
#include "criteria/RowTools.h"
#include "support/BuilderTools.h"

#include <QClipboard>
#include <QGuiApplication>

// What tests of commands about whole rows of conditions share.
namespace orvtest {

inline QClipboard& clipboard() {
    return *QGuiApplication::clipboard();
}

/// What a row was given, but its operator.
inline QStringList partsOf(const TorvQDWhereRow& row) {
    return QStringList({row.FieldFunc, row.FieldName, row.ArgFunc}) + row.Arguments;
}

/// A builder with a loaded condition; rows are named by their numbers, "" is the root row.
class Criteria : public HostedBuilder {
public:
    explicit Criteria(const QString& condition = {}, bool keepMeaning = true)
        : HostedBuilder(keepMeaning) {
        builder.LoadSQL("select t.a from t" +
                        (condition.isEmpty() ? QString() : " where " + condition));
        changes = 0;
    }

    [[nodiscard]] TorvQDWherePanel& panel() const { return *builder.WherePanel; }
    [[nodiscard]] QString rows() const { return orvtest::rowText(*panel().rootRow()); }
    [[nodiscard]] TorvQDWhereRow* row(const QString& number) const {
        TorvQDWhereRow* found = panel().rootRow();
        for (const QString& index : number.split(u'.', Qt::SkipEmptyParts)) {
            found = found->SubRows->Row(index.toInt() - 1);
        }
        return found;
    }
    /// Makes the row the one that commands and keys are about.
    void choose(const QString& number) const {
        const TorvQDControl* element = row(number)->Controls[1].get();
        panel().setActiveElement(element);
        panel().setCurrentElement(element);
    }
    [[nodiscard]] QString activeNumber() const {
        return panel().ActiveElement()->Row->GetFullIndex();
    }
    [[nodiscard]] QString copied(const QString& number) const {
        choose(number);
        clipboard().setText("nothing");
        panel().CopyCondition();
        return clipboard().text();
    }
    void paste(const QString& text, const QString& number = {}) const {
        choose(number);
        clipboard().setText(text);
        panel().PasteCondition();
    }
};

}  // namespace orvtest
