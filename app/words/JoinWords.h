// SPDX-License-Identifier: MIT
#pragma once

#include "words/Explanation.h"
#include "words/QueryNames.h"
#include "workarea/ORVQDFromText.h"

namespace orvquery {

/// Says which rows of which tables a query takes, and how they are joined, in the order in which
/// its statement joins them. Links that are muted are none.
class JoinWords {
public:
    JoinWords(const QueryNames& names, bool keepMeaning);

    [[nodiscard]] std::vector<WordsLine> sentences() const;

    /// The arguments of a procedure's call, as they are written.
    [[nodiscard]] QStringList arguments(int table) const;

    /// The tables in the order in which the statement joins them, item by item of its FROM: what
    /// stands in one list is joined at once.
    [[nodiscard]] std::vector<std::vector<std::vector<int>>> tablesInOrder() const;

    /// Whether another order may give other rows.
    [[nodiscard]] bool dependsOnOrder() const;

    /// The conditions of a join's text.
    [[nodiscard]] QStringList textWords(const QString& sql) const;

    /// The comparison of a link.
    [[nodiscard]] QString linkWords(const orv::QueryState::Link& link) const;

private:
    /// A table that is joined to those before, and by which joins.
    struct Step {
        int table = -1;
        TKindOfJoin kind = klInnerJoin;
        std::vector<int> joins;
        bool isRepeated = false;  ///< the table is there already and is joined once more
    };
    /// One item of the comma list of FROM.
    struct Item {
        int table = -1;
        std::vector<Step> steps;
    };
    /// A comparison as seen from the table that is joined.
    struct Comparison {
        int otherTable = -1;
        QString ownField;
        QString operation;
        QString otherField;
    };

    void readDiagram();
    void readItems();
    [[nodiscard]] QString rowsOf(int table) const;
    [[nodiscard]] QString call(int table) const;
    [[nodiscard]] QString stepSentence(const Item& item, std::size_t number) const;
    [[nodiscard]] QString matchWords(const Item& item, std::size_t number) const;
    [[nodiscard]] QString keptWords(const Item& item, std::size_t number) const;
    [[nodiscard]] std::vector<Comparison> comparisons(const Step& step) const;
    [[nodiscard]] QString sameFields(const std::vector<Comparison>& list) const;
    [[nodiscard]] QString fieldWords(int table, const QString& name) const;
    [[nodiscard]] bool dependsOnOthers(int table) const;
    [[nodiscard]] QString simpleProduct() const;
    [[nodiscard]] QString itemNames(const Item& item) const;

    const QueryNames& m_names;
    const orv::QueryState& m_state;
    bool m_keepMeaning;
    std::vector<int> m_order;  ///< table of the state by number in the diagram
    orv::FromDiagram m_diagram;
    std::vector<Item> m_items;
};

}  // namespace orvquery
