// SPDX-License-Identifier: MIT
#include "window/ConnectionDialog.h"

#include "core/Error.h"
#include "database/Engine.h"
#include "toolkit/Services.h"
#include "window/ConnectionForm.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>

#include <algorithm>

namespace orvquery {

namespace {

constexpr int stateLines = 2;
constexpr int listWidthInCharacters = 26;
constexpr int nameRole = Qt::UserRole;

}  // namespace

ConnectionDialog::ConnectionDialog(QWidget* parent)
    : QDialog(parent),
      m_list(new QListWidget(this)),
      m_name(new QLineEdit(this)),
      m_form(new ConnectionForm(this)),
      m_address(new QLineEdit(this)),
      m_state(new QLabel(this)),
      m_busy(new QProgressBar(this)),
      m_test(new ConnectionTest(this)) {
    setWindowTitle(tr("Connect to a database"));
    m_name->setObjectName(QStringLiteral("name"));
    m_name->setPlaceholderText(tr("remembers it under this name"));
    m_address->setObjectName(QStringLiteral("address"));
    buildList();
    buildState();
    m_testButton = addButton(tr("&Test"), "test", &ConnectionDialog::test);
    m_save = addButton(tr("Sa&ve"), "save", &ConnectionDialog::save);
    m_forget = addButton(tr("&Forget"), "forget", &ConnectionDialog::forget);
    m_connect = addButton(tr("&Connect"), "connect", &ConnectionDialog::accept);
    m_cancel = addButton(tr("Cance&l"), "cancel", &ConnectionDialog::reject);
    m_connect->setDefault(true);
    arrange();

    connect(m_form, &ConnectionForm::edited, this, [this] { orv::guarded([&] { formEdited(); }); });
    connect(m_address, &QLineEdit::textEdited, this,
            [this](const QString& text) { orv::guarded([&] { addressTyped(text); }); });
    connect(m_address, &QLineEdit::editingFinished, this, &ConnectionDialog::addressLeft);
    connect(m_test, &ConnectionTest::finished, this, &ConnectionDialog::testEnded);
    listConnections({});
    beginWithLast();
    m_form->fieldToBeginWith()->setFocus();
}

// Going, the fields lose the focus and tell of it.
ConnectionDialog::~ConnectionDialog() {
    const auto widgets = findChildren<QWidget*>();
    for (QWidget* widget : widgets) disconnect(widget, nullptr, this, nullptr);
}

void ConnectionDialog::buildList() {
    m_list->setObjectName(QStringLiteral("connections"));
    m_list->setAccessibleName(tr("Saved connections"));
    m_list->setEditTriggers(QAbstractItemView::EditKeyPressed);
    m_list->setToolTip(tr("F2 changes a name"));
    m_list->setMinimumWidth(m_list->fontMetrics().averageCharWidth() * listWidthInCharacters);
    connect(m_list, &QListWidget::currentRowChanged, this,
            [this] { orv::guarded([&] { showSelected(); }); });
    connect(m_list, &QListWidget::itemClicked, this,
            [this] { orv::guarded([&] { showSelected(); }); });
    connect(m_list, &QListWidget::itemDoubleClicked, this,
            [this] { orv::guarded([&] { accept(); }); });
    connect(m_list, &QListWidget::itemChanged, this,
            [this](QListWidgetItem* item) { orv::guarded([&] { rename(item); }); });
}

void ConnectionDialog::buildState() {
    m_state->setObjectName(QStringLiteral("state"));
    m_state->setTextFormat(Qt::PlainText);
    m_state->setWordWrap(true);
    m_state->setAlignment(Qt::AlignTop | Qt::AlignLeading);
    m_state->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // The lines of most texts are always there, so that nothing moves while one types.
    m_state->setMinimumHeight(stateLines * m_state->fontMetrics().lineSpacing());
    m_busy->setObjectName(QStringLiteral("busy"));
    m_busy->setAccessibleName(tr("Connecting"));
    m_busy->setRange(0, 0);
    m_busy->setTextVisible(false);
    m_busy->setMaximumHeight(m_busy->fontMetrics().height() / 2);
    QSizePolicy policy = m_busy->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    m_busy->setSizePolicy(policy);
    m_busy->hide();
}

QPushButton* ConnectionDialog::addButton(const QString& text, const char* name,
                                         void (ConnectionDialog::*slot)()) {
    auto* button = new QPushButton(text, this);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this,
            [this, slot] { orv::guarded([&] { (this->*slot)(); }); });
    return button;
}

