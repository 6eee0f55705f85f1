// SPDX-License-Identifier: MIT
#include "workarea/ORVQDSProc.h"

#include "core/Error.h"
#include "core/Text.h"
#include "data/ProcessName.h"
#include "parser/ORVQDTokens.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

constexpr int mostVisibleRows = 6;

const QString sqlNull = QStringLiteral("NULL");

// With as few digits as read back as the same number; never fewer than these, so that small powers
// of ten are written without an exponent.
QString doubleText(double number) {
    constexpr int fewestDigits = 15;
    constexpr int mostDigits = 17;
    QString text;
    for (int digits = fewestDigits; digits <= mostDigits; ++digits) {
        text = QString::number(number, 'g', digits);
        if (text.toDouble() == number) break;
    }
    return text.toUpper();
}

QString floatText(float number) {
    constexpr int fewestDigits = 6;
    constexpr int mostDigits = 9;
    QString text;
    for (int digits = fewestDigits; digits <= mostDigits; ++digits) {
        text = QString::number(double(number), 'g', digits);
        if (text.toFloat() == number) break;
    }
    return doubleText(text.toDouble());
}

QString timeText(QTime time, bool isIso) {
    if (!isIso) return QLocale().toString(time, QLocale::ShortFormat);
    return time.toString(time.msec() ? Qt::ISODateWithMs : Qt::ISODate);
}

QString dateText(QDate date, bool isIso) {
    return isIso ? date.toString(Qt::ISODate) : QLocale().toString(date, QLocale::ShortFormat);
}

QString dateTimeText(const QDateTime& moment, bool isIso) {
    if (!isIso) return QLocale().toString(moment, QLocale::ShortFormat);
    return moment.toString(moment.time().msec() ? Qt::ISODateWithMs : Qt::ISODate);
}

// The row's type decides what of a moment is written; a time of day has no date to write.
// Databases pass over an offset from UTC, or refuse it: local time needs none.
QString momentText(const QVariant& value, TFieldType type, bool isIso) {
    if (value.typeId() == QMetaType::QTime) return timeText(value.toTime(), isIso);
    const bool isDate = value.typeId() == QMetaType::QDate;
    if (isDate && type == ftDate) return dateText(value.toDate(), isIso);
    const QDateTime moment =
        isDate ? QDateTime(value.toDate(), QTime(0, 0)) : value.toDateTime().toLocalTime();
    if (type == ftDate) return dateText(moment.date(), isIso);
    return type == ftTime ? timeText(moment.time(), isIso) : dateTimeText(moment, isIso);
}

QString apostrophed(const QString& text) {
    return u'\'' + text + u'\'';
}

bool isWritableDate(QDate date) {
    constexpr int lastYear = 9999;
    return date.isValid() && date.year() >= 0 && date.year() <= lastYear;
}

bool isLeftOut(const TorvQDListItem& item) {
    const std::optional<QString> sql = TorvQDSProc::sqlOf(item);
    return sql && orv::isBlank(*sql);
}

bool isWholeType(TFieldType type) {
    return type == ftSmallint || type == ftInteger || type == ftWord || type == ftAutoInc ||
           type == ftLargeint;
}

bool isBrokenType(TFieldType type) {
    return type == ftFloat || type == ftCurrency || type == ftBCD;
}

// A number by the type of the parameter; one of another type takes it by its own form.
QVariant numberFrom(const QString& text, TFieldType type) {
    bool isNumber = false;
    if (!isBrokenType(type)) {
        const qlonglong whole = text.toLongLong(&isNumber);
        if (isNumber && whole == int(whole)) return int(whole);
        if (isNumber) return whole;
    }
    if (isWholeType(type)) return {};
    const double number = text.toDouble(&isNumber);
    return isNumber ? QVariant(number) : QVariant();
}

