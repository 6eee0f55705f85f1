// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

#include <compare>

namespace orvquery {

/// By what a value is sorted among others of any type, taken out of its variant once, because each
/// value is compared many times. A plain value.
class SortKey {
public:
    explicit SortKey(const QVariant& value);

    /// NULL first, then numbers by their size, dates and times, texts by their code units (the same
    /// everywhere), bytes.
    friend bool operator<(const SortKey& left, const SortKey& right);

private:
    enum class Kind { Null, NotANumber, Number, Moment, Text, Bytes };

    void setNumber(const QVariant& value);

    Kind m_kind = Kind::Null;
    double m_number = 0;
    /// Tells apart what is equal as a fraction: all numbers that are so large are whole.
    quint64 m_whole = 0;
    QString m_text;
    QByteArray m_bytes;
};

}  // namespace orvquery
