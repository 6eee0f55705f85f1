// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <random>

namespace orvtest {

/// Chance with a seed: the same throws on every machine. Where several throws stand in one
/// expression, only braces and chained calls fix their order.
class Dice {
public:
    explicit Dice(quint32 seed) : m_engine(seed) {}

    /// 0 ... count - 1.
    int below(int count) { return int(m_engine() % quint32(count)); }
    /// From `least` to `most`, both included.
    int between(int least, int most) { return least + below(most - least + 1); }
    bool chance(int percent) { return below(100) < percent; }
    QString pick(const QStringList& texts) { return texts[below(int(texts.size()))]; }

private:
    std::mt19937 m_engine;
};

/// The words with one blank between them; empty ones are left out.
inline QString words(std::initializer_list<QString> list) {
    QStringList texts;
    for (const QString& text : list) {
        if (!text.isEmpty()) texts << text;
    }
    return texts.join(u' ');
}

}  // namespace orvtest
