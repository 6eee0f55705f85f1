// SPDX-License-Identifier: MIT
#pragma once

#include "joins/JoinProposals.h"

#include <QHash>
#include <QObject>
#include <QPointer>

#include <optional>

class QAction;
class QWidget;
class TorvQDLink;
class TorvQDListItem;
class TorvQDTable;
class TorvQueryBuilder;

namespace orvquery {

/// Adds tables to the diagram together with the joins that the database declares or that a person
/// chooses from its proposals. Owned by the window, beside which the control may die first.
class JoinAssistant : public QObject {
    Q_OBJECT

public:
    JoinAssistant(TorvQueryBuilder& builder, QWidget& window);

    /// Where tables come from now on, and which there are; a database that is read in the
    /// background tells by itself when it was listed anew. The source must outlive the assistant or
    /// its place in it. Its foreign keys are asked for when they are needed first.
    void setSource(const TableSource& source, const std::vector<TableEntry>& tables);

    /// Whether joins are proposed, which is remembered from session to session.
    [[nodiscard]] QAction* switchAction() const { return m_switch; }

    /// Adds a box of the table and, in the same change, its joins. When several fit, a dialog asks
    /// first. Raises orv::Error when the table is gone or its columns cannot be read; that joins
    /// cannot be proposed is no error.
    void addTable(const TableName& name);

private:
    /// A box, and its table as the source knows it.
    struct Box {
        QPointer<TorvQDTable> box;
        std::optional<TableDescription> table;
    };
    /// A join, or several one after the other.
    struct Wish {
        Box present;                            ///< where it begins
        std::vector<TableDescription> between;  ///< what it brings along
        std::vector<JoinStep> steps;
    };

    void setTables(const std::vector<TableEntry>& tables);
    [[nodiscard]] std::vector<TableDescription> describeAll(
        const std::vector<TableName>& names) const;
    [[nodiscard]] std::vector<JoinProposal> choose(const TableDescription& table,
                                                   const std::vector<Box>& present);
    [[nodiscard]] std::vector<Box> boxes();
    [[nodiscard]] JoinDiagram diagramOf(const std::vector<Box>& boxes) const;
    [[nodiscard]] std::vector<int> ask(const QString& table, const JoinOffer& offer);
    [[nodiscard]] const JoinGraph& graph();
    [[nodiscard]] std::optional<TableDescription> described(const QString& written);
    [[nodiscard]] QString aliasToBe(const TableDescription& table) const;
    [[nodiscard]] Box addBox(const TableDescription& table);
    void addWithJoins(const TableDescription& table, std::vector<Wish> wishes);
    void qualifyFields(const TableDescription& table, std::vector<Wish>& wishes);
    void link(const Box& left, const Box& right, const JoinStep& step);

    QPointer<TorvQueryBuilder> m_builder;
    QWidget& m_window;
    QAction* m_switch;
    const TableSource* m_source = nullptr;
    std::vector<TableEntry> m_tables;
    std::optional<JoinGraph> m_graph;  ///< once it was asked for
    int m_sourceNumber = 0;            ///< counts the sources
    QMetaObject::Connection m_listing;
    QHash<QString, std::optional<TableDescription>> m_described;  ///< by the names of boxes
};

}  // namespace orvquery