//   saved   | name, kind, host ...
//           | address
//           | what became of it
//   forget  | test, save    connect, cancel
void ConnectionDialog::arrange() {
    auto* listLabel = new QLabel(tr("&Saved connections:"), this);
    listLabel->setBuddy(m_list);
    auto* left = new QVBoxLayout;
    left->addWidget(listLabel);
    left->addWidget(m_list, 1);
    left->addWidget(m_forget, 0, Qt::AlignLeading);

    m_form->addInFront(tr("&Name:"), m_name);
    m_form->addBehind(tr("&Address:"), m_address);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_testButton);
    buttons->addWidget(m_save);
    buttons->addStretch(1);
    buttons->addWidget(m_connect);
    buttons->addWidget(m_cancel);

    auto* right = new QVBoxLayout;
    right->addWidget(m_form);
    right->addWidget(m_state);
    right->addWidget(m_busy);
    right->addStretch(1);
    right->addLayout(buttons);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(left, 1);
    layout->addLayout(right, 3);

    setTabOrder(m_list, m_name);
    QWidget* before = m_address;
    for (QPushButton* button : {m_testButton, m_save, m_connect, m_cancel, m_forget}) {
        setTabOrder(before, button);
        before = button;
    }
}

void ConnectionDialog::listConnections(const QString& current) {
    const QScopedValueRollback<bool> listing(m_isListing, true);
    m_list->clear();
    for (const SavedConnection& each : m_connections.named()) {
        auto* item = new QListWidgetItem(each.name, m_list);
        item->setData(nameRole, each.name);
        item->setToolTip(each.address.toUrl());
        item->setFlags(item->flags() | Qt::ItemIsEditable);
        if (each.name == current) m_list->setCurrentItem(item);
    }
    m_forget->setEnabled(m_list->currentItem() != nullptr);
}

// Whoever connects again does so to the same one more often than not.
void ConnectionDialog::beginWithLast() {
    for (const DatabaseAddress& last : m_connections.recent()) {
        const Engine* engine = engineOf(last.scheme);
        if (engine == nullptr || !driverProblem(*engine).isEmpty()) continue;
        const std::vector<SavedConnection> named = m_connections.named();
        const auto found =
            std::find_if(named.begin(), named.end(),
                         [&](const SavedConnection& each) { return each.address == last; });
        if (found == named.end()) return showAddress(last);
        listConnections(found->name);
        return showSelected();
    }
    writeAddress();
}

void ConnectionDialog::showSelected() {
    if (m_isListing) return;
    const QListWidgetItem* item = m_list->currentItem();
    m_forget->setEnabled(item != nullptr);
    if (item == nullptr) return;
    const QString name = item->data(nameRole).toString();
    for (const SavedConnection& each : m_connections.named()) {
        if (each.name != name) continue;
        m_name->setText(name);
        showAddress(each.address);
    }
}

void ConnectionDialog::rename(QListWidgetItem* item) {
    if (m_isListing) return;
    const QString name = item->data(nameRole).toString();
    QString newName = item->text().simplified();
    try {
        m_connections.rename(name, newName);
        say({});
    } catch (const orv::Error& error) {
        newName = name;
        say(error.Message());
    }
    const QScopedValueRollback<bool> listing(m_isListing, true);
    item->setText(newName);
    item->setData(nameRole, newName);
    if (item == m_list->currentItem()) m_name->setText(newName);
}

DatabaseAddress ConnectionDialog::address() const {
    return m_form->address();
}

QString ConnectionDialog::typedName() const {
    return m_name->isModified() ? m_name->text().simplified() : QString();
}

void ConnectionDialog::setAddress(const DatabaseAddress& address, const QString& name) {
    listConnections({});
    m_name->setText(name);
    m_name->setModified(true);
    showAddress(address);
}

