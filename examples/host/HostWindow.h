// SPDX-License-Identifier: MIT
#pragma once

#include <orvquerybuilder/ORVQDWindow.h>

#include <QMainWindow>

class QListWidget;
class QPlainTextEdit;

/// A program around the query builder: a list of tables to drag from, the statement to read, edit
/// and load, and what loading had to say about it.
class HostWindow : public QMainWindow {
    Q_OBJECT

public:
    HostWindow();

    /// Loads a statement into the control, and lists what it could not hold.
    void load(const QString& text);
    [[nodiscard]] QString statement() const;

private:
    void createPanes();
    void addOperators();
    void answerQuestions();
    void takeDrops();
    void addTable(const QString& name, const QPoint* viewPoint);
    void showStatement();
    void showFinding(int row);
    void tell(const QString& text);

    TorvQueryBuilder* m_builder;
    QListWidget* m_tables;
    QPlainTextEdit* m_statement;
    QListWidget* m_findings;
};
