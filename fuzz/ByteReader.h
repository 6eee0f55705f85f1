// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayView>
#include <QStringList>

namespace orvfuzz {

/// Makes decisions of an input, byte by byte; behind its end all of them are 0.
class ByteReader {
public:
    explicit ByteReader(QByteArrayView bytes) : m_bytes(bytes) {}

    [[nodiscard]] bool atEnd() const { return m_bytes.isEmpty(); }

    [[nodiscard]] int byte() {
        if (atEnd()) return 0;
        const int first = uchar(m_bytes.front());
        m_bytes = m_bytes.sliced(1);
        return first;
    }
    /// A number from 0 on, with less than 65536 to choose from.
    [[nodiscard]] int below(int limit) {
        const int number = limit > 256 ? byte() * 256 + byte() : byte();
        return number % limit;
    }
    [[nodiscard]] bool oneIn(int count) { return below(count) == count - 1; }
    [[nodiscard]] const QString& oneOf(const QStringList& texts) {
        return texts[below(int(texts.size()))];
    }
    [[nodiscard]] QByteArrayView rest() const { return m_bytes; }

private:
    QByteArrayView m_bytes;
};

}  // namespace orvfuzz
