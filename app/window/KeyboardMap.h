// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

#include <vector>

class QLineEdit;
class QTreeWidget;

namespace orvquery {

/// One line of the keyboard map.
struct KeyEntry {
    QString place;  ///< where the keys are keys
    QString keys;
    QString meaning;

    friend bool operator==(const KeyEntry&, const KeyEntry&) = default;
};

/// The lines of the tables below each heading of a text like docs/keys.md.
[[nodiscard]] std::vector<KeyEntry> keysOfDocument(const QString& markdown);

/// The shortcuts of the menus of a window, in their order.
[[nodiscard]] std::vector<KeyEntry> keysOfMenus(const QWidget& window);

/// All keys of the program in a window of its own that stays while one works, with a search.
class KeyboardMap : public QWidget {
    Q_OBJECT

public:
    /// Of the window's menus and of the program's documents.
    explicit KeyboardMap(QWidget* window);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fill(const std::vector<KeyEntry>& entries);
    void search(const QString& text);

    QLineEdit* m_search;
    QTreeWidget* m_list;
};

}  // namespace orvquery
