// SPDX-License-Identifier: MIT
#include "criteria/ORVQDCopiedRows.h"

#include "core/Text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace orv {

namespace {

constexpr qsizetype mostArguments = 1000;

QString filled(const QString& text) {
    return isBlank(text) ? QString() : text;
}

QString unfilled(const QJsonValue& value) {
    const QString text = value.toString();
    return isBlank(text) ? blankText() : text;
}

// Recursive: the reader of JSON limits how deeply it nests, and what it refuses is pasted as text.
QJsonObject objectOf(const TorvQDWhereRow& row) {
    QJsonObject object;
    if (row.Muted) object.insert(QStringLiteral("muted"), true);
    if (row.isGroup()) {
        QJsonArray rows;
        for (int index = 0; index < row.SubRows->GetCount(); ++index) {
            rows.append(objectOf(*row.SubRows->Row(index)));
        }
        object.insert(QStringLiteral("group"), row.GroupOper);
        object.insert(QStringLiteral("rows"), rows);
        return object;
    }
    QJsonArray arguments;
    for (const QString& argument : row.Arguments) arguments.append(filled(argument));
    object.insert(QStringLiteral("func"), filled(row.FieldFunc));
    object.insert(QStringLiteral("field"), filled(row.FieldName));
    object.insert(QStringLiteral("operator"), row.Operator ? row.Operator->Name : QString());
    object.insert(QStringLiteral("argFunc"), filled(row.ArgFunc));
    object.insert(QStringLiteral("arguments"), arguments);
    return object;
}

class CopiedRowReader {
public:
    explicit CopiedRowReader(const ConditionContext& context) : m_context(context) {}

    [[nodiscard]] bool isKnown(const QJsonObject& object) const {
        const QString group = object[QLatin1String("group")].toString();
        if (group.isEmpty()) {
            const qsizetype count = object[QLatin1String("arguments")].toArray().size();
            return object.contains(QLatin1String("operator")) && count <= mostArguments &&
                   (operatorName(object).isEmpty() ||
                    (m_context.operators && m_context.operators->FindName(operatorName(object))));
        }
        const QJsonArray rows = object[QLatin1String("rows")].toArray();
        return m_context.groupOperators && findGroupOperator(*m_context.groupOperators, group) &&
               std::all_of(rows.begin(), rows.end(),
                           [this](const QJsonValue& row) { return isKnown(row.toObject()); });
    }

    void fill(TorvQDWhereRow& row, const QJsonObject& object) const {
        row.Muted = object[QLatin1String("muted")].toBool();
        const QString group = object[QLatin1String("group")].toString();
        if (!group.isEmpty()) {
            row.SetGroupOper(group);
            for (const auto& below : object[QLatin1String("rows")].toArray()) {
                fill(*row.SubRows->AddRow(), below.toObject());
            }
            return;
        }
        QStringList arguments;
        for (const auto& argument : object[QLatin1String("arguments")].toArray()) {
            arguments += unfilled(argument);
        }
        row.setOperator(operatorOf(object, arguments.isEmpty()));
        row.setArguments(arguments);
        row.FieldFunc = unfilled(object[QLatin1String("func")]);
        row.FieldName = unfilled(object[QLatin1String("field")]);
        row.ArgFunc = unfilled(object[QLatin1String("argFunc")]);
    }

private:
    static QString operatorName(const QJsonObject& object) {
        return object[QLatin1String("operator")].toString();
    }
    // A row that was made while the catalogue was empty has operands, but no operator.
    [[nodiscard]] TOperatorList::Entry operatorOf(const QJsonObject& object, bool isText) const {
        if (operatorName(object).isEmpty()) return isText ? expressionOperator() : nullptr;
        return m_context.operators->FindName(operatorName(object));
    }

    const ConditionContext& m_context;
};

}  // namespace

QString copiedRowsFormat() {
    return QStringLiteral("application/x-orv-conditions+json");
}

bool hasMutedRow(const TorvQDWhereRow& row) {
    std::vector<const TorvQDWhereRow*> open = {&row};
    while (!open.empty()) {
        const TorvQDWhereRow& next = *open.back();
        open.pop_back();
        if (next.Muted) return true;
        for (int index = 0; index < next.SubRows->GetCount(); ++index) {
            open.push_back(next.SubRows->Row(index));
        }
    }
    return false;
}

QByteArray copiedRows(const TorvQDWhereRow& row) {
    return QJsonDocument(objectOf(row)).toJson(QJsonDocument::Compact);
}

bool pasteRows(const QByteArray& bytes, TorvQDWhereRow& row) {
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    const CopiedRowReader reader(row.rows()->context());
    if (!reader.isKnown(object)) return false;
    reader.fill(row, object);
    return true;
}

}  // namespace orv
