// SPDX-License-Identifier: MIT
// The FROM clause of the work area, written and loaded.
#include "core/Error.h"
#include "core/Text.h"
#include "data/ProcessName.h"
#include "parser/ORVQDKeywords.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDParser.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QStringList>

namespace {

const QString crLf = QStringLiteral("\r\n");
constexpr int topLevel = 0;  // bracket depth of a statement's own clauses

/// A table as the text of a FROM clause names it.
struct NamedTable {
    QString written;   ///< as FROM writes it again
    QString lookup;    ///< as the host is asked for it
    QString alias;     ///< as given; empty without one
    bool hasOwnAlias;  ///< the text gives the alias, it is not implied by a qualified name
    int start;         ///< span, alias included
    int end;
};

QStringList splitAtFullStops(const QString& name) {
    QStringList parts;
    QString rest = name;
    for (qsizetype stop = orv::firstFullStop(rest); stop >= 0; stop = orv::firstFullStop(rest)) {
        parts << rest.left(stop);
        rest = rest.mid(stop + 1);
    }
    return parts << rest;
}

bool isName(const QString& text) {
    const orv::SqlTokens tokens = orv::tokenise(text);
    return tokens.size() == 1 &&
           (tokens.front().kind == orv::SqlToken::Word || text.startsWith(u'\''));
}

}  // namespace

/// Rebuilds the boxes of a work area from a FROM node, and accounts for the node's text.
class FromLoader {
public:
    FromLoader(TorvQDWorkArea& area, const TorvQDParser& node)
        : m_area(area), m_guard(&area), m_node(node), m_ledger(area.m_owner->ledger()) {}

    void load() {
        loadItems();
        placeClauseWords();
    }

private:
    void loadItems() {
        for (int index = 0; index < m_node.Count() && m_guard; ++index) {
            const TorvQDParser& child = *m_node.Child(index);
            if (child.Start() < m_readUpTo) continue;  // an alias that was read already
            if (child.Kind() == otTable) {
                loadTable(child);
            } else if (child.Kind() == otJoin) {
                const TorvQDParser* before = index > 0 ? m_node.Child(index - 1) : nullptr;
                const bool isNatural = before && before->Text() == u"NATURAL";
                loadJoin(child, isNatural ? before->Start() : child.Start());
            } else if (child.Kind() == otBrakets) {
                loseDerivedTable(child);
            }
        }
    }

    void loadJoin(const TorvQDParser& join, int start) {
        if (join.Count() == 0 || join.Child(0)->Kind() != otTable) {
            throw orv::Error(QStringLiteral("There is no Table for join"));
        }
        loadTable(*join.Child(0));
        if (!m_guard || !m_ledger) return;
        m_ledger->report(start, join.End(),
                         QStringLiteral("Joins are not held yet: the table is loaded without its "
                                        "join."));
    }

    void loadTable(const TorvQDParser& node) {
        NamedTable table = named(node);
        if (!hasAlias(node)) readDetachedAlias(table);
        m_readUpTo = table.end;
        std::unique_ptr<TDataSet> dataSet;
        std::unique_ptr<TParams> params;
        m_area.m_owner->getTableFields(table.lookup, dataSet, params);
        if (!m_guard) return;
        if (!dataSet) {
            report(table, QStringLiteral("This table is not known and is not loaded."));
        } else if (params || node.Location() == inFunction) {
            report(table, QStringLiteral("Procedures are not held yet: it is not loaded."));
        } else if (boxToReuse(table)) {
            report(table, QStringLiteral("This table is on the diagram already: it is not loaded "
                                         "a second time."));
        } else {
            addBox(table, *dataSet);
        }
    }

    void addBox(const NamedTable& table, const TDataSet& dataSet) {
        const bool aliasTaken = !table.alias.isEmpty() && m_area.GetTable(table.alias);
        const QString written =
            splitAtFullStops(table.written).size() > 1 ? table.written : QString();
        const TorvQDTable* box = m_area.addTable(table.written, &dataSet, written, table.alias);
        if (!m_guard) return;
        if (!box) {
            report(table, QStringLiteral("The program did not allow this table: it is not "
                                         "loaded."));
        } else if (aliasTaken) {
            report(table,
                   QStringLiteral(
                       "Another table has this alias, too: a statement with both is not valid."));
        } else if (m_ledger) {
            m_ledger->place(table.start, table.end);
        }
    }

    // A table that is mentioned again reuses its box; with meaning kept, only when the second
    // mention has no alias of its own.
    [[nodiscard]] bool boxToReuse(const NamedTable& table) const {
        if (m_area.m_owner->KeepMeaning() && table.hasOwnAlias) return false;
        if (!table.alias.isEmpty() && !table.hasOwnAlias) {
            const TorvQDTable* box = m_area.GetTable(table.alias);
            return box && box->TableName == table.written;
        }
        return m_area.m_byAlias.contains(table.lookup) ||
               m_area.m_byAlias.contains(orv::quotedName(table.lookup));
    }

