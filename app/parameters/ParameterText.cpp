// SPDX-License-Identifier: MIT
#include "parameters/ParameterText.h"

#include "data/SqlText.h"
#include "values/ValueText.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QRegularExpression>

#include <limits>
#include <optional>

namespace orvquery {

namespace {

// So many digits come back unchanged from a number of double precision.
constexpr qsizetype safeDigits = 15;

QString tr(const char* text) {
    return QCoreApplication::translate("orvquery", text);
}

ParameterReading problem(const QString& text) {
    return {{}, text};
}

ParameterReading readWhole(const QString& text, qlonglong least, qlonglong most) {
    bool isNumber = false;
    const qlonglong number = text.trimmed().toLongLong(&isNumber);
    if (!isNumber) return problem(tr("A whole number is expected, such as 42."));
    if (number < least || number > most) {
        return problem(tr("A whole number from %1 to %2 is expected.").arg(least).arg(most));
    }
    return {number, {}};
}

template <typename Number>
ParameterReading readWholeOf(const QString& text) {
    return readWhole(text, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max());
}

// A number as SQL has it: whole ones as such, and as a text where double precision would lose
// digits.
QVariant numberOf(const QString& text) {
    bool isWhole = false;
    const qlonglong whole = text.toLongLong(&isWhole);
    if (isWhole) return whole;
    const qsizetype digits = text.count(QRegularExpression(QStringLiteral("[0-9]")));
    return digits > safeDigits ? QVariant(text) : QVariant(text.toDouble());
}

ParameterReading readNumber(QString text, const QLocale& locale) {
    text = text.trimmed();
    // 1,234 is more than a thousand to some people, and little more than one to others.
    static const QRegularExpression thousands(
        QStringLiteral("^[+-]?[1-9][0-9]{0,2}([.,])[0-9]{3}$"));
    const QRegularExpressionMatch match = thousands.match(text);
    if (match.hasMatch() && match.captured(1) == locale.groupSeparator()) {
        return problem(tr("Is this %1 or %2? Please write it without a separator of thousands.")
                           .arg(QString(text).remove(match.captured(1)),
                                QString(text).replace(match.captured(1), locale.decimalPoint())));
    }
    static const QRegularExpression number(
        QStringLiteral("^[+-]?([0-9]+([.,][0-9]*)?|[.,][0-9]+)([eE][+-]?[0-9]{1,3})?$"));
    if (!number.match(text).hasMatch()) {
        return problem(tr("A number is expected, such as %1.").arg(locale.toString(12.5, 'f', 1)));
    }
    return {numberOf(text.replace(u',', u'.')), {}};
}

// The country's short form, with all digits of the year: "24" may be any century's.
QString localDateFormat(const QLocale& locale) {
    QString format = locale.dateFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1String("yyyy"))) {
        format.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
    }
    return format;
}

// Qt's reader of ISO 8601 would take what begins like a date for one.
QDate readDateText(const QString& text, const QLocale& locale) {
    static const QRegularExpression iso(QStringLiteral("^[0-9]{4}-[0-9]{2}-[0-9]{2}$"));
    return iso.match(text).hasMatch() ? QDate::fromString(text, Qt::ISODate)
                                      : locale.toDate(text, localDateFormat(locale));
}

QTime readTimeText(const QString& text, const QLocale& locale) {
    static const QRegularExpression iso(
        QStringLiteral("^[0-9]{2}:[0-9]{2}(:[0-9]{2}([.][0-9]{1,3})?)?$"));
    return iso.match(text).hasMatch() ? QTime::fromString(text, Qt::ISODate)
                                      : locale.toTime(text, QLocale::ShortFormat);
}

QDateTime readDateTimeText(const QString& text, const QLocale& locale) {
    const QDate date = readDateText(text, locale);
    if (date.isValid()) return date.startOfDay();
    // Between the two stands a "T" or a blank; dates of some countries have blanks themselves.
    static const QRegularExpression parts(QStringLiteral("^(.*\\d)[T ]\\s*([\\d:.]+.*)$"));
    const QRegularExpressionMatch match = parts.match(text);
    if (!match.hasMatch()) return {};
    const QDate day = readDateText(match.captured(1).trimmed(), locale);
    const QTime time = readTimeText(match.captured(2).trimmed(), locale);
    return day.isValid() && time.isValid() ? QDateTime(day, time) : QDateTime();
}

