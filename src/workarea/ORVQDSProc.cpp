// SPDX-License-Identifier: MIT
#include "workarea/ORVQDSProc.h"

#include "core/Error.h"
#include "data/ProcessName.h"
#include "data/SqlText.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>

#include <algorithm>

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
    return text;
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
QString momentText(const QVariant& value, TFieldType type, bool isIso) {
    if (value.typeId() == QMetaType::QTime) return timeText(value.toTime(), isIso);
    if (type == ftDate) return dateText(value.toDate(), isIso);
    const bool isDate = value.typeId() == QMetaType::QDate;
    const QDateTime moment = isDate ? QDateTime(value.toDate(), QTime(0, 0)) : value.toDateTime();
    return type == ftTime ? timeText(moment.time(), isIso) : dateTimeText(moment, isIso);
}

QString apostrophed(const QString& text) {
    return u'\'' + text + u'\'';
}

}  // namespace

TorvQDSProc::TorvQDSProc(QWidget* AParent, const TDataSet* DataSet, const QString& Name,
                         const TParams* Params)
    : TorvQDTable(AParent, DataSet, Name) {
    if (Params) m_params = *Params;
    m_firstParameter = Items.size();
    for (const TParam& param : m_params.Items) {
        if (param.Name.isEmpty()) throw orv::Error(QStringLiteral("A parameter must have a name"));
        setParameter(addRow(ProcessName(param.Name), param.DataType, param.ParamType), param.Value);
    }
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
    QStringList values;
    for (const auto& item : Items) {
        if (item->ParamType != ptInput) continue;
        const QVariant value = valueOf(*item);
        const QString text = value.isValid() ? valueText(value, item->FieldType, keepsMeaning())
                                             : u':' + placeholderName(*item);
        if (!text.isEmpty()) values << text;
    }
    return values.join(QStringLiteral(", "));
}

std::vector<TorvQDListItem*> TorvQDSProc::parameterRows() const {
    std::vector<TorvQDListItem*> rows;
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
void TorvQDSProc::setParameter(TorvQDListItem* item, const QVariant& value) {
    if (!owns(item) || item->ParamType == ptOutput) return;
    item->IsNull = value.isNull();
    item->Value = item->IsNull ? QVariant() : value;
    item->UpdateCheck(value.isValid() ? -1 : 0);
}

QVariant TorvQDSProc::valueOf(const TorvQDListItem& item) {
    if (!item.Checked) return {};
    return item.IsNull ? QVariant::fromValue(nullptr) : item.Value;
}

QString TorvQDSProc::placeholderName(const TorvQDListItem& item) {
    QString name;
    for (const QChar character : item.Name.toUpper()) {
        const bool isKept = (character >= u'A' && character <= u'Z') ||
                            (character >= u'0' && character <= u'9') || character == u'$' ||
                            character == u'_';
        if (isKept) name += character;
        if (character == u' ') name += u'_';
    }
    return name.isEmpty() ? QStringLiteral("Par") + QString::number(item.GetIndex()) : name;
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
