// SPDX-License-Identifier: MIT
#include "joins/JoinGuesses.h"

#include "joins/JoinNames.h"

#include <QCoreApplication>
#include <QHash>
#include <QSet>

#include <algorithm>
#include <iterator>

namespace orvquery {

namespace {

using Kind = JoinProposal::Kind;

QString tr(const char* text) {
    return QCoreApplication::translate("orvquery", text);
}

// A pair of tables, one of which is to refer to the key of the other.
struct Sides {
    const JoinTable& referring;
    const JoinTable& referred;
    bool isReferringNew = false;
};

QString writtenColumn(const JoinTable& table, int column) {
    if (column < table.written.size()) return table.written[column];
    return table.columns[std::size_t(column)].name;
}

QStringList columnNames(const JoinTable& table, const std::vector<int>& columns) {
    QStringList names;
    for (const int column : columns) names += table.columns[std::size_t(column)].name;
    return names;
}

JoinProposal makeGuess(Kind kind, const Sides& sides, const std::vector<int>& referring,
                       const std::vector<int>& referred) {
    JoinProposal guess;
    guess.kind = kind;
    JoinStep step = {columnNames(sides.referring, referring),
                     columnNames(sides.referred, referred)};
    if (sides.isReferringNew) std::swap(step.columns, step.newColumns);
    guess.steps = {std::move(step)};
    describeJoin(guess, qualifiedColumns(sides.referring, referring),
                 qualifiedColumns(sides.referred, referred));
    return guess;
}

std::vector<int> keyColumns(const JoinTable& table) {
    std::vector<int> columns;
    for (std::size_t at = 0; at < table.columns.size(); ++at) {
        if (table.columns[at].isKey) columns.push_back(int(at));
    }
    return columns;
}

// Tables of files and views declare no keys.
int likelyKey(const JoinTable& table) {
    const auto found =
        std::find_if(table.columns.begin(), table.columns.end(), [&](const ColumnEntry& column) {
            return isOwnKeyName(column.name, table.table.name) && isTypeOfKeys(column.fieldType);
        });
    return found == table.columns.end() ? -1 : int(found - table.columns.begin());
}

// Equal amounts and moments are mere chance, unless they are somebody's keys. Some databases have
// but one type for all numbers.
bool mayBeKeys(const ColumnEntry& left, const ColumnEntry& right) {
    if (left.isKey || right.isKey) return true;
    if (isTypeOfKeys(left.fieldType) && isTypeOfKeys(right.fieldType)) return true;
    return hasKeyWord(left.name) && areComparable(left.fieldType, ftInteger) &&
           areComparable(right.fieldType, ftInteger);
}

// Takes the guesses about two tables together.
class Guesses {
public:
    Guesses(const JoinTable& present, const JoinTable& added)
        : m_present(present), m_added(added), m_isSelf(present.table == added.table) {
        // That the present table refers to the new one comes first: a person adds what is missing.
        const Sides toAdded = {present, added, false};
        const Sides toPresent = {added, present, true};
        addKeys(toAdded);
        addKeys(toPresent);
        // A table has all its names and types in common with itself.
        if (!m_isSelf) addSameNames();
    }

    [[nodiscard]] std::vector<JoinProposal> take() {
        std::vector<JoinProposal> all = std::move(m_full);
        for (auto* others : {&m_partial, &m_same}) {
            std::move(others->begin(), others->end(), std::back_inserter(all));
        }
        return all;
    }

private:
    void addKeys(const Sides& sides) {
        const std::vector<int> keys = keyColumns(sides.referred);
        if (keys.size() > 1) return addCombinedKey(sides, keys);
        const bool isDeclared = keys.size() == 1;
        const int key = isDeclared ? keys.front() : likelyKey(sides.referred);
        if (key < 0) return;
        for (std::size_t at = 0; at < sides.referring.columns.size(); ++at) {
            addKey(sides, int(at), key, isDeclared);
        }
    }

    void addKey(const Sides& sides, int column, int key, bool isDeclared) {
        const ColumnEntry& refers = sides.referring.columns[std::size_t(column)];
        const ColumnEntry& referred = sides.referred.columns[std::size_t(key)];
        if (!areComparable(refers.fieldType, referred.fieldType)) return;
        if (m_isSelf && column == key) return;
        const bool isSameName = comparableName(refers.name) == comparableName(referred.name);
        if (isSameName && !isDeclared) return;  // which is told as just that
        KeyLikeness likeness = KeyLikeness::None;
        if (isSameName) {
            if (!isGenericName(referred.name)) likeness = KeyLikeness::Fully;
        } else if (hasKeyWord(refers.name) || isTypeOfKeys(refers.fieldType)) {
            likeness = likenessToKey(refers.name, sides.referred.table.name, referred.name);
            if (m_isSelf && isParentName(refers.name)) likeness = KeyLikeness::Fully;
        }
        if (likeness == KeyLikeness::None || !takePair(sides, column, key)) return;
        JoinProposal guess = makeGuess(Kind::KeyByName, sides, {column}, {key});
        const QString keyName = writtenColumn(sides.referred, key);
        if (isSameName) {
            tellWhy(guess,
                    tr("same name and type %1, the key of %2").arg(keyName, sides.referred.alias));
        } else if (isDeclared) {
            tellWhy(guess, tr("%1 looks like the key %2 of %3")
                               .arg(guess.from, keyName, sides.referred.alias));
        } else {
            tellWhy(guess, tr("%1 looks like a reference to %2").arg(guess.from, guess.to));
        }
        (likeness == KeyLikeness::Fully ? m_full : m_partial).push_back(std::move(guess));
    }

