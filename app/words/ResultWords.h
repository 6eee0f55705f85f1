// SPDX-License-Identifier: MIT
#pragma once

#include "words/Explanation.h"
#include "words/QueryNames.h"

namespace orvquery {

/// Says what a query returns: its columns and groups, and in what order.
class ResultWords {
public:
    explicit ResultWords(const QueryNames& names);

    /// Whether several rows become one by aggregates.
    [[nodiscard]] bool isAggregated() const { return m_isAggregated; }
    /// Whether these are told apart by columns, so that conditions can be put to each group.
    [[nodiscard]] bool isGrouped() const { return m_isAggregated && !m_groups.isEmpty(); }

    [[nodiscard]] std::vector<WordsLine> sentences() const;
    [[nodiscard]] std::vector<WordsLine> orderSentences() const;

    /// A column without its output name.
    [[nodiscard]] QString source(const orv::OutputColumn& column) const;
    /// The same with the name.
    [[nodiscard]] QString column(const orv::OutputColumn& column) const;
    [[nodiscard]] QString sortLine(const orv::SortList::Line& line) const;

    /// Whether it is called otherwise than what it shows.
    [[nodiscard]] bool hasOwnName(const orv::OutputColumn& column) const;
    /// The column that a line sorts by; none when there is none of its name.
    [[nodiscard]] const orv::OutputColumn* sortedColumn(const orv::SortList::Line& line) const;

private:
    [[nodiscard]] bool isPlain(const orv::OutputColumn& column) const;
    [[nodiscard]] QString groupPhrase() const;
    [[nodiscard]] QStringList columnPhrases() const;
    [[nodiscard]] QStringList gathered() const;
    [[nodiscard]] bool isClearGroup(const QueryNames::Field& field) const;
    [[nodiscard]] QString withOutputName(const QString& phrase,
                                         const orv::OutputColumn& column) const;
    [[nodiscard]] std::vector<WordsLine> misfits() const;
    [[nodiscard]] Scale scale(const orv::OutputColumn* column) const;

    const QueryNames& m_names;
    orv::OutputColumns m_columns;  ///< those that are written
    QStringList m_aggregates;
    QStringList m_groups;  ///< sources of the columns that tell groups apart, each once
    bool m_isAggregated = false;
};

}  // namespace orvquery
