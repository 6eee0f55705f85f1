// SPDX-License-Identifier: MIT
#pragma once

#include "tables/TableSource.h"

#include <QPointer>
#include <QSet>
#include <QWidget>

#include <optional>

class QAction;
class QLabel;
class QLineEdit;
class QModelIndex;
class QPoint;
class QProgressBar;
class QToolButton;
class QTreeView;

namespace orvquery {

class BackgroundDatabase;
class SchemaModel;

/// The tables, views and procedures of a source as a tree that unfolds to their columns, with a
/// line that filters them, and what goes on while a database is read. A double click, Enter or a
/// drag to the diagram adds tables.
class SchemaBrowser : public QWidget {
    Q_OBJECT

public:
    explicit SchemaBrowser(QWidget* parent = nullptr);

    /// Shows these tables of a source, which must outlive the browser or its place in it.
    void setSource(const TableSource& source, const std::vector<TableEntry>& entries);
    /// Shows a database, which is listed, and follows it from now on.
    void setDatabase(BackgroundDatabase& database);
    /// Shows how the opening of a database goes, while what was there stays; until it has ended.
    void watchOpening(BackgroundDatabase& database);
    /// Reads the list of tables anew.
    [[nodiscard]] QAction* refreshAction() const { return m_refresh; }

    void focusFilter();

Q_SIGNALS:
    void tablesChosen(const QList<orvquery::TableName>& names);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildList();
    void buildStatus();
    QAction* addAction(const QString& text, const QKeySequence& shortcut,
                       void (SchemaBrowser::*slot)());
    void fill(const std::vector<TableEntry>& entries, const QStringList& defaultSchemas);
    void listAgain();
    void filter(const QString& text);
    void unfold();
    void fold(const QModelIndex& index);
    void selectFirst();
    void foldCurrent();
    void askColumns(const TableName& name);
    void activate(const QModelIndex& index);
    [[nodiscard]] QList<TableName> chosen() const;
    void addChosen();
    void copyName();
    void copySelect();
    void copy(const QString& pattern);
    void refresh();
    void showMenu(const QPoint& place);
    void follow(BackgroundDatabase& database);
    void showReading(const QString& text);
    void showTables();
    void showProblem(const QString& sentence);
    void showNothing();
    void cancelReading();
    [[nodiscard]] bool handleKey(QObject* watched, int key);

    QLineEdit* m_filter;
    QTreeView* m_list;
    SchemaModel* m_model;
    QWidget* m_status;
    QProgressBar* m_progress;
    QLabel* m_statusText;
    QToolButton* m_cancel;
    QToolButton* m_tryAgain;
    QAction* m_add;
    QAction* m_copyName;
    QAction* m_copySelect;
    QAction* m_refresh;
    const TableSource* m_source = nullptr;
    QPointer<BackgroundDatabase> m_database;  ///< the source, when it is one
    QPointer<BackgroundDatabase> m_watched;   ///< what goes on is told of this one
    QSet<TableName> m_unfolded;
    bool m_isUnfolding = false;  ///< of its own, not of a person's
};

}  // namespace orvquery
