// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDSavedValue.h"

#include "data/SqlText.h"
#include "workarea/ORVQDSProc.h"

#include <QDateTime>

namespace orv {

namespace {

std::optional<QVariant> wholeNumber(const QString& text) {
    bool isNumber = false;
    const qlonglong number = text.toLongLong(&isNumber);
    if (isNumber && number == int(number)) return QVariant(int(number));
    if (isNumber) return QVariant(number);
    const qulonglong large = text.toULongLong(&isNumber);
    return isNumber ? std::optional(QVariant(large)) : std::nullopt;
}

std::optional<QVariant> brokenNumber(const QString& text) {
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber ? std::optional(QVariant(number)) : std::nullopt;
}

template <typename Moment>
std::optional<QVariant> moment(const Moment& moment) {
    return moment.isValid() ? std::optional(QVariant(moment)) : std::nullopt;
}

}  // namespace

std::optional<SavedValue> savedValue(const QVariant& value) {
    const auto saved = [](const char* kind, const QString& text) {
        return SavedValue{QString::fromLatin1(kind), text};
    };
    if (value.isNull()) return saved("null", {});
    if (!TorvQDSProc::hasText(value)) return std::nullopt;
    if (value.metaType() == QMetaType::fromType<SqlText>()) {
        return saved("sql", value.value<SqlText>().text);
    }
    switch (value.typeId()) {
    case QMetaType::Bool:
        return saved("boolean", value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
    case QMetaType::Float:
    case QMetaType::Double: return saved("float", TorvQDSProc::valueText(value, ftFloat, true));
    case QMetaType::QDate: return saved("date", value.toDate().toString(Qt::ISODate));
    case QMetaType::QTime: return saved("time", value.toTime().toString(Qt::ISODateWithMs));
    case QMetaType::QDateTime:
        return saved("datetime", value.toDateTime().toString(Qt::ISODateWithMs));
    case QMetaType::QString:
    case QMetaType::QChar:
    case QMetaType::QByteArray: return saved("text", value.toString());
    default: break;
    }
    const QString text = TorvQDSProc::valueText(value, ftUnknown, true);
    return text.isEmpty() ? std::nullopt : std::optional(saved("integer", text));
}

std::optional<QVariant> restoredValue(const SavedValue& saved) {
    const QString& text = saved.text;
    if (saved.kind == u"null") return QVariant::fromValue(nullptr);
    if (saved.kind == u"sql") return QVariant::fromValue(SqlText{text});
    if (saved.kind == u"text") return QVariant(text);
    if (saved.kind == u"integer") return wholeNumber(text);
    if (saved.kind == u"float") return brokenNumber(text);
    if (saved.kind == u"date") return moment(QDate::fromString(text, Qt::ISODate));
    if (saved.kind == u"time") return moment(QTime::fromString(text, Qt::ISODateWithMs));
    if (saved.kind == u"datetime") return moment(QDateTime::fromString(text, Qt::ISODateWithMs));
    const bool isBoolean = saved.kind == u"boolean" && (text == u"true" || text == u"false");
    return isBoolean ? std::optional(QVariant(text == u"true")) : std::nullopt;
}

}  // namespace orv
