// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "criteria/ORVQDConditionReader.h"
#include "criteria/ORVQDWhereRows.h"
#include "data/FieldTypes.h"

#include <QStringList>
#include <QWidget>

#include <memory>
#include <optional>

class IPagesHost;
class TorvQDParser;

/// One boolean condition of the query as a tree of rows: WHERE on one page, HAVING on another. The
/// root row is a group and always there once the panel is active. Owned by its page.
class ORV_EXPORT TorvQDWherePanel : public QWidget {
    Q_OBJECT

public:
    /// Raises orv::Error "Invalide parent for conditions panel" without a parent.
    explicit TorvQDWherePanel(QWidget* Parent);
    ~TorvQDWherePanel() override;

    const TGroupOperators* GroupOpers = nullptr;  ///< borrowed
    const QStringList* Functions = nullptr;  ///< functions of their own cells; none: no such cells
    const TOperatorList* Operators = nullptr;  ///< borrowed

    /// Makes the root row. The catalogues are there by now.
    void Activate();

    [[nodiscard]] TorvQDWhereRow* rootRow() const;
    /// The condition over several lines; nine blanks for an empty panel.
    [[nodiscard]] QString GetSQLStatment() const;
    /// Rebuilds the rows from a WHERE or HAVING node. Raises orv::Error when the node is another.
    void LoadSQL(const TorvQDParser& Node);
    void ClearContents();
    /// Replaces the alias in front of field names, as a whole word and outside quotes.
    void ChangeAlias(const QString& NewAlias, const QString& OldAlias);

    [[nodiscard]] const TorvQDGroupFunc* FindGroupFunc(const QString& Name) const;
    /// Data type of a qualified field of the diagram. Raises orv::Error "Fatal Error! Class
    /// TorvQueryBuilder not found" when the panel lies in no query builder.
    [[nodiscard]] bool GetFieldType(const QString& Text, TFieldType& FieldType) const;
    /// Whether the types of the row's sides go together.
    [[nodiscard]] bool CheckTypeMisMatch(const QString& Text, const TorvQDControl& Element) const;

    /// By what conditions are read here; `keepMeaning` binds AND tighter than OR.
    [[nodiscard]] orv::ConditionRules readingRules(bool keepMeaning) const;

    /// The row that commands are about; none at first.
    TorvQDControl* CurrentElement = nullptr;
    TorvQDControl* ActiveElement = nullptr;

private:
    [[nodiscard]] IPagesHost* host() const;
    [[nodiscard]] bool writesMeaning(const std::vector<orv::ConditionElement>& elements,
                                     const orv::TokenRun& condition) const;
    [[nodiscard]] bool fitsType(const QString& text, TFieldType type) const;

    orv::ConditionCatalogues m_catalogues;
    std::unique_ptr<TorvQDWhereRows> m_root;
};
