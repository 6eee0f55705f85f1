// SPDX-License-Identifier: MIT
#include "parser/ORVQDKeywords.h"

#include <QString>

#include <array>
#include <vector>

namespace {

QStringList words(std::initializer_list<const char*> texts) {
    QStringList list;
    for (const char* text : texts) list << QString::fromLatin1(text);
    return list;
}

}  // namespace

const QStringList& lOperators() {
    static const QStringList list = words({"NOT", "AND", "OR"});
    return list;
}

const QStringList& lMatching() {
    static const QStringList list = words({"DISTINCT", "ALL", "SOME", "ANY", "WITH", "ESCAPE"});
    return list;
}

const QStringList& lJoins() {
    static const QStringList list = words({"JOIN", "INNER", "LEFT", "RIGHT", "FULL", "OUTER"});
    return list;
}

const QStringList& lConditionFuncs() {
    static const QStringList list = words({"BETWEEN", "LIKE", "IN", "IS NULL", "IS NOT NULL",
                                           "EXIST", "SINGULAR", "CONTAINING", "STARTING"});
    return list;
}

namespace orv {

namespace {

struct Entry {
    QString word;
    WordInfo info;
};

// Entries by the length of their word: most words of a statement are rejected by length and first
// letter, without hashing.
class WordTable {
public:
    WordTable() {
        add(lOperators(), wordLogical);
        add(lMatching(), wordMatching);
        add(lJoins(), wordJoin);
        add(lConditionFuncs(), wordConditionFunc);
        add(words({"COUNT", "MAX", "MIN", "SUM", "AVG", "CAST", "UPPER", "GEN_ID"}), wordFunction);
        add(words({"ASC", "ASCENDING", "DESC", "DESCENDING"}), wordDirection);
        add(words({"UNION", "INTERSECT", "EXCEPT", "LIMIT", "OFFSET", "FETCH", "FOR", "WINDOW",
                   "CROSS", "NATURAL", "USING"}),
            wordNeverAlias);
        add(words({"GROUP", "ORDER", "IS"}), wordPair);
        add(words({"CROSS", "NATURAL", "USING"}), wordUnheldJoin);
        add(words({"ON"}), wordOn);
        add(words({"AS"}), wordAs);
        const QStringList clauses =
            words({"SELECT", "FROM", "WHERE", "GROUP BY", "HAVING", "ORDER BY"});
        add(clauses, wordClause);
        for (qsizetype index = 0; index < clauses.size(); ++index) {
            find(clauses[index])->clause = TLocationKinds(inSelect + index);
        }
        for (qsizetype index = 0; index < lJoins().size(); ++index) {
            find(lJoins()[index])->joinIndex = qint8(index);
        }
        for (std::vector<Entry>& entries : m_byLength) {
            for (Entry& entry : entries) entry.info.spelling = &entry.word;
        }
    }

    [[nodiscard]] const WordInfo* find(QStringView word) const {
        for (const Entry& entry : m_byLength[std::size_t(word.size())]) {
            if (entry.word.front() == word.front() && entry.word == word) return &entry.info;
        }
        return nullptr;
    }

private:
    WordInfo* find(QStringView word) {
        return const_cast<WordInfo*>(std::as_const(*this).find(word));
    }

    void add(const QStringList& list, WordTrait trait) {
        for (const QString& word : list) {
            WordInfo* info = find(word);
            if (!info) {
                m_byLength[std::size_t(word.size())].push_back({word, {}});
                info = find(word);
            }
            info->traits |= trait;
        }
    }

    std::array<std::vector<Entry>, longestKnownWord + 1> m_byLength;
};

}  // namespace

WordInfo wordInfo(QStringView upperWord) {
    static const WordTable table;
    if (upperWord.isEmpty() || upperWord.size() > longestKnownWord) return {};
    const WordInfo* info = table.find(upperWord);
    return info ? *info : WordInfo();
}

}  // namespace orv