    static NamedTable named(const TorvQDParser& node) {
        NamedTable table{node.Text(), {}, {}, false, node.Start(), node.End()};
        const QStringList parts = splitAtFullStops(node.Text());
        QStringList written;
        QStringList lookup;
        for (const QString& part : parts) {
            if (part.isEmpty()) continue;
            written << (parts.size() > 1 ? ProcessName(part) : part);
            lookup << orv::withoutQuotes(part);
        }
        if (parts.size() > 1) {
            table.written = written.join(u'.');
            table.alias = written.value(written.size() - 1);
        }
        table.lookup = lookup.join(u'.');
        for (const TorvQDParser::Node& child : node.Children()) {
            if (child->Kind() == otAlias && isName(child->Text()))
                useAlias(table, child->Text(), child->End());
        }
        return table;
    }

    static void useAlias(NamedTable& table, const QString& text, int end) {
        table.alias = text.startsWith(u'\'') ? orv::quotedName(orv::withoutQuotes(text)) : text;
        table.hasOwnAlias = true;
        table.end = end;
    }

    static bool hasAlias(const TorvQDParser& node) {
        return node.Count() > 0 && node.Children().back()->Kind() == otAlias;
    }

    // Behind AS, a procedure or a bracket the tree knows an alias behind one blank only; here it
    // may stand behind any number of them.
    void readDetachedAlias(NamedTable& table) const {
        if (!m_ledger) return;
        const orv::TokenRun behind = m_ledger->tokensIn(table.end, m_node.End());
        const int index = !behind.isEmpty() && behind.is(0, u"AS") ? 1 : 0;
        if (index >= behind.size() || behind[index].depth != topLevel) return;
        const QString text = orv::upperOutsideQuotes(behind.textOf(index));
        const orv::WordInfo info = orv::wordInfo(text);
        const bool continues = info.is(orv::wordJoin) || info.is(orv::wordNeverAlias) ||
                               info.is(orv::wordOn) || info.is(orv::wordClause);
        if (isName(text) && !continues) useAlias(table, text, behind[index].end);
    }

    // The host is not asked for the alias of a derived table.
    void loseDerivedTable(const TorvQDParser& node) {
        NamedTable bracket{{}, {}, {}, false, node.Start(), node.End()};
        readDetachedAlias(bracket);
        m_readUpTo = bracket.end;
        report(bracket, QStringLiteral("A bracket in FROM cannot be shown as a table: it is not "
                                       "loaded."));
    }

    void report(const NamedTable& table, const QString& what) {
        if (m_ledger) m_ledger->report(table.start, table.end, what);
    }

    // Commas and CROSS JOIN are written again as commas.
    void placeClauseWords() {
        if (!m_guard || !m_ledger) return;
        const orv::TokenRun run = m_ledger->tokensIn(m_node.Start(), m_node.End());
        for (int index = 0; index < run.size(); ++index) {
            const bool isCross =
                run.is(index, u"CROSS") && index + 1 < run.size() && run.is(index + 1, u"JOIN");
            const bool isComma =
                run[index].kind == orv::SqlToken::Comma && run[index].depth == topLevel;
            if (index == 0 || isComma) m_ledger->place(run.mid(index, 1));
            if (isCross) m_ledger->place(run.mid(index, 2));
        }
    }

    TorvQDWorkArea& m_area;
    QPointer<TorvQDWorkArea> m_guard;
    const TorvQDParser& m_node;
    orv::LoadLedger* m_ledger;
    int m_readUpTo = 0;  // nodes in front of it are part of what was loaded
};

QString TorvQDWorkArea::GetSQLStatment() const {
    std::vector<const TorvQDTable*> order;
    if (m_owner->KeepMeaning()) {
        order.assign(m_creation.begin(), m_creation.end());
    } else {
        for (const auto& table : m_tables) order.push_back(table.get());
    }
    QStringList items;
    for (const TorvQDTable* table : order) {
        const QString alias = table->GetAlias();
        items << (alias == table->TableName ? table->TableName : table->TableName + u' ' + alias);
    }
    return items.join(u',' + crLf);
}

void TorvQDWorkArea::LoadSQL(const TorvQDParser& Node) {
    if (Node.Location() != inFrom) {
        throw orv::Error(QStringLiteral("There is not valid object for extract tables"));
    }
    if (!m_owner->canGetTableFields()) {
        throw orv::Error(QStringLiteral(
            "Event OnGetTableFields of TorvQueryBuilder class must be assigned for getting proper "
            "information about fields of tables"));
    }
    ClearContents();
    beginChange();
    const QPointer<TorvQDWorkArea> self(this);
    try {
        FromLoader(*this, Node).load();
    } catch (...) {
        if (self) endChange();
        throw;
    }
    if (!self) return;
    viewport()->update();
    endChange();
}