template <typename Time>
ParameterReading readingOf(const Time& time, const QString& expected) {
    return time.isValid() ? ParameterReading{time, {}} : problem(expected);
}

// The words stand in quotes then, which databases with a type for it take, and those without.
ParameterReading readBoolean(const QString& text) {
    const QString word = text.trimmed().toLower();
    for (const char* yes : {"true", "t", "yes", "y", "1"}) {
        if (word == QLatin1String(yes)) return {QStringLiteral("true"), {}};
    }
    for (const char* no : {"false", "f", "no", "n", "0"}) {
        if (word == QLatin1String(no)) return {QStringLiteral("false"), {}};
    }
    return problem(tr("true or false is expected."));
}

// Qt's drivers take a text that is null, not only empty, for NULL.
QVariant textValue(const QString& text) {
    return text.isNull() ? QString(QLatin1String("")) : text;
}

// "007" and "1e5" may be a key or a code.
ParameterReading readUnknown(const QString& text) {
    static const QRegularExpression plain(QStringLiteral("^-?(0|[1-9][0-9]*)(\\.[0-9]+)?$"));
    return {plain.match(text).hasMatch() ? numberOf(text) : textValue(text), {}};
}

}  // namespace

ParameterReading readParameter(const QString& text, TFieldType type, const QLocale& locale) {
    switch (type) {
    case ftSmallint: return readWholeOf<qint16>(text);
    case ftWord: return readWholeOf<quint16>(text);
    case ftInteger:
    case ftAutoInc: return readWholeOf<qint32>(text);
    case ftLargeint: return readWholeOf<qint64>(text);
    case ftFloat:
    case ftCurrency:
    case ftBCD: return readNumber(text, locale);
    case ftBoolean: return readBoolean(text);
    case ftDate:
        return readingOf(readDateText(text.trimmed(), locale),
                         tr("A date is expected, such as 2024-12-31."));
    case ftTime:
        return readingOf(readTimeText(text.trimmed(), locale),
                         tr("A time is expected, such as 18:30 or 18:30:15."));
    case ftDateTime:
        return readingOf(readDateTimeText(text.trimmed(), locale),
                         tr("A date and a time are expected, such as 2024-12-31 18:30."));
    case ftUnknown: return readUnknown(text);
    case ftString:
    case ftBytes:
    case ftVarBytes:
    case ftBlob:
    case ftMemo:
    case ftGraphic:
    case ftFmtMemo:
    case ftParadoxOle:
    case ftDBaseOle:
    case ftTypedBinary:
    case ftCursor:
    case ftFixedChar:
    case ftWideString:
    case ftADT:
    case ftArray:
    case ftReference:
    case ftDataSet: break;
    }
    return {textValue(text), {}};
}

QString parameterText(const QVariant& value) {
    switch (value.metaType().id()) {
    case QMetaType::QDate: return value.toDate().toString(Qt::ISODate);
    case QMetaType::QTime: {
        const QTime time = value.toTime();
        return time.toString(time.msec() == 0 ? Qt::ISODate : Qt::ISODateWithMs);
    }
    case QMetaType::QDateTime: {
        const QDateTime time = value.toDateTime();
        return time.toString(time.time().msec() == 0 ? Qt::ISODate : Qt::ISODateWithMs)
            .replace(u'T', u' ');
    }
    case QMetaType::QByteArray: return QString::fromUtf8(value.toByteArray());
    default: break;
    }
    if (value.canConvert<orv::SqlText>()) return value.value<orv::SqlText>().text;
    return exactText(value);
}

QString parameterHint(TFieldType type) {
    switch (type) {
    case ftDate: return tr("year-month-day");
    case ftTime: return tr("hours:minutes");
    case ftDateTime: return tr("year-month-day hours:minutes");
    case ftBoolean: return tr("true or false");
    default: return {};
    }
}

}  // namespace orvquery
