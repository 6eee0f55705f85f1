// SPDX-License-Identifier: MIT
#pragma once

#include "window/CompareDialog.h"

#include <QObject>

#include <functional>

class QAction;
class TorvQueryBuilder;

namespace orvquery {

class TableSource;

/// Compares the query of the window with one in a file.
class QueryComparer : public QObject {
    Q_OBJECT

public:
    /// `source` gives the tables of the database that is open, which files are read with.
    QueryComparer(TorvQueryBuilder& builder, std::function<const TableSource&()> source,
                  QWidget* window);

    [[nodiscard]] QAction* action() const { return m_action; }

    /// Compares with a query file, a statement or a state, and shows the differences until the
    /// dialog is closed. A message box says so when the file cannot be used.
    void compareWith(const QString& path);

private:
    void chooseFile();
    void show(const QString& path);

    TorvQueryBuilder& m_builder;
    std::function<const TableSource&()> m_source;
    QWidget* m_window;
    QAction* m_action;
};

}  // namespace orvquery
