// SPDX-License-Identifier: MIT
#include "window/ParameterDialog.h"

#include "data/SqlText.h"
#include "parameters/ParameterText.h"
#include "parameters/Placeholders.h"
#include "parser/ORVQDArgument.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

namespace orvquery {

namespace {

constexpr int fieldWidthInCharacters = 44;
constexpr int problemLines = 2;

bool isSql(const QVariant& value) {
    return value.metaType() == QMetaType::fromType<orv::SqlText>();
}

QString typeText(TFieldType type) {
    // The name of one of them has a doubled "&", as menus need it.
    return orv::fieldTypeDisplayName(type).replace(QStringLiteral("&&"), QStringLiteral("&"));
}

QString titleOf(const ParameterDialog::Subject& subject) {
    const QString type = typeText(subject.type);
    if (type.isEmpty()) {
        return ParameterDialog::tr("Parameter %1 of %2").arg(subject.parameter, subject.procedure);
    }
    return ParameterDialog::tr("Parameter %1 (%2) of %3")
        .arg(subject.parameter, type, subject.procedure);
}

}  // namespace

ParameterDialog::ParameterDialog(const Subject& subject, const QVariant& value, QWidget* parent)
    : QDialog(parent),
      m_type(subject.type),
      m_given(value),
      m_asValue(new QRadioButton(tr("&Value"), this)),
      m_asSql(new QRadioButton(tr("&SQL: a column or an expression, written as it stands"), this)),
      m_asNull(new QRadioButton(tr("&NULL"), this)),
      m_unset(new QRadioButton(this)),
      m_field(new QLineEdit(this)),
      m_problem(new QLabel(this)) {
    setWindowTitle(tr("Value of a parameter"));
    buildChoices(subject);

    auto* title = new QLabel(titleOf(subject), this);
    title->setObjectName(QStringLiteral("subject"));
    title->setTextFormat(Qt::PlainText);
    title->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(m_field);
    layout->addWidget(m_problem);
    for (QRadioButton* choice : {m_asValue, m_asSql, m_asNull, m_unset}) layout->addWidget(choice);
    layout->addStretch(1);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetMinimumSize);
    begin(value);
}

void ParameterDialog::buildChoices(const Subject& subject) {
    m_unset->setText(tr("No&t set: ask for %1 when the query runs")
                         .arg(QString(subject.placeholder).replace(u'&', QStringLiteral("&&"))));
    m_field->setObjectName(QStringLiteral("value"));
    m_field->setAccessibleName(tr("Value of %1").arg(subject.parameter));
    m_field->setPlaceholderText(parameterHint(m_type));
    m_field->setMinimumWidth(m_field->fontMetrics().averageCharWidth() * fieldWidthInCharacters);
    m_problem->setObjectName(QStringLiteral("problem"));
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setWordWrap(true);
    // The lines of most texts are always there, so that nothing moves while one types.
    m_problem->setMinimumHeight(problemLines * m_problem->fontMetrics().lineSpacing());
    m_problem->setAlignment(Qt::AlignTop | Qt::AlignLeading);
    m_asValue->setObjectName(QStringLiteral("asValue"));
    m_asSql->setObjectName(QStringLiteral("asSql"));
    m_asNull->setObjectName(QStringLiteral("asNull"));
    m_unset->setObjectName(QStringLiteral("unset"));
    for (QRadioButton* choice : {m_asValue, m_asSql, m_asNull, m_unset}) {
        connect(choice, &QRadioButton::toggled, this, &ParameterDialog::refresh);
    }
    connect(m_field, &QLineEdit::textEdited, this, &ParameterDialog::fieldEdited);
    connect(m_field, &QLineEdit::textChanged, this, &ParameterDialog::refresh);
}

// With what the parameter has, so that whoever only looks changes nothing.
void ParameterDialog::begin(const QVariant& value) {
    if (!value.isValid()) {
        m_unset->setChecked(true);
    } else if (isSql(value)) {
        m_asSql->setChecked(true);
    } else if (value.isNull()) {
        m_asNull->setChecked(true);
    } else {
        m_asValue->setChecked(true);
    }
    if (!value.isNull()) m_field->setText(parameterText(value));
    m_field->setModified(false);
    m_field->selectAll();
    m_field->setFocus();
    refresh();
}

void ParameterDialog::fieldEdited() {
    if (m_asNull->isChecked() || m_unset->isChecked()) m_asValue->setChecked(true);
}

// Whoever chose by keyboard what the text shall be goes on with typing it.
void ParameterDialog::keyPressEvent(QKeyEvent* event) {
    const bool isTyping = !event->text().isEmpty() && event->text().front().isPrint() &&
                          !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
    if (isTyping && qobject_cast<QRadioButton*>(focusWidget()) != nullptr) {
        m_field->setFocus();
        QCoreApplication::sendEvent(m_field, event);
        return;
    }
    QDialog::keyPressEvent(event);
}

void ParameterDialog::refresh() {
    if (m_ok == nullptr) return;
    const QString text = problem();
    // An empty field is no mistake yet.
    m_problem->setText(m_field->text().isEmpty() ? QString() : text);
    m_problem->setAccessibleName(m_problem->text());
    // The dialog takes no notice of the height that its width needs, and would cut it off.
    m_problem->setMinimumHeight(
        std::max(m_problem->minimumHeight(), m_problem->heightForWidth(m_problem->width())));
    m_ok->setEnabled(text.isEmpty());
    m_ok->setToolTip(text);
}

// The field has one line, and what was given may have several.
bool ParameterDialog::holdsGiven() const {
    if (m_field->isModified() || m_given.isNull()) return false;
    return isSql(m_given) ? m_asSql->isChecked() : m_asValue->isChecked();
}

QString ParameterDialog::problem() const {
    if (m_asNull->isChecked() || m_unset->isChecked() || holdsGiven()) return {};
    if (m_asSql->isChecked()) {
        const QString text = orv::argumentProblem(m_field->text());
        return text.isEmpty() ? questionMarkProblem(m_field->text()) : text;
    }
    return readParameter(m_field->text(), m_type).problem;
}

QVariant ParameterDialog::value() const {
    if (m_unset->isChecked()) return {};
    if (m_asNull->isChecked()) return QVariant::fromValue(nullptr);
    if (holdsGiven()) return m_given;
    if (m_asSql->isChecked()) {
        return QVariant::fromValue(orv::SqlText{m_field->text().trimmed()});
    }
    const QVariant value = readParameter(m_field->text(), m_type).value;
    // As a value of its own kind it would be written with a "T", which not every database reads.
    return value.metaType().id() == QMetaType::QDateTime ? parameterText(value) : value;
}

}  // namespace orvquery
