// SPDX-License-Identifier: MIT
#include "window/CopiedCells.h"

#include "values/ValueText.h"
#include "window/ResultModel.h"

#include <QItemSelection>

#include <algorithm>
#include <vector>

namespace orvquery {

namespace {

// The selected columns of one row, from left to right, or a part of them.
struct CellSpan {
    int row;
    int left;
    int right;
};

// A selection of everything is one range, but sorting makes many of one.
std::vector<CellSpan> spansOf(const QItemSelection& selection) {
    std::vector<CellSpan> spans;
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            spans.push_back({row, range.left(), range.right()});
        }
    }
    std::sort(spans.begin(), spans.end(),
              [](const CellSpan& left, const CellSpan& right) { return left.row < right.row; });
    return spans;
}

std::vector<int> columnsOf(const std::vector<CellSpan>& spans, int count) {
    std::vector<bool> isThere(std::size_t(count), false);
    for (const CellSpan& span : spans) {
        std::fill(isThere.begin() + span.left, isThere.begin() + span.right + 1, true);
    }
    std::vector<int> columns;
    for (int column = 0; column < count; ++column) {
        if (isThere[std::size_t(column)]) columns.push_back(column);
    }
    return columns;
}

QString quotedIfNeeded(QString text) {
    const bool isPlain = std::none_of(text.cbegin(), text.cend(), [](QChar character) {
        return character == u'\t' || character == u'\n' || character == u'\r';
    });
    if (isPlain) return text;
    text.replace(u'"', QStringLiteral("\"\""));
    return u'"' + text + u'"';
}

}  // namespace

QString copiedCells(const ResultModel& model, const QItemSelection& selection,
                    CopiedHeader header) {
    const std::vector<CellSpan> spans = spansOf(selection);
    const std::vector<int> columns = columnsOf(spans, model.columnCount());
    const bool isSingle = spans.size() == 1 && columns.size() == 1 && header == CopiedHeader::None;
    QStringList lines;
    QStringList names;
    for (const int column : columns) names += quotedIfNeeded(model.columns()[column]);
    if (header == CopiedHeader::Names && !columns.empty()) lines += names.join(u'\t');
    for (auto span = spans.begin(); span != spans.end();) {
        const auto next = std::find_if(span, spans.end(), [row = span->row](const CellSpan& other) {
            return other.row != row;
        });
        const auto isSelected = [&](int column) {
            return std::any_of(span, next, [column](const CellSpan& part) {
                return part.left <= column && column <= part.right;
            });
        };
        QStringList cells;
        for (const int column : columns) {
            const QString text =
                isSelected(column) ? exactText(model.value(span->row, column)) : QString();
            cells += isSingle ? text : quotedIfNeeded(text);
        }
        lines += cells.join(u'\t');
        span = next;
    }
    return lines.join(u'\n');
}

}  // namespace orvquery
