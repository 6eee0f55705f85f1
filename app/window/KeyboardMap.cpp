// SPDX-License-Identifier: MIT
#include "window/KeyboardMap.h"

#include <QAction>
#include <QCoreApplication>
#include <QFile>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace orvquery {

namespace {

constexpr QSize firstSize(720, 560);

// The menus say it better: they know the desktop's own keys.
QString menusHeading() {
    return QStringLiteral("Menus of orvquery");
}

QString document() {
    QFile file(QStringLiteral(":/orvquery/keys.md"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString withoutMnemonic(QString text) {
    text.remove(QStringLiteral("..."));
    return text.remove(u'&');
}

QString keysOf(const QAction& action) {
    QStringList keys;
    const QList<QKeySequence> shortcuts = action.shortcuts();
    for (const QKeySequence& shortcut : shortcuts) {
        keys += shortcut.toString(QKeySequence::NativeText);
    }
    return keys.join(QStringLiteral(", "));
}

void addKeysOf(const QMenu& menu, const QString& place, std::vector<KeyEntry>& entries) {
    const QList<QAction*> actions = menu.actions();
    for (const QAction* action : actions) {
        if (const auto* sub = action->menu<QMenu*>()) addKeysOf(*sub, place, entries);
        const QString keys = keysOf(*action);
        // The text of an item may say what it would do now; that of its icon does not.
        if (!keys.isEmpty()) entries.push_back({place, keys, withoutMnemonic(action->iconText())});
    }
}

}  // namespace

std::vector<KeyEntry> keysOfDocument(const QString& markdown) {
    std::vector<KeyEntry> entries;
    QString place;
    bool isHead = true;
    const QStringList lines = markdown.split(u'\n');
    for (const QString& line : lines) {
        if (line.startsWith(QStringLiteral("## "))) place = line.mid(3).trimmed();
        if (!line.startsWith(u'|')) {
            isHead = true;
            continue;
        }
        // The first line of a table has the titles, a line of dashes ends them.
        if (line.startsWith(QStringLiteral("|--"))) isHead = false;
        if (isHead || line.startsWith(QStringLiteral("|--"))) continue;
        entries.push_back(
            {place, line.section(u'|', 1, 1).trimmed(), line.section(u'|', 2, -2).trimmed()});
    }
    return entries;
}

std::vector<KeyEntry> keysOfMenus(const QWidget& window) {
    std::vector<KeyEntry> entries;
    const auto* mainWindow = qobject_cast<const QMainWindow*>(&window);
    if (mainWindow == nullptr) return entries;
    const QList<QAction*> menus = mainWindow->menuBar()->actions();
    for (const QAction* action : menus) {
        const auto* menu = action->menu<QMenu*>();
        // The documents have places of these names, too.
        const QString place =
            QCoreApplication::translate("orvquery", "%1 menu").arg(withoutMnemonic(action->text()));
        if (menu != nullptr) addKeysOf(*menu, place, entries);
    }
    return entries;
}

KeyboardMap::KeyboardMap(QWidget* window)
    : QWidget(window, Qt::Window), m_search(new QLineEdit(this)), m_list(new QTreeWidget(this)) {
    setObjectName(QStringLiteral("keyboardMap"));
    setWindowTitle(tr("Keyboard map"));
    resize(firstSize);
    m_search->setObjectName(QStringLiteral("keySearch"));
    m_search->setPlaceholderText(tr("Search keys and what they do"));
    m_search->setClearButtonEnabled(true);
    m_list->setObjectName(QStringLiteral("keyList"));
    m_list->setAccessibleName(tr("Keys"));
    m_list->setHeaderLabels({tr("Keys"), tr("What they do")});
    m_list->setAlternatingRowColors(true);

    std::vector<KeyEntry> entries = keysOfMenus(*window);
    for (const KeyEntry& entry : keysOfDocument(document())) {
        if (entry.place != menusHeading()) entries.push_back(entry);
    }
    fill(entries);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_search);
    layout->addWidget(m_list, 1);
    connect(m_search, &QLineEdit::textChanged, this, &KeyboardMap::search);
    m_search->setFocus();
}

// Neither the search nor the list uses it.
void KeyboardMap::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void KeyboardMap::fill(const std::vector<KeyEntry>& entries) {
    QTreeWidgetItem* place = nullptr;
    for (const KeyEntry& entry : entries) {
        if (place == nullptr || place->text(0) != entry.place) {
            place = new QTreeWidgetItem(m_list, {entry.place});
            place->setFirstColumnSpanned(true);
            place->setExpanded(true);
        }
        auto* line = new QTreeWidgetItem(place, {entry.keys, entry.meaning});
        line->setToolTip(0, entry.keys);
        line->setToolTip(1, entry.meaning);
    }
    m_list->header()->resizeSection(0, firstSize.width() / 3);
}

// A place whose name is found shows all of its keys.
void KeyboardMap::search(const QString& text) {
    for (int index = 0; index < m_list->topLevelItemCount(); ++index) {
        QTreeWidgetItem* place = m_list->topLevelItem(index);
        const bool isPlace = place->text(0).contains(text, Qt::CaseInsensitive);
        bool isAny = false;
        for (int row = 0; row < place->childCount(); ++row) {
            QTreeWidgetItem* line = place->child(row);
            const bool isFound = isPlace || line->text(0).contains(text, Qt::CaseInsensitive) ||
                                 line->text(1).contains(text, Qt::CaseInsensitive);
            line->setHidden(!isFound);
            isAny = isAny || isFound;
        }
        place->setHidden(!isAny);
    }
}

}  // namespace orvquery