    // All of its columns are there under the same names.
    void addCombinedKey(const Sides& sides, const std::vector<int>& keys) {
        if (m_isSelf) return;
        const QHash<QString, int> byName = columnsByName(sides.referring);
        std::vector<int> found;
        bool isTelling = false;
        for (const int key : keys) {
            const ColumnEntry& referred = sides.referred.columns[std::size_t(key)];
            const int column = byName.value(comparableName(referred.name), -1);
            if (column < 0) return;
            const TFieldType type = sides.referring.columns[std::size_t(column)].fieldType;
            if (!areComparable(type, referred.fieldType)) return;
            isTelling = isTelling || !isGenericName(referred.name);
            found.push_back(column);
        }
        if (!isTelling) return;
        bool isNew = false;
        for (std::size_t at = 0; at < keys.size(); ++at) {
            isNew = takePair(sides, found[at], keys[at]) || isNew;
        }
        if (!isNew) return;
        QStringList names;
        for (const int key : keys) names += writtenColumn(sides.referred, key);
        JoinProposal guess = makeGuess(Kind::KeyByName, sides, found, keys);
        tellWhy(guess, tr("same names and types %1, the key of %2")
                           .arg(names.join(QStringLiteral(", ")), sides.referred.alias));
        m_full.push_back(std::move(guess));
    }

    void addSameNames() {
        const QHash<QString, int> present = columnsByName(m_present);
        const Sides sides = {m_present, m_added, false};
        for (std::size_t at = 0; at < m_added.columns.size(); ++at) {
            const ColumnEntry& column = m_added.columns[at];
            const int other = present.value(comparableName(column.name), -1);
            if (other < 0 || isGenericName(column.name)) continue;
            const ColumnEntry& otherColumn = m_present.columns[std::size_t(other)];
            if (!areComparable(column.fieldType, otherColumn.fieldType)) continue;
            if (!mayBeKeys(column, otherColumn) || !takePair(sides, other, int(at))) continue;
            JoinProposal guess = makeGuess(Kind::SameName, sides, {other}, {int(at)});
            tellWhy(guess, tr("same name and type %1").arg(writtenColumn(m_added, int(at))));
            m_same.push_back(std::move(guess));
        }
    }

    static QHash<QString, int> columnsByName(const JoinTable& table) {
        QHash<QString, int> columns;
        for (std::size_t at = table.columns.size(); at > 0; --at) {
            columns.insert(comparableName(table.columns[at - 1].name), int(at - 1));
        }
        return columns;
    }

    // Whether nothing was said of the two columns so far.
    bool takePair(const Sides& sides, int referring, int referred) {
        std::pair<int, int> pair(referring, referred);
        if (sides.isReferringNew) std::swap(pair.first, pair.second);
        if (m_pairs.contains(pair)) return false;
        m_pairs.insert(pair);
        return true;
    }

    const JoinTable& m_present;
    const JoinTable& m_added;
    bool m_isSelf;
    QSet<std::pair<int, int>> m_pairs;  ///< columns of the present table and of the added one
    std::vector<JoinProposal> m_full;
    std::vector<JoinProposal> m_partial;
    std::vector<JoinProposal> m_same;
};

}  // namespace

std::vector<JoinProposal> guessJoins(const JoinTable& present, int number, const JoinTable& added) {
    std::vector<JoinProposal> guesses = Guesses(present, added).take();
    for (JoinProposal& guess : guesses) guess.table = number;
    return guesses;
}

QStringList qualifiedColumns(const JoinTable& table, const std::vector<int>& columns) {
    QStringList texts;
    for (const int column : columns) texts += table.alias + u'.' + writtenColumn(table, column);
    return texts;
}

void describeJoin(JoinProposal& proposal, const QStringList& from, const QStringList& to) {
    QStringList comparisons;
    for (qsizetype at = 0; at < from.size(); ++at) {
        comparisons += from[at] + QStringLiteral(" = ") + to[at];
    }
    proposal.from = from.join(QStringLiteral(", "));
    proposal.to = to.join(QStringLiteral(", "));
    proposal.sentence = comparisons.join(tr(" and "));
}

void tellWhy(JoinProposal& proposal, const QString& why) {
    proposal.why = why;
    proposal.sentence += QStringLiteral(" (") + why + u')';
}

}  // namespace orvquery
