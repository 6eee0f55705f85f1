// SPDX-License-Identifier: MIT
#pragma once

#include "contract/IWorkAreaOwner.h"
#include "diagram/ORVQDLinks.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDParser.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QPointer>

#include <optional>
#include <vector>

/// Rebuilds the boxes, joins and links of a work area from a FROM node, and accounts for the node's
/// text. Used once per load.
class FromLoader {
public:
    FromLoader(TorvQDWorkArea& area, const TorvQDParser& node);

    /// Raises orv::Error "There is no Table for join".
    void load();

private:
    /// A table as the text of a FROM clause names it.
    struct NamedTable {
        QString written;   ///< as FROM writes it again
        QString lookup;    ///< as the host is asked for it
        QString alias;     ///< as given; empty without one
        bool hasOwnAlias;  ///< the text gives the alias, it is not implied by a qualified name
        int start;         ///< span, alias included
        int end;
    };

    /// One side of a comparison in ON: a row of a box.
    struct Side {
        TorvQDTable* table = nullptr;
        TorvQDListItem* item = nullptr;
    };

    /// A join of the text and what it links.
    struct LoadedJoin {
        const TorvQDParser* node;
        TKindOfJoin kind;
        int start;  // of its keywords, NATURAL included
        int keywordsEnd;
        TorvQDTable* table = nullptr;               // the one that it brings in
        std::vector<TorvQDTable*> partners = {};    // those that its links compare it with
        std::vector<const TorvQDJoin*> drawn = {};  // joins of the diagram that hold its links
        bool reachesAround = false;                 // a link that does not touch its own table
        bool reachesAcross = false;  // its ON names a table of another item of the comma list
        bool followsCross = false;   // CROSS JOIN began its item of the comma list
    };

    void loadItems();
    [[nodiscard]] bool isBehindCrossJoin(const TorvQDParser& table) const;
    void loadJoin(const TorvQDParser& join, int start);
    TorvQDTable* loadTable(const TorvQDParser& node);
    TorvQDTable* addBox(const NamedTable& table, const TDataSet& dataSet);
    [[nodiscard]] TorvQDTable* boxToReuse(const NamedTable& table) const;
    static NamedTable named(const TorvQDParser& node);
    static bool hasAlias(const TorvQDParser& node);
    static void useAlias(NamedTable& table, const QString& text, int end);
    void readDetachedAlias(NamedTable& table) const;
    void loseDerivedTable(const TorvQDParser& node);

    void loadOn(LoadedJoin& join, const TorvQDParser& on);
    void loadOnAsWritten(LoadedJoin& join, const TorvQDParser& on);
    void loadOnKeepingMeaning(LoadedJoin& join, const TorvQDParser& on,
                              const std::vector<orv::TokenRun>& parts);
    [[nodiscard]] std::optional<Side> findSide(const QString& text, bool complains);
    void complain(const QString& text);
    [[nodiscard]] bool isComparison(const orv::TokenRun& part) const;
    void addLink(LoadedJoin& join, const Side& first, const Side& second, const QString& operation);

    void reportOrder();
    [[nodiscard]] bool orderMatters() const;
    void reportPlaces();
    [[nodiscard]] bool hasDirectedLink(const TorvQDJoin* join) const;
    void reportCircle(const LoadedJoin& join);
    void reportMovedConditions();
    [[nodiscard]] bool keepsRowsOnLineOf(const TorvQDTable* table, std::size_t from) const;
    void placeClauseWords();
    void report(int start, int end, const QString& what);

    TorvQDWorkArea& m_area;
    QPointer<TorvQDWorkArea> m_guard;
    const TorvQDParser& m_node;
    orv::LoadLedger* m_ledger;
    const bool m_keepsMeaning;
    int m_readUpTo = 0;  // nodes in front of it are part of what was loaded
    std::vector<LoadedJoin> m_joins;
    QHash<const TorvQDTable*, int> m_itemOf;  // item of the comma list
    int m_item = 0;
    bool m_itemIsCross = false;            // CROSS JOIN began it
    std::vector<TorvQDTable*> m_unlinked;  // tables that no JOIN brought in
};
