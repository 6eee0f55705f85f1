// SPDX-License-Identifier: MIT
// The FROM clause of the work area, written and loaded.
#include "core/Error.h"
#include "core/Text.h"
#include "data/ProcessName.h"
#include "parser/ORVQDLedger.h"
#include "parser/ORVQDParser.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QStringList>

namespace {

const QString crLf = QStringLiteral("\r\n");

/// A table as the text of a FROM clause names it.
struct NamedTable {
    QString written;  ///< as FROM writes it again
    QString lookup;   ///< as the host is asked for it
    QString alias;    ///< as given; empty without one
    int start;        ///< span, alias included
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

QString withoutEnclosingQuotes(const QString& name) {
    const bool quoted = name.size() > 1 && name.front() == name.back() &&
                        (name.front() == u'"' || name.front() == u'\'');
    if (!quoted) return name;
    return name.front() == u'"' ? orv::unquotedName(name) : name.mid(1, name.size() - 2);
}

}  // namespace

/// Rebuilds the boxes of a work area from a FROM node, and accounts for the node's text.
class FromLoader {
public:
    FromLoader(TorvQDWorkArea& area, const TorvQDParser& node)
        : m_area(area), m_guard(&area), m_node(node), m_ledger(area.m_owner->ledger()) {}

    void load() {
        loadItems(m_node);
        placeClauseWords();
    }

private:
    /// The items of the FROM node, or of a join node.
    void loadItems(const TorvQDParser& parent) {
        for (int index = 0; index < parent.Count() && m_guard; ++index) {
            const TorvQDParser& child = *parent.Child(index);
            if (child.Kind() == otTable) {
                index += loadTable(parent, index);
            } else if (child.Kind() == otJoin) {
                const bool isNatural = index > 0 && parent.Child(index - 1)->Text() == u"NATURAL";
                loadJoin(child, isNatural ? parent.Child(index - 1)->Start() : child.Start());
            } else if (child.Kind() == otBrakets) {
                index += loseDerivedTable(parent, index);
            }
        }
    }

    void loadJoin(const TorvQDParser& join, int start) {
        if (join.Count() == 0 || join.Child(0)->Kind() != otTable) {
            throw orv::Error(QStringLiteral("There is no Table for join"));
        }
        loadItems(join);
        if (!m_guard || !m_ledger) return;
        m_ledger->report(start, join.End(),
                         QStringLiteral("Joins are not held yet: the table is loaded without its "
                                        "join."));
    }

    // Loads the table node at `index` and returns how many nodes behind it belong to it.
    int loadTable(const TorvQDParser& parent, int index) {
        const TorvQDParser& node = *parent.Child(index);
        NamedTable table = named(node);
        const int taken = table.alias.isEmpty() ? takeDetachedAlias(parent, index, table) : 0;
        std::unique_ptr<TDataSet> dataSet;
        std::unique_ptr<TParams> params;
        m_area.m_owner->getTableFields(table.lookup, dataSet, params);
        if (!m_guard) return taken;
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
        return taken;
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
            report(table, QStringLiteral("Another table has this alias, too."));
        } else if (m_ledger) {
            m_ledger->place(table.start, table.end);
        }
    }

    // A table that is mentioned again reuses its box; with meaning kept, only when the second
    // mention has no alias of its own.
    [[nodiscard]] bool boxToReuse(const NamedTable& table) const {
        if (m_area.m_owner->KeepMeaning() && !table.alias.isEmpty()) return false;
        return m_area.m_byAlias.contains(table.lookup) ||
               m_area.m_byAlias.contains(orv::quotedName(table.lookup));
    }

    static NamedTable named(const TorvQDParser& node) {
        NamedTable table{node.Text(), {}, {}, node.Start(), node.End()};
        const QStringList parts = splitAtFullStops(node.Text());
        QStringList written;
        QStringList lookup;
        for (const QString& part : parts) {
            if (part.isEmpty()) continue;
            written << (parts.size() > 1 ? ProcessName(part) : part);
            lookup << withoutEnclosingQuotes(part);
        }
        if (parts.size() > 1) {
            table.written = written.join(u'.');
            table.alias = written.value(written.size() - 1);
        }
        table.lookup = lookup.join(u'.');
        for (const TorvQDParser::Node& child : node.Children()) {
            if (child->Kind() == otAlias && isName(child->Text())) useAlias(table, *child);
        }
        return table;
    }

    static void useAlias(NamedTable& table, const TorvQDParser& alias) {
        const QString text = alias.Text();
        table.alias = text.startsWith(u'\'') ? orv::quotedName(text.mid(1, text.size() - 2)) : text;
        table.end = alias.End();
    }

    // Between AS and an alias the tree knows one blank only: behind more of them the alias stands
    // as a table of its own, with no comma in front of it.
    int takeDetachedAlias(const TorvQDParser& parent, int index, NamedTable& table) const {
        if (index + 1 >= parent.Count()) return 0;
        const TorvQDParser& next = *parent.Child(index + 1);
        if (next.Kind() != otTable || next.Count() > 0 || !isDetachedAlias(table.end, next))
            return 0;
        useAlias(table, next);
        return 1;
    }

    [[nodiscard]] bool isDetachedAlias(int end, const TorvQDParser& next) const {
        if (!m_ledger || next.Location() == inFunction || !isName(next.Text())) return false;
        const orv::TokenRun between = m_ledger->tokensIn(end, next.Start());
        return between.isEmpty() || (between.size() == 1 && between.is(0, u"AS"));
    }

    // The host is not asked for the alias of a derived table.
    int loseDerivedTable(const TorvQDParser& parent, int index) {
        const TorvQDParser& node = *parent.Child(index);
        int end = node.End();
        int taken = 0;
        if (index + 1 < parent.Count()) {
            const TorvQDParser& next = *parent.Child(index + 1);
            if (next.Kind() == otTable && isDetachedAlias(end, next)) {
                end = next.End();
                taken = 1;
            }
        }
        if (m_ledger) {
            m_ledger->report(node.Start(), end,
                             QStringLiteral("A bracket in FROM cannot be shown as a table: it is "
                                            "not loaded."));
        }
        return taken;
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
                run[index].kind == orv::SqlToken::Comma && run[index].depth == run[0].depth;
            if (index == 0 || isComma) m_ledger->place(run.mid(index, 1));
            if (isCross) m_ledger->place(run.mid(index, 2));
        }
    }

    TorvQDWorkArea& m_area;
    QPointer<TorvQDWorkArea> m_guard;
    const TorvQDParser& m_node;
    orv::LoadLedger* m_ledger;
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