void ConnectionDialog::showAddress(const DatabaseAddress& address) {
    stopTest();
    m_addressProblem.clear();
    try {
        m_form->setAddress(address);
        say({});
    } catch (const orv::Error& error) {
        // The fields would say something else.
        m_addressProblem = error.Message();
        m_address->setText(address.toUrl());
        say(m_addressProblem);
        return;
    }
    writeAddress();
}

void ConnectionDialog::setProblem(const QString& sentence) {
    say(sentence);
}

void ConnectionDialog::writeAddress() {
    m_address->setText(address().toUrl());
    // Of a long one the beginning says most.
    m_address->setCursorPosition(0);
}

void ConnectionDialog::addressTyped(const QString& text) {
    stopTest();
    m_addressProblem.clear();
    try {
        DatabaseAddress typed = DatabaseAddress::fromUrl(text);
        // What was typed into the field for it is not lost by a line that never shows it.
        if (typed.password.isEmpty()) typed.password = address().password;
        m_form->setAddress(typed);
    } catch (const orv::Error& error) {
        m_addressProblem = error.Message();
    }
    say(m_addressProblem);
}

// As it would be written: without the password, which stands in its own field by now.
void ConnectionDialog::addressLeft() {
    if (m_addressProblem.isEmpty()) writeAddress();
}

void ConnectionDialog::formEdited() {
    stopTest();
    m_addressProblem.clear();
    say({});
    writeAddress();
}

void ConnectionDialog::say(const QString& sentence) {
    m_state->setText(sentence);
    m_state->setAccessibleName(sentence);
    // The dialog takes no notice of the height that its width needs, and would cut it off.
    m_state->setMinimumHeight(
        std::max(m_state->minimumHeight(), m_state->heightForWidth(m_state->width())));
}

void ConnectionDialog::test() {
    if (m_test->isRunning()) {
        stopTest();
        return say(tr("Stopped."));
    }
    if (!isFilledIn()) return;
    m_testButton->setText(tr("S&top"));
    m_busy->show();
    say(tr("Connecting ..."));
    m_test->start(address());
}

void ConnectionDialog::testEnded(bool /*isConnected*/, const QString& sentence) {
    stopTest();
    say(sentence);
}

void ConnectionDialog::stopTest() {
    m_test->cancel();
    m_testButton->setText(tr("&Test"));
    m_busy->hide();
}

void ConnectionDialog::save() {
    if (!m_addressProblem.isEmpty()) return say(m_addressProblem);
    if (m_name->text().trimmed().isEmpty()) m_name->setText(address().title());
    const QString name = m_name->text().simplified();
    try {
        m_connections.save({name, address()});
    } catch (const orv::Error& error) {
        m_name->setFocus();
        return say(error.Message());
    }
    m_name->setText(name);
    listConnections(name);
    say(tr("Saved, without the password."));
}

void ConnectionDialog::forget() {
    const QListWidgetItem* item = m_list->currentItem();
    if (item == nullptr) return;
    m_connections.forget(item->data(nameRole).toString());
    listConnections({});
    say({});
}

// Whether the fields say enough to try; if not, it is told what they lack.
bool ConnectionDialog::isFilledIn() {
    QString problem = m_addressProblem;
    if (problem.isEmpty()) {
        const DatabaseAddress written = address();
        try {
            (void)requireEngine(written);
            problem = missingPart(written);
            if (!problem.isEmpty()) m_form->missingField()->setFocus();
        } catch (const orv::Error& error) {
            problem = error.Message();
        }
    }
    if (problem.isEmpty()) return true;
    say(problem);
    return false;
}

void ConnectionDialog::accept() {
    if (!isFilledIn()) return;
    const QString name = typedName();
    const DatabaseAddress chosen = address();
    const std::vector<SavedConnection> named = m_connections.named();
    const bool isTaken = std::any_of(named.begin(), named.end(), [&](const SavedConnection& each) {
        return each.name == name && each.address.toUrl() != chosen.absolute().toUrl();
    });
    if (isTaken) {
        m_name->setFocus();
        return say(
            tr("There is a connection called \"%1\" already; Save puts this one in its place.")
                .arg(name));
    }
    stopTest();
    QDialog::accept();
}

}  // namespace orvquery