// The value of one constant, with or without a sign; none for anything else.
QVariant constantFrom(const orv::TokenRun& run, TFieldType type) {
    const int last = run.size() - 1;
    const bool isSigned = last == 1 && (run.is(0, u"-") || run.is(0, u"+"));
    if (last != 0 && !isSigned) return {};
    const QString text = run.textOf(last).toString();
    if (run[last].kind == orv::SqlToken::Number) {
        return numberFrom(isSigned ? run.textOf(0).toString() + text : text, type);
    }
    if (isSigned) return {};
    if (text.size() > 1 && text.startsWith(u'\'') && text.endsWith(u'\'')) {
        return text.mid(1, text.size() - 2).replace(QStringLiteral("''"), QStringLiteral("'"));
    }
    if (type == ftBoolean && (text == u"T" || text == u"F")) return text == u"T";
    return {};
}

}  // namespace

TorvQDSProc::TorvQDSProc(QWidget* AParent, const TDataSet* DataSet, const QString& Name,
                         const TParams* Params)
    : TorvQDTable(AParent, DataSet, Name) {
    if (Params) m_params = *Params;
    m_firstParameter = Items.size();
    for (const TParam& param : m_params.Items) {
        if (param.Name.isEmpty()) throw orv::Error(QStringLiteral("A parameter must have a name"));
        store(*addRow(ProcessName(param.Name), param.DataType, param.ParamType), param.Value);
    }
    m_parameterVersion = rowsVersion();
    VisibleCount = std::min(VisibleCount + int(m_params.Items.size()), mostVisibleRows);
    Height = heightFor(VisibleCount);
}

QColor TorvQDSProc::GetClientColor() const {
    return canvas() ? canvas()->options().GetProcedureColor() : TorvQDTable::GetClientColor();
}

bool TorvQDSProc::keepsMeaning() const {
    const auto* area = qobject_cast<const TorvQDWorkArea*>(Parent);
    return area && area->keepsMeaning();
}

QString TorvQDSProc::GetParameters() const {
    std::vector<const TorvQDListItem*> inputs;
    for (const auto& item : Items) {
        if (item->ParamType == ptInput) inputs.push_back(item.get());
    }
    while (!inputs.empty() && isLeftOut(*inputs.back())) inputs.pop_back();
    QStringList values;
    for (const TorvQDListItem* item : inputs) {
        const QVariant value = valueOf(*item);
        const QString text = value.isValid() && hasText(value) && !isLeftOut(*item)
                                 ? valueText(value, item->FieldType, keepsMeaning())
                                 : u':' + placeholderName(*item);
        if (!text.isEmpty()) values << text;
    }
    return values.join(QStringLiteral(", "));
}

QString TorvQDSProc::call() const {
    const QString arguments = GetParameters();
    if (m_withoutBrackets && arguments.isEmpty() && keepsMeaning()) return TableName;
    return TableName + u'(' + arguments + u')';
}

std::vector<TorvQDListItem*> TorvQDSProc::parameterRows() const {
    std::vector<TorvQDListItem*> rows;
    if (m_parameterVersion != rowsVersion()) return rows;
    for (std::size_t index = m_firstParameter; index < Items.size(); ++index) {
        rows.push_back(Items[index].get());
    }
    return rows;
}

TParams TorvQDSProc::currentParams() const {
    TParams params = m_params;
    const std::vector<TorvQDListItem*> rows = parameterRows();
    for (std::size_t index = 0; index < std::min(rows.size(), params.Items.size()); ++index) {
        if (rows[index]->ParamType != ptOutput) params.Items[index].Value = valueOf(*rows[index]);
    }
    return params;
}

// The tick of an output row says that the field is selected, not that it has a value.
void TorvQDSProc::store(TorvQDListItem& item, const QVariant& value) {
    if (item.ParamType == ptOutput) return;
    item.IsNull = value.isNull();
    item.Value = item.IsNull ? QVariant() : value;
    item.UpdateCheck(value.isValid() ? -1 : 0);
}

