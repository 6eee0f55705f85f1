// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDConditionLayout.h"
#include "support/TestTools.h"

// What tests of laid out condition rows share.
namespace orvtest {

inline constexpr int boldPx = 7;   // of every character
inline constexpr int plainPx = 6;  // of every character
inline const QString blanks(9, u' ');

class FixedWidths : public orv::TextWidths {
public:
    int width(const QString& text, bool isEmphasised) const override {
        return int(text.size()) * (isEmphasised ? bold : plainPx);
    }
    int bold = boldPx;
};

/// A root row, the default catalogues and a layout that is told of every change.
class LaidOut {
public:
    explicit LaidOut(const QStringList* functions = nullptr) {
        orv::fillOperators(operators);
        orv::fillGroupOperators(groups, nullptr);
        context.functions = functions;
        context.changed = [this](TorvQDWhereRow* row) {
            row ? layout.rowChanged(*row) : layout.rowsChanged();
        };
        root = top.AddRow();
        root->SetGroupOper("All");
    }
    ~LaidOut() { context.changed = nullptr; }
    LaidOut(const LaidOut&) = delete;
    LaidOut& operator=(const LaidOut&) = delete;

    TorvQDWhereRow* group(TorvQDWhereRow* in, const QString& name = "Any") {
        TorvQDWhereRow* row = in->SubRows->AddRow();
        row->SetGroupOper(name);
        return row;
    }
    TorvQDWhereRow* condition(TorvQDWhereRow* in, const QString& field = "T.A",
                              const QString& oper = "=", const QStringList& arguments = {"5"}) {
        TorvQDWhereRow* row = in->SubRows->AddRow();
        row->FieldName = field;
        row->setOperator(operators.FindName(oper));
        row->Arguments = arguments;
        return row;
    }
    void rename(TorvQDWhereRow* row, const QString& field) {
        row->FieldName = field;
        row->Changed(false);
    }
    /// How many rows the layout measures now.
    int measured() {
        const int before = layout.measuredRows();
        layout.ensure();
        return layout.measuredRows() - before;
    }

    FixedWidths widths;
    TOperatorList operators;
    TGroupOperators groups;
    orv::ConditionContext context{&operators, &groups, nullptr, &widths};
    TorvQDWhereRows top{&context, nullptr};
    orv::ConditionLayout layout{context, top};
    TorvQDWhereRow* root;
};

/// The elements as "left+width", one after the other.
inline QString places(const TorvQDWhereRow& row) {
    QStringList texts;
    for (const auto& control : row.Controls) {
        texts << QStringLiteral("%1+%2").arg(control->Left).arg(control->Width);
    }
    return texts.join(u' ');
}

// --- where everything must be, by the rules, one row after the other

inline QString shownText(QString text) {
    if (text.isEmpty()) text = blanks;
    if (text.size() > 30) text = text.left(30) + "...";
    return text.replace('\r', ' ').replace('\n', ' ');
}

inline QString expectedPlaces(const TorvQDWhereRow& row, int left, const QString& number,
                              bool functions) {
    QList<std::pair<QString, bool>> texts = {{number, true}};  // and whether they are shown
    if (row.isGroup()) {
        texts << std::pair(row.Expanded ? row.GroupOper : row.GetSQLCondition(false), true);
        while (texts.size() < qsizetype(row.Controls.size())) texts << std::pair(QString(), false);
    } else {
        texts << std::pair(row.FieldFunc, functions) << std::pair(row.FieldName, true)
              << std::pair(row.Operator->Caption, true) << std::pair(row.ArgFunc, functions);
        for (const QString& argument : row.Arguments) texts << std::pair(argument, true);
    }
    QStringList places;
    int x = left;
    for (int kind = 0; kind < texts.size(); ++kind) {
        const auto [text, isShown] = texts[kind];
        int width = isShown ? int(shownText(text).size()) * boldPx : 0;
        if (kind == 0) width += 20;
        places << QStringLiteral("%1+%2").arg(x).arg(width);
        if (!isShown) continue;
        x += width + 5;
        if (kind >= 5) x += int(row.Operator->Relate.size()) * plainPx;
    }
    return places.join(u' ');
}

struct Expected {
    QStringList rows;
    int width = 0;
};

inline void expect(const TorvQDWhereRow& row, int depth, const QString& number, bool functions,
                   Expected& result) {
    const QString places =
        expectedPlaces(row, 15 * depth, number.isEmpty() ? " " : number, functions);
    result.rows << places;
    for (const QString& place : places.split(u' ')) {
        const QStringList parts = place.split(u'+');
        result.width = std::max(result.width, parts[0].toInt() + parts[1].toInt());
    }
    if (!row.Expanded) return;
    for (int index = 0; index < row.SubRows->GetCount(); ++index) {
        expect(*row.SubRows->Row(index), depth + 1, number + QString::number(index + 1) + u'.',
               functions, result);
    }
}

/// What is wrong with the layout; empty when nothing is.
inline QString brokenPlace(LaidOut& on) {
    on.layout.ensure();
    Expected expected;
    expect(*on.root, 1, {}, on.context.functions != nullptr, expected);
    const auto& rows = on.layout.rows();
    if (int(rows.size()) != expected.rows.size()) return "other rows are shown";
    for (int index = 0; index < expected.rows.size(); ++index) {
        const TorvQDWhereRow& row = *rows[std::size_t(index)];
        if (places(row) != expected.rows[index]) {
            return QStringLiteral("row %1: %2, not %3")
                .arg(row.GetFullIndex(), places(row), expected.rows[index]);
        }
        if (row.GetTopBound() != 20 * index) return "top of " + row.GetFullIndex();
        if (on.layout.rowAt(20 * index) != &row || on.layout.rowAt(20 * index + 19) != &row) {
            return "band of " + row.GetFullIndex();
        }
    }
    const QSize size(expected.width, 20 * int(expected.rows.size()));
    return on.layout.extent() == size ? QString() : "the extent";
}

}  // namespace orvtest
