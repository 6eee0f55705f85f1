// SPDX-License-Identifier: MIT
#pragma once

#include "contract/IWorkAreaOwner.h"
#include "diagram/ORVQDLinks.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDParser.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QHash>
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
        bool hasBrackets;  ///< of a call
        int start;         ///< span, alias included
        int end;
    };

    /// One side of a comparison in ON: a row of a box.
    struct Side {
        TorvQDTable* table = nullptr;
        TorvQDListItem* item = nullptr;
    };

    /// A comparison of two fields, as the text has it.
    struct Comparison {
        Side first;
        Side second;
        QString operation;
        int start;
        int end;
    };

    /// A join of the text and what it links.
    struct LoadedJoin {
        const TorvQDParser* node;
        TKindOfJoin kind;
        int start;  // of its keywords, NATURAL included
        int keywordsEnd;
        bool behindCross = false;                 // in an item that CROSS JOIN begins
        TorvQDTable* table = nullptr;             // the one that it brings in
        std::vector<TorvQDTable*> partners = {};  // those that its links compare it with
        bool reachesAround = false;               // a link that does not touch its own table
        bool reachesAcross = false;  // its ON names a table of another item of the comma list
        bool takesNulls = false;     // a comparison that may hold for NULLs, as far as is known
        QPointer<TorvQDLink> firstLink = {};    // its join holds the text
        std::vector<orv::TokenRun> texts = {};  // the parts of that text
    };

    /// A link and the comparison that it was made from.
    struct LoadedLink {
        QPointer<const TorvQDLink> link;  // a handler may remove it
        const TorvQDTable* left;          // that stands on the left in the text
        int start;
        int end;
    };

    /// A box and the text that it was made from.
    struct LoadedBox {
        QPointer<TorvQDTable> box;  // a handler may close it
        int start;
        int end;
    };

    /// An argument of a call, as its text has it; an empty text between two commas.
    struct Argument {
        QString text;
        int start;
        int end;
    };

    /// A row and the argument that it was filled from. The row is looked at only while its box is
    /// known to be there.
    struct LoadedArgument {
        const TorvQDListItem* row;
        int start;
        int end;
    };

    void loadItems();
    [[nodiscard]] bool isBehindCross(const TorvQDParser& table) const;
    void loadJoin(const TorvQDParser& join, int start);
    TorvQDTable* loadTable(const TorvQDParser& node);
    TorvQDTable* addBox(const NamedTable& table, const TDataSet& dataSet, const TParams* params);
    [[nodiscard]] std::vector<Argument> argumentsOf(const TorvQDParser& node) const;
    static std::vector<Argument> argumentsOfTree(const TorvQDParser& node);
    void fillParameters(const std::vector<Argument>& arguments, const TorvQDParser& node,
                        int columns, TParams& params);
    [[nodiscard]] bool isPlaceholder(const QString& text, const QString& name) const;
    void loseArguments(const TorvQDParser& node);
    void rememberArguments(TorvQDTable* box, const std::vector<Argument>& arguments);
    [[nodiscard]] TorvQDTable* boxToReuse(const NamedTable& table) const;
    static NamedTable named(const TorvQDParser& node);
    static bool hasAlias(const TorvQDParser& node);
    static void useAlias(NamedTable& table, const QString& text, int end);
    void readDetachedAlias(NamedTable& table) const;
    int loseAddition(const NamedTable& table);
    void reportNames(const NamedTable& table);
    void readColumnNames(NamedTable& table) const;
    void loseDerivedTable(const TorvQDParser& node);

    void loseJoin(LoadedJoin join, const TorvQDParser* on);
    void loadOn(LoadedJoin& join, const TorvQDParser& on);
    void loadOnAsWritten(LoadedJoin& join, const TorvQDParser& on,
                         const std::vector<orv::TokenRun>* parts);
    void reportLooseAnds(const orv::TokenRun& run) const;
    void loadOnKeepingMeaning(LoadedJoin& join, const TorvQDParser& on,
                              const std::vector<orv::TokenRun>& parts);
    [[nodiscard]] std::optional<Side> findSide(const QString& text) const;
    [[nodiscard]] std::optional<Side> findSideOrComplain(const QString& text);
    void complain(const QString& text);
    [[nodiscard]] TorvQDTable* onlyTableWith(const QString& field) const;
    [[nodiscard]] int endOfTokens(const Comparison& comparison) const;
    [[nodiscard]] std::optional<Comparison> comparisonOf(const orv::TokenRun& part) const;
    [[nodiscard]] TorvQDTable* tableNamedBy(const orv::TokenRun& run, int index,
                                            bool inSubQuery) const;
    [[nodiscard]] bool isOfAnotherItem(const TorvQDTable* table) const;
    bool addLink(LoadedJoin& join, const Comparison& comparison);

    void reportClosedBoxes();
    void reportOrder();
    [[nodiscard]] bool orderMatters() const;
    void reportPlaces();
    void reportOperators(const orv::FromPlaces& places,
                         const QHash<const TorvQDJoin*, int>& indexOf);
    void reportTexts(const orv::FromPlaces& places, const QHash<const TorvQDJoin*, int>& indexOf);
    void reportArguments();
    void placeClauseWords();
    void report(int start, int end, const QString& what);

    TorvQDWorkArea& m_area;
    QPointer<TorvQDWorkArea> m_guard;
    const TorvQDParser& m_node;
    orv::LoadLedger* m_ledger;
    const bool m_keepsMeaning;
    int m_readUpTo = 0;  // nodes in front of it are part of what was loaded
    std::vector<LoadedBox> m_boxes;
    std::vector<LoadedArgument> m_arguments;
    std::vector<LoadedJoin> m_joins;
    std::vector<LoadedLink> m_links;
    QHash<const TorvQDJoin*, std::size_t> m_madeBy;  // the join of the text that made it
    QHash<const TorvQDTable*, int> m_itemOf;         // item of the comma list
    int m_item = 0;
    bool m_isCrossItem = false;            // CROSS JOIN stands in front of the item
    std::vector<TorvQDTable*> m_unlinked;  // tables that no JOIN brought in
};
