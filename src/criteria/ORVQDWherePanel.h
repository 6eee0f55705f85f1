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
class QPlainTextEdit;
class TorvQDParser;

namespace orv {
class LoadLedger;
}

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
    /// Rebuilds the rows from a WHERE or HAVING node. Raises orv::Error when the node is another or
    /// nests too deeply; the rows stay as they were then.
    void LoadSQL(const TorvQDParser& Node);
    /// Raises orv::Error when the condition of a node nests deeper than orv::deepestCondition.
    /// Groups count: where AND and OR are combined from left to right, each change of the
    /// connective nests one more.
    void checkLoadable(const TorvQDParser& node, const orv::LoadLedger& ledger,
                       bool keepMeaning) const;
    void ClearContents();
    /// Replaces the alias in front of field names, as a whole word and outside quotes.
    void ChangeAlias(const QString& NewAlias, const QString& OldAlias);

    /// Before and after the operator list is replaced: rows go over to the operator of the same
    /// name, or to the first one. Arguments stay as they are.
    void PrepareToReloadOperators();
    void ReloadOperators();

    [[nodiscard]] const TorvQDGroupFunc* FindGroupFunc(const QString& Name) const;
    /// Data type of a qualified field of the diagram. Raises orv::Error "Fatal Error! Class
    /// TorvQueryBuilder not found" when the panel lies in no query builder.
    [[nodiscard]] bool GetFieldType(const QString& Text, TFieldType& FieldType) const;
    /// Whether the types of the row's sides go together.
    [[nodiscard]] bool CheckTypeMisMatch(const QString& Text, const TorvQDControl& Element) const;

    /// Shows the rows as they are now; the query builder calls it once per change.
    void refreshView();

    /// By what conditions are read here; `keepMeaning` binds AND tighter than OR.
    [[nodiscard]] orv::ConditionRules readingRules(bool keepMeaning) const;

    /// The row that commands are about; none at first.
    TorvQDControl* CurrentElement = nullptr;
    TorvQDControl* ActiveElement = nullptr;

protected:
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] IPagesHost* host() const;
    [[nodiscard]] bool fitsType(const QString& text, TFieldType type) const;
    void clearRows();
    void loadRun(const orv::TokenRun& run, orv::LoadLedger* ledger, bool keepsMeaning);
    void checkDepth(const orv::TokenRun& condition, bool keepsMeaning) const;
    void compareWritten(const std::vector<orv::ConditionElement>& loaded, const orv::TokenRun& run,
                        orv::LoadLedger& ledger) const;

    orv::ConditionCatalogues m_catalogues;
    std::unique_ptr<TorvQDWhereRows> m_root;
    std::vector<std::pair<TorvQDWhereRow*, QString>> m_operatorNames;  // while it is replaced
    QPlainTextEdit* m_outline;                                         // the rows, to be read
    bool m_isOutdated = true;  // they changed since they were shown
};
