// SPDX-License-Identifier: MIT
#include "window/ValueOrder.h"

#include "values/ExactNumber.h"
#include "values/ShortenedValue.h"
#include "values/ValueText.h"

#include <QDateTime>

#include <cmath>
#include <limits>

namespace orvquery {

namespace {

constexpr double twoTo64 = 18446744073709551616.0;

// The whole number as it is in two's complement, so that differences show.
quint64 wholePart(double number) {
    if (number >= twoTo64) return std::numeric_limits<quint64>::max();
    if (number >= 0) return quint64(number);
    if (number <= -twoTo64 / 2) return quint64(std::numeric_limits<qint64>::min());
    return quint64(qint64(number));
}

// Without the fraction, by which numbers of so many digits rarely differ.
quint64 wholePart(const ExactNumber& number) {
    const QString whole = number.digits.section(u'.', 0, 0);
    bool isHeld = false;
    const quint64 part =
        whole.startsWith(u'-') ? quint64(whole.toLongLong(&isHeld)) : whole.toULongLong(&isHeld);
    return isHeld ? part : wholePart(number.digits.toDouble());
}

// The moments of one column are of one type; this keeps even others apart.
double millisecondsOf(const QVariant& value) {
    switch (value.metaType().id()) {
    case QMetaType::QTime: return value.toTime().msecsSinceStartOfDay();
    case QMetaType::QDate: return double(value.toDate().startOfDay(Qt::UTC).toMSecsSinceEpoch());
    default: return double(value.toDateTime().toMSecsSinceEpoch());
    }
}

}  // namespace

SortKey::SortKey(const QVariant& value) {
    if (value.isNull()) return;
    if (isShortened(value)) {
        *this = SortKey(value.value<ShortenedValue>().beginning);
        return;
    }
    switch (value.metaType().id()) {
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime:
        m_kind = Kind::Moment;
        m_number = millisecondsOf(value);
        return;
    case QMetaType::QByteArray:
        m_kind = Kind::Bytes;
        m_bytes = value.toByteArray();
        return;
    default: break;
    }
    if (isNumber(value) || value.metaType().id() == QMetaType::Bool) {
        setNumber(value);
    } else {
        m_kind = Kind::Text;
        m_text = exactText(value);
    }
}

void SortKey::setNumber(const QVariant& value) {
    m_number = value.toDouble();
    m_kind = std::isnan(m_number) ? Kind::NotANumber : Kind::Number;
    if (isExactNumber(value)) {
        m_whole = wholePart(value.value<ExactNumber>());
        return;
    }
    switch (value.metaType().id()) {
    case QMetaType::Double:
    case QMetaType::Float: m_whole = wholePart(m_number); break;
    case QMetaType::ULongLong:
    case QMetaType::ULong: m_whole = value.toULongLong(); break;
    default: m_whole = quint64(value.toLongLong()); break;
    }
}

bool operator<(const SortKey& left, const SortKey& right) {
    if (left.m_kind != right.m_kind) return left.m_kind < right.m_kind;
    switch (left.m_kind) {
    case SortKey::Kind::Null:
    case SortKey::Kind::NotANumber: return false;
    case SortKey::Kind::Number:
        // Of equal sign here, so that two's complement compares rightly.
        return left.m_number != right.m_number ? left.m_number < right.m_number
                                               : left.m_whole < right.m_whole;
    case SortKey::Kind::Moment: return left.m_number < right.m_number;
    case SortKey::Kind::Text: return left.m_text < right.m_text;
    case SortKey::Kind::Bytes: return left.m_bytes < right.m_bytes;
    }
    Q_UNREACHABLE();
}

}  // namespace orvquery
