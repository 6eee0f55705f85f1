// SPDX-License-Identifier: MIT
#pragma once

#include "connections/SavedConnections.h"
#include "window/ConnectionTest.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QProgressBar;
class QPushButton;

namespace orvquery {

class ConnectionForm;

/// Asks which database to connect to: one of those that were given a name, or one whose parts are
/// put together, tried out and given a name here. The address in one line and its parts in fields
/// say the same at all times.
class ConnectionDialog : public QDialog {
    Q_OBJECT

public:
    explicit ConnectionDialog(QWidget* parent = nullptr);
    ~ConnectionDialog() override;

    [[nodiscard]] DatabaseAddress address() const;
    /// The name that was typed for it and is not saved yet; empty when there is none.
    [[nodiscard]] QString typedName() const;
    /// Fills the fields as if they were typed; a sentence beside them when the address cannot be
    /// used.
    void setAddress(const DatabaseAddress& address, const QString& name = {});
    /// Says one sentence beside the fields.
    void setProblem(const QString& sentence);

    /// Replaces how the button Test opens databases.
    void setOpen(ConnectionTest::Open open) { m_test->setOpen(std::move(open)); }

    void accept() override;

private:
    void buildList();
    void buildState();
    QPushButton* addButton(const QString& text, const char* name, void (ConnectionDialog::*slot)());
    void arrange();
    void listConnections(const QString& current);
    void beginWithLast();
    void showSelected();
    void showAddress(const DatabaseAddress& address);
    void rename(QListWidgetItem* item);
    void addressTyped(const QString& text);
    void addressLeft();
    void formEdited();
    void writeAddress();
    void say(const QString& sentence);
    [[nodiscard]] bool isFilledIn();

    void test();
    void testEnded(bool isConnected, const QString& sentence);
    void stopTest();
    void save();
    void forget();

    SavedConnections m_connections;
    QListWidget* m_list;
    QLineEdit* m_name;
    ConnectionForm* m_form;
    QLineEdit* m_address;
    QLabel* m_state;
    QProgressBar* m_busy;
    ConnectionTest* m_test;
    QPushButton* m_testButton = nullptr;
    QPushButton* m_save = nullptr;
    QPushButton* m_forget = nullptr;
    QPushButton* m_connect = nullptr;
    QPushButton* m_cancel = nullptr;
    QString m_addressProblem;  ///< what is wrong with the line that was typed
    bool m_isListing = false;
};

}  // namespace orvquery
