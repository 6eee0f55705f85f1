// SPDX-License-Identifier: MIT
#include "window/ConnectionForm.h"

#include "database/Engine.h"
#include "toolkit/Services.h"
#include "window/PasswordDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardItemModel>

namespace orvquery {

namespace {

constexpr int partWidthInCharacters = 36;
constexpr int lastPort = 65535;

QWidget* rowOf(QLineEdit* field, QWidget* button, QWidget* parent) {
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(field, 1);
    layout->addWidget(button);
    return row;
}

// Options may stand beside the name of a data source, a user and a password among them.
void readSource(DatabaseAddress& address, const QString& text) {
    const DatabaseAddress source =
        DatabaseAddress::fromUrl(address.scheme + QStringLiteral("://") +
                                 QString::fromLatin1(QUrl::toPercentEncoding(text)));
    address.database = source.database;
    if (address.user.isEmpty()) address.user = source.user;
    if (address.password.isEmpty()) address.password = source.password;
    for (const auto& [name, value] : source.options.queryItems(QUrl::FullyEncoded)) {
        address.options.addQueryItem(name, value);
    }
}

}  // namespace

QString chooseDatabaseFile(QWidget* parent) {
    return QFileDialog::getOpenFileName(
        parent, ConnectionForm::tr("Open file"), QString(),
        ConnectionForm::tr("Databases (*.db *.sqlite *.sqlite3 *.db3 *.fdb *.gdb);;All files (*)"));
}

ConnectionForm::ConnectionForm(QWidget* parent)
    : QWidget(parent),
      m_layout(new QFormLayout(this)),
      m_kind(new QComboBox(this)),
      m_host(new QLineEdit(this)),
      m_port(new QLineEdit(this)),
      m_user(new QLineEdit(this)),
      m_password(new QLineEdit(this)),
      m_databaseLabel(new QLabel(this)),
      m_database(new QLineEdit(this)),
      m_browse(new QPushButton(tr("&Browse..."), this)),
      m_options(new QLineEdit(this)) {
    buildKinds();
    buildFields();
    showFields();
}

void ConnectionForm::buildKinds() {
    m_kind->setObjectName(QStringLiteral("kind"));
    auto* model = qobject_cast<QStandardItemModel*>(m_kind->model());
    int first = -1;
    for (const Engine& each : engines()) {
        m_kind->addItem(each.title, each.scheme);
        const int row = m_kind->count() - 1;
        const QString problem = driverProblem(each);
        if (problem.isEmpty() && first < 0) first = row;
        if (problem.isEmpty() || model == nullptr) continue;
        m_kind->setItemData(row, problem, Qt::ToolTipRole);
        m_kind->setItemData(row, problem, Qt::AccessibleDescriptionRole);
        model->item(row)->setEnabled(false);
    }
    m_kind->setCurrentIndex(first);
    connect(m_kind, &QComboBox::currentIndexChanged, this, &ConnectionForm::showFields);
    connect(m_kind, &QComboBox::activated, this, &ConnectionForm::edited);
}

void ConnectionForm::buildFields() {
    const auto add = [this](const QString& label, QLineEdit* field, const char* name) {
        field->setObjectName(QLatin1String(name));
        connect(field, &QLineEdit::textEdited, this, &ConnectionForm::edited);
        m_layout->addRow(label, field);
    };
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_layout->addRow(tr("&Kind:"), m_kind);
    add(tr("&Host:"), m_host, "host");
    add(tr("Po&rt:"), m_port, "port");
    add(tr("&User:"), m_user, "user");
    m_port->setValidator(new QIntValidator(1, lastPort, m_port));

    m_password->setObjectName(QStringLiteral("password"));
    m_password->setAccessibleName(tr("Password"));
    QCheckBox* show = makeShowBox(m_password, this);
    m_passwordRow = rowOf(m_password, show, this);
    auto* label = new QLabel(tr("&Password:"), this);
    label->setBuddy(m_password);
    m_layout->addRow(label, m_passwordRow);
    m_password->setPlaceholderText(tr("never saved"));

    m_database->setObjectName(QStringLiteral("database"));
    m_database->setMinimumWidth(m_database->fontMetrics().averageCharWidth() *
                                partWidthInCharacters);
    m_browse->setObjectName(QStringLiteral("browse"));
    m_browse->setAutoDefault(false);
    m_databaseRow = rowOf(m_database, m_browse, this);
    m_databaseLabel->setBuddy(m_database);
    m_layout->addRow(m_databaseLabel, m_databaseRow);

    add(tr("&Options:"), m_options, "options");
    m_options->setPlaceholderText(tr("name=value; name=value"));
    for (QLineEdit* field : {m_password, m_database}) {
        connect(field, &QLineEdit::textEdited, this, &ConnectionForm::edited);
    }
    const std::vector<QWidget*> order = {m_kind, m_host,     m_port,   m_user,   m_password,
                                         show,   m_database, m_browse, m_options};
    for (std::size_t index = 1; index < order.size(); ++index) {
        setTabOrder(order[index - 1], order[index]);
    }
    connect(m_host, &QLineEdit::textChanged, this, &ConnectionForm::showFields);
    connect(m_browse, &QPushButton::clicked, this, [this] { orv::guarded([&] { browse(); }); });
}

void ConnectionForm::addInFront(const QString& label, QWidget* field) {
    m_layout->insertRow(0, label, field);
    setTabOrder(field, m_kind);
}

void ConnectionForm::addBehind(const QString& label, QWidget* field) {
    m_layout->addRow(label, field);
    setTabOrder(m_options, field);
}

const Engine* ConnectionForm::engine() const {
    return engineOf(m_kind->currentData().toString());
}

void ConnectionForm::showFields() {
    const Engine* present = engine();
    const Engine::Place place = present == nullptr ? Engine::Place::File : present->place;
    const bool isServer = place == Engine::Place::Server || place == Engine::Place::FileOrServer;
    const bool mayBeFile = place == Engine::Place::File || place == Engine::Place::FileOrServer;
    const bool isFile = mayBeFile && (!isServer || m_host->text().isEmpty());
    m_layout->setRowVisible(m_host, isServer);
    m_layout->setRowVisible(m_port, isServer);
    m_layout->setRowVisible(m_user, place != Engine::Place::File);
    m_layout->setRowVisible(m_passwordRow, place != Engine::Place::File);
    m_host->setPlaceholderText(place == Engine::Place::FileOrServer
                                   ? tr("none: a file of this computer")
                                   : tr("localhost"));
    m_port->setEnabled(!isFile);
    m_port->setPlaceholderText(present == nullptr || present->defaultPort < 0
                                   ? QString()
                                   : QString::number(present->defaultPort));
    m_browse->setVisible(mayBeFile);
    m_browse->setEnabled(isFile);
    if (place == Engine::Place::DataSource) {
        m_databaseLabel->setText(tr("&Data source:"));
    } else {
        m_databaseLabel->setText(isFile ? tr("&Database file:") : tr("&Database:"));
    }
    m_database->setAccessibleName(m_databaseLabel->text().remove(u'&').remove(u':'));
}

DatabaseAddress ConnectionForm::address() const {
    const Engine* present = engine();
    if (present == nullptr) return {};
    DatabaseAddress address{present->scheme};
    const Engine::Place place = present->place;
    if (place == Engine::Place::Server || place == Engine::Place::FileOrServer) {
        address.host = m_host->text().trimmed();
        if (place == Engine::Place::Server && address.host.isEmpty()) {
            address.host = QStringLiteral("localhost");
        }
        const int port = m_port->text().toInt();
        if (!address.host.isEmpty() && port > 0) address.port = port;
    }
    if (place != Engine::Place::File) {
        address.user = m_user->text();
        address.password = m_password->text();
    }
    address.database = m_database->text();
    if (address.isFile()) address.database = DatabaseAddress::pathFromHome(address.database);
    address.setOptionsText(m_options->text());
    if (place == Engine::Place::DataSource) readSource(address, m_database->text());
    return address;
}

void ConnectionForm::setAddress(const DatabaseAddress& address) {
    const Engine& wanted = requireEngine(address);
    m_kind->setCurrentIndex(m_kind->findData(wanted.scheme));
    m_host->setText(address.host);
    m_port->setText(address.port > 0 ? QString::number(address.port) : QString());
    m_user->setText(address.user);
    m_password->setText(address.password);
    m_database->setText(address.database);
    m_options->setText(address.optionsText());
    showFields();
}

QWidget* ConnectionForm::fieldToBeginWith() const {
    if (m_host->isVisibleTo(this) && m_host->text().isEmpty() && m_database->text().isEmpty()) {
        return m_host;
    }
    if (m_database->text().isEmpty()) return m_database;
    if (m_password->isVisibleTo(this) && m_password->text().isEmpty()) return m_password;
    return m_database;
}

QWidget* ConnectionForm::missingField() const {
    return m_database->text().isEmpty() ? m_database : m_user;
}

void ConnectionForm::browse() {
    const QString path = chooseDatabaseFile(this);
    if (path.isEmpty()) return;
    m_database->setText(path);
    Q_EMIT edited();
}

}  // namespace orvquery