void TorvQDSProc::setParameter(TorvQDListItem* item, const QVariant& value) {
    if (!owns(item) || item->ParamType != ptInput) return;
    if (!hasText(value)) {
        throw orv::Error(
            QStringLiteral("The value of parameter %1 cannot be written as SQL").arg(item->Name));
    }
    store(*item, value);
    if (auto* area = qobject_cast<TorvQDWorkArea*>(Parent)) area->parameterChanged(this, item);
}

QVariant TorvQDSProc::valueOf(const TorvQDListItem& item) {
    if (!item.Checked) return {};
    return item.IsNull ? QVariant::fromValue(nullptr) : item.Value;
}

void TorvQDSProc::changeSqlTexts(const std::function<QString(const QString&)>& change) {
    for (TorvQDListItem* row : parameterRows()) {
        if (const std::optional<QString> sql = sqlOf(*row)) {
            row->Value = QVariant::fromValue(orv::SqlText{change(*sql)});
        }
    }
}

std::optional<QString> TorvQDSProc::sqlOf(const TorvQDListItem& item) {
    const QVariant value = item.ParamType == ptInput ? valueOf(item) : QVariant();
    if (value.metaType() != QMetaType::fromType<orv::SqlText>()) return std::nullopt;
    return value.value<orv::SqlText>().text;
}

QString TorvQDSProc::placeholderName(const TorvQDListItem& item) {
    return placeholderName(item.Name, item.GetIndex());
}

QString TorvQDSProc::placeholderName(const QString& name, int index) {
    QString kept;
    for (const QChar character : name.toUpper()) {
        const bool isKept = (character >= u'A' && character <= u'Z') ||
                            (character >= u'0' && character <= u'9') || character == u'$' ||
                            character == u'_';
        if (isKept) kept += character;
        if (character == u' ') kept += u'_';
    }
    return kept.isEmpty() ? QStringLiteral("Par") + QString::number(index) : kept;
}

QString TorvQDSProc::valueText(const QVariant& value, TFieldType type, bool keepsMeaning) {
    if (value.isNull()) return sqlNull;
    if (value.metaType() == QMetaType::fromType<orv::SqlText>())
        return value.value<orv::SqlText>().text;
    switch (value.typeId()) {
    case QMetaType::Bool: return value.toBool() ? QStringLiteral("T") : QStringLiteral("F");
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::Short:
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong: return QString::number(value.toLongLong());
    case QMetaType::UChar:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong: return QString::number(value.toULongLong());
    case QMetaType::Float: return floatText(value.toFloat());
    case QMetaType::Double: return doubleText(value.toDouble());
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: return apostrophed(momentText(value, type, keepsMeaning));
    case QMetaType::QChar:
    case QMetaType::QString:
    case QMetaType::QByteArray: {
        QString text = value.toString();
        if (keepsMeaning) text.replace(u'\'', QStringLiteral("''"));
        return apostrophed(text);
    }
    default: return {};
    }
}

bool TorvQDSProc::hasText(const QVariant& value) {
    if (value.isNull()) return true;
    switch (value.typeId()) {
    case QMetaType::Float:
    case QMetaType::Double: return std::isfinite(value.toDouble());
    case QMetaType::QDate: return isWritableDate(value.toDate());
    case QMetaType::QTime: return value.toTime().isValid();
    case QMetaType::QDateTime: {
        const QDateTime moment = value.toDateTime();
        return moment.isValid() && isWritableDate(moment.toLocalTime().date());
    }
    default: return true;
    }
}

QVariant TorvQDSProc::valueFromText(const QString& text, TFieldType type, bool keepsMeaning) {
    const orv::SqlTokens tokens = orv::tokenise(text);
    const orv::TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
    if (run.size() == 1 && run.is(0, u"NULL")) return QVariant::fromValue(nullptr);
    const QVariant value = constantFrom(run, type);
    QString written;
    for (int index = 0; index < run.size(); ++index) written += run.textOf(index);
    const bool comesBack = value.isValid() && valueText(value, type, keepsMeaning) == written;
    return comesBack ? value : QVariant::fromValue(orv::SqlText{text});
}
