// SPDX-License-Identifier: MIT
#include "window/PlaceholderDialog.h"

#include "parameters/ParameterText.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

namespace orvquery {

namespace {

constexpr int fieldWidthInCharacters = 32;
constexpr int linesOfRow = 3;

QLabel* makePlainLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    return label;
}

QString typeText(TFieldType type) {
    return orv::fieldTypeDisplayName(type).replace(QStringLiteral("&&"), QStringLiteral("&"));
}

// Scrolls as soon as its content is taller than the screen has room for.
class RowsArea : public QScrollArea {
public:
    using QScrollArea::QScrollArea;

    [[nodiscard]] QSize sizeHint() const override {
        const QSize content = widget()->sizeHint() + QSize(2, 2) * frameWidth();
        const int room = screen()->availableGeometry().height() / 2;
        if (content.height() <= room) return content;
        return {content.width() + verticalScrollBar()->sizeHint().width(), room};
    }
    [[nodiscard]] QSize minimumSizeHint() const override {
        const QSize hint = sizeHint();
        return {hint.width(), std::min(hint.height(), QScrollArea::minimumSizeHint().height())};
    }
};

}  // namespace

PlaceholderDialog::PlaceholderDialog(const std::vector<ParameterDescription>& parameters,
                                     const ParameterAnswers& answers, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(tr("Parameters of the query"));
    auto* content = new QWidget;
    auto* grid = new QGridLayout(content);
    for (const ParameterDescription& parameter : parameters) {
        m_rows.push_back(makeRow(parameter, *grid, linesOfRow * int(m_rows.size())));
    }
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(linesOfRow * int(m_rows.size()), 1);

    auto* area = new RowsArea(this);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);
    m_rowsArea = area;

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_run = buttons->addButton(tr("&Run"), QDialogButtonBox::AcceptRole);
    m_run->setObjectName(QStringLiteral("run"));
    m_run->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(area, 1);
    layout->addWidget(buttons);
    for (const Row& row : m_rows) begin(row, answers);
    if (!m_rows.empty()) {
        const Row& first = m_rows.front();
        (first.null->isChecked() ? static_cast<QWidget*>(first.null) : first.field)->setFocus();
    }
    refresh();
}

//   :NAME (type)  | field           | [ ] NULL
//                 | what is wrong with the field
//                 | which parameters get it, when there are several
PlaceholderDialog::Row PlaceholderDialog::makeRow(const ParameterDescription& parameter,
                                                  QGridLayout& grid, int line) {
    QWidget* content = grid.parentWidget();
    Row row{parameter, new QLineEdit(content), new QCheckBox(tr("NULL"), content),
            makePlainLabel(QString(), content)};
    const QString type = typeText(parameter.type);
    QString caption = u':' + parameter.name;
    if (!type.isEmpty()) caption = tr("%1 (%2)").arg(caption, type);
    auto* label = makePlainLabel(caption, content);
    label->setBuddy(row.field);
    row.field->setObjectName(parameter.name);
    row.field->setAccessibleName(caption);
    row.field->setPlaceholderText(parameterHint(parameter.type));
    row.field->setMinimumWidth(row.field->fontMetrics().averageCharWidth() *
                               fieldWidthInCharacters);
    row.null->setObjectName(QStringLiteral("null ") + parameter.name);
    row.null->setAccessibleName(tr("%1 is NULL").arg(caption));
    row.problem->setObjectName(QStringLiteral("problem ") + parameter.name);
    row.problem->setWordWrap(true);
    row.problem->hide();
    grid.addWidget(label, line, 0);
    grid.addWidget(row.field, line, 1);
    grid.addWidget(row.null, line, 2);
    grid.addWidget(row.problem, line + 1, 1, 1, 2);
    if (parameter.takers.size() > 1) {
        const QString text = tr("For %1").arg(parameter.takers.join(QStringLiteral(", ")));
        auto* takers = makePlainLabel(text, content);
        takers->setObjectName(QStringLiteral("takers ") + parameter.name);
        takers->setWordWrap(true);
        row.field->setAccessibleDescription(text);
        grid.addWidget(takers, line + 2, 1, 1, 2);
    }

    connect(row.field, &QLineEdit::textEdited, this, [this, null = row.null] {
        null->setChecked(false);
        refresh();
    });
    connect(row.null, &QCheckBox::toggled, this, &PlaceholderDialog::refresh);
    return row;
}

void PlaceholderDialog::begin(const Row& row, const ParameterAnswers& answers) {
    const QVariant& byDefault = row.parameter.byDefault;
    const ParameterAnswer answer = answers.value(
        row.parameter.name, {byDefault.isNull() ? QString() : parameterText(byDefault),
                             byDefault.isValid() && byDefault.isNull()});
    row.field->setText(answer.text);
    row.field->selectAll();
    row.null->setChecked(answer.isNull);
}

QString PlaceholderDialog::problemOf(const Row& row) {
    if (row.null->isChecked()) return {};
    return readParameter(row.field->text(), row.parameter.type).problem;
}

void PlaceholderDialog::refresh() {
    if (m_run == nullptr) return;
    QString first;
    for (const Row& row : m_rows) {
        const QString problem = problemOf(row);
        if (first.isEmpty()) first = problem;
        // An empty field is no mistake yet.
        row.problem->setText(row.field->text().isEmpty() ? QString() : problem);
        row.problem->setVisible(!row.problem->text().isEmpty());
    }
    m_run->setEnabled(first.isEmpty());
    m_run->setToolTip(first);
    growToRows();
}

// A line that tells what is wrong must not need scrolling for.
void PlaceholderDialog::growToRows() {
    if (!isVisible()) return;
    m_rowsArea->widget()->layout()->activate();
    m_rowsArea->updateGeometry();
    layout()->activate();
    resize(size().expandedTo(sizeHint()));
}

PlaceholderValues PlaceholderDialog::values() const {
    PlaceholderValues result;
    for (const Row& row : m_rows) {
        result.insert(row.parameter.name,
                      row.null->isChecked()
                          ? QVariant(QMetaType::fromType<QString>())
                          : readParameter(row.field->text(), row.parameter.type).value);
    }
    return result;
}

ParameterAnswers PlaceholderDialog::answers() const {
    ParameterAnswers result;
    for (const Row& row : m_rows) {
        result.insert(row.parameter.name, {row.field->text(), row.null->isChecked()});
    }
    return result;
}

}  // namespace orvquery
