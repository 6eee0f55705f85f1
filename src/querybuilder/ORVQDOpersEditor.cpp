// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDOpersEditor.h"

#include "core/Error.h"
#include "toolkit/Services.h"

#include <QEvent>
#include <QFontInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>
#include <limits>

namespace {

constexpr int mostOperands = 1000;
constexpr int mostPreviewChars = 20000;  // more than a label can lay out while one types

// The design: every size is the least one, and larger fonts and other styles make them grow.
constexpr QSize designSizePx(415, 318);
constexpr int marginPx = 8;
constexpr int listWidthPx = 129;
constexpr int featuresWidthPx = 257;
constexpr QSize addSizePx(89, 25);
constexpr QSize deleteSizePx(81, 25);
constexpr QSize okSizePx(105, 25);
constexpr QSize cancelSizePx(89, 25);
constexpr QSize textSizePx(153, 21);
constexpr QSize countSizePx(57, 21);
constexpr QSize partSizePx(80, 21);
constexpr int previewHeightPx = 19;
constexpr int buttonsHeightPx = 40;  // of the buttons above the features, with what is around them
constexpr double previewScale = 1.15;

// Lists of operators come from anywhere: a text is never cut by the edit that shows it.
constexpr int longestTextChars = std::numeric_limits<int>::max();

/// The number of right-hand operands of what stands in the box, which counts the left-hand one too.
int operandsOf(const QString& text) {
    bool isNumber = false;
    qint64 shown = text.toLongLong(&isNumber);
    if (!isNumber) {
        QLocale locale;
        locale.setNumberOptions(QLocale::RejectGroupSeparator);
        shown = locale.toLongLong(text, &isNumber);
    }
    using Range = std::numeric_limits<int>;
    if (!isNumber || shown <= Range::min() || shown > qint64(Range::max()) + 1) {
        throw orv::Error(QStringLiteral("\"%1\" is not a whole number").arg(text));
    }
    return int(shown - 1);
}

QString shownCount(const TorvQDOperator& entry) {
    return QString::number(qint64(entry.Count) + 1);
}

// The font's own families are asked for where there is no such one.
QFont withFamily(QFont font, const QString& family) {
    font.setFamilies(QStringList(family) + font.families());
    return font;
}

// Texts show as they are: "<b>" in a name is no markup.
QLabel* plainLabel(const QString& text, Qt::Alignment alignment = Qt::AlignLeft) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(alignment | Qt::AlignVCenter);
    return label;
}

QLineEdit* edit(const QString& accessibleName, const QString& toolTip, QLabel* label) {
    auto* result = new QLineEdit;
    result->setMaxLength(longestTextChars);
    result->setAccessibleName(accessibleName);
    result->setToolTip(toolTip);
    label->setBuddy(result);
    return result;
}

QPushButton* button(const QString& text) {
    auto* result = new QPushButton(text);
    result->setAutoDefault(false);
    return result;
}

void keepPlaceWhenHidden(QWidget* widget) {
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
    widget->hide();
}

}  // namespace

namespace orv {

QString operatorPreview(const TorvQDOperator& entry, qint64 shownCount) {
    const QString operand = QStringLiteral(" ??? ");
    const int operands = int(std::clamp<qint64>(shownCount - 1, 0, mostOperands));
    QStringList operandTexts;
    for (int index = 0; index < operands; ++index) operandTexts << operand;
    return QStringLiteral("??? ") + entry.Name + entry.Prefix + operandTexts.join(entry.Relate) +
           entry.Postfix;
}

std::unique_ptr<TOperatorList> editOperators(const TOperatorList& list,
                                             TEditRestrictions restrictions,
                                             const QString& itemName, QWidget* parent) {
    const QPointer<TorvQDOperatorsPropertyDlg> dialog(new TorvQDOperatorsPropertyDlg(parent));
    const auto freed = qScopeGuard([&] { delete dialog.data(); });
    if (!itemName.isEmpty()) {
        dialog->setWindowTitle(dialog->windowTitle() + QStringLiteral(" - ") + itemName);
    }
    dialog->Operators.Assign(&list);
    dialog->SetRestrictions(restrictions);
    if (runDialog(*dialog) != QDialog::Accepted || !dialog) return nullptr;
    auto edited = std::make_unique<TOperatorList>();
    edited->Assign(&dialog->Operators);
    return edited;
}

}  // namespace orv

/// The list, with keys of its own: Insert and Delete are the buttons, and the first arrow key
/// begins at the line that has the focus frame.
class TorvQDOperatorsPropertyDlg::OperatorLines : public QListWidget {
public:
    explicit OperatorLines(const TorvQDOperatorsPropertyDlg* dialog) : m_dialog(dialog) {}

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const int key = event->key();
        const bool isPlain = !(event->modifiers() & ~Qt::KeypadModifier);
        if (isPlain && key == Qt::Key_Insert) {
            press(*m_dialog->btnAdd);
        } else if (isPlain && key == Qt::Key_Delete) {
            press(*m_dialog->btnDelete);
        } else if (isPlain && (key == Qt::Key_Down || key == Qt::Key_Up) &&
                   selectedItems().isEmpty() && currentRow() >= 0) {
            setCurrentRow(currentRow(), QItemSelectionModel::ClearAndSelect);
        } else {
            QListWidget::keyPressEvent(event);
        }
    }

private:
    // One that is forbidden is hidden.
    static void press(QPushButton& button) {
        if (!button.isHidden()) button.click();
    }

    const TorvQDOperatorsPropertyDlg* m_dialog;
};

TorvQDOperatorsPropertyDlg::TorvQDOperatorsPropertyDlg(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                          Qt::WindowCloseButtonHint) {
    setWindowTitle(QStringLiteral("Operator properties"));
    addGroups();
    nameControls();
    connectControls();
    setFont(withFamily(font(), QStringLiteral("MS Sans Serif")));
    fitFonts();
    FormCreate();
    resize(designSizePx.expandedTo(minimumSizeHint()));
}

TorvQDOperatorsPropertyDlg::~TorvQDOperatorsPropertyDlg() = default;

// --- the controls ---

void TorvQDOperatorsPropertyDlg::addGroups() {
    lbOperators = new OperatorLines(this);
    lbOperators->setAccessibleName(QStringLiteral("Available operators"));
    GroupBox1 = new QGroupBox(QStringLiteral("Available operators"));
    auto* listLayout = new QVBoxLayout(GroupBox1);
    listLayout->setContentsMargins(marginPx / 2, marginPx / 2, marginPx / 2, marginPx / 2);
    listLayout->addWidget(lbOperators);

    btnAdd = button(QStringLiteral("Add operator"));
    btnDelete = button(QStringLiteral("Delete operator"));
    auto* editButtons = new QHBoxLayout;
    editButtons->setSpacing(marginPx);
    editButtons->addWidget(btnAdd);
    editButtons->addWidget(btnDelete);
    editButtons->addStretch(1);

    // Two lines: a label that wraps makes the least height of the dialog depend on its width.
    lblHint =
        plainLabel(QStringLiteral("Select or add another operator to keep these changes;\n"
                                  "OK alone keeps only the display name."));
    keepPlaceWhenHidden(lblHint);
    btnOK = button(QStringLiteral("OK"));
    btnOK->setDefault(true);
    btnCancel = button(QStringLiteral("Cancel"));
    auto* endButtons = new QHBoxLayout;
    endButtons->setSpacing(marginPx);
    endButtons->addStretch(1);
    endButtons->addWidget(btnOK);
    endButtons->addWidget(btnCancel);
    endButtons->addStretch(1);

    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(marginPx, marginPx, marginPx, marginPx);
    layout->setSpacing(marginPx);
    layout->addWidget(GroupBox1, 0, 0, 2, 1);
    layout->addLayout(editButtons, 0, 1);
    layout->addWidget(makeFeatures(), 1, 1);
    layout->addWidget(lblHint, 2, 0, 1, 2);
    layout->addLayout(endButtons, 3, 0, 1, 2);
    layout->setRowMinimumHeight(0, buttonsHeightPx - marginPx);
    layout->setRowStretch(1, 1);
    layout->setColumnMinimumWidth(0, listWidthPx);
    layout->setColumnMinimumWidth(1, featuresWidthPx);
    layout->setColumnStretch(0, listWidthPx);
    layout->setColumnStretch(1, featuresWidthPx);
}

QWidget* TorvQDOperatorsPropertyDlg::makeFeatures() {
    lblName = plainLabel(QStringLiteral("Operator name:"));
    lblCaption = plainLabel(QStringLiteral("Display name: "));
    lblCount = plainLabel(QStringLiteral("Count of operands:"));
    lblPrefix = plainLabel(QStringLiteral("Prefix:"), Qt::AlignHCenter);
    lblRelate = plainLabel(QStringLiteral("Relate:"), Qt::AlignHCenter);
    lblPostfix = plainLabel(QStringLiteral("Postfix:"), Qt::AlignHCenter);
    lblSQLCaption = plainLabel(QStringLiteral("SQL expression:"), Qt::AlignHCenter);
    lblSQL = plainLabel({}, Qt::AlignHCenter);

    ebName = edit(QStringLiteral("Operator name"),
                  QStringLiteral("The keyword as it is written into the statement"), lblName);
    ebCaption =
        edit(QStringLiteral("Display name"), QStringLiteral("What conditions show"), lblCaption);
    ebCount = edit(QStringLiteral("Count of operands"),
                   QStringLiteral("The left-hand operand counts too"), lblCount);
    ebPrefix = edit(QStringLiteral("Prefix"),
                    QStringLiteral("Written in front of the right-hand operands"), lblPrefix);
    ebRelate = edit(QStringLiteral("Relate"),
                    QStringLiteral("Written between two right-hand operands"), lblRelate);
    ebPostfix = edit(QStringLiteral("Postfix"),
                     QStringLiteral("Written behind the right-hand operands"), lblPostfix);

    auto* texts = new QGridLayout;
    texts->setSpacing(marginPx);
    texts->addWidget(lblName, 0, 0);
    texts->addWidget(ebName, 0, 1);
    texts->addWidget(lblCaption, 1, 0);
    texts->addWidget(ebCaption, 1, 1);
    texts->addWidget(lblCount, 2, 0);
    texts->addWidget(ebCount, 2, 1, Qt::AlignLeft);
    texts->setColumnStretch(1, 1);

    auto* parts = new QGridLayout;
    parts->setHorizontalSpacing(marginPx / 2);
    parts->setVerticalSpacing(marginPx / 4);
    QLabel* const labels[] = {lblPrefix, lblRelate, lblPostfix};
    QLineEdit* const edits[] = {ebPrefix, ebRelate, ebPostfix};
    for (int column = 0; column < 3; ++column) {
        parts->addWidget(labels[column], 0, column);
        parts->addWidget(edits[column], 1, column);
    }

    // Many operands or long texts make the preview longer than the dialog has room for.
    lblSQL->setWordWrap(true);
    m_preview = new QScrollArea;
    m_preview->setFrameShape(QFrame::NoFrame);
    m_preview->setWidgetResizable(true);
    m_preview->setWidget(lblSQL);
    m_preview->setFocusPolicy(Qt::NoFocus);
    m_preview->viewport()->setAutoFillBackground(false);
    lblSQL->setAutoFillBackground(false);

    Features = new QGroupBox(QStringLiteral("Features"));
    auto* layout = new QVBoxLayout(Features);
    layout->setContentsMargins(marginPx, marginPx, marginPx, marginPx);
    layout->setSpacing(marginPx);
    layout->addLayout(texts);
    layout->addLayout(parts);
    layout->addWidget(lblSQLCaption);
    layout->addWidget(m_preview, 1);
    keepPlaceWhenHidden(Features);
    return Features;
}

void TorvQDOperatorsPropertyDlg::nameControls() {
    const auto name = [](QWidget* control, const char* text) {
        control->setObjectName(QString::fromLatin1(text));
    };
    setObjectName(QStringLiteral("TorvQDOperatorsPropertyDlg"));
    name(GroupBox1, "GroupBox1");
    name(lbOperators, "lbOperators");
    name(btnAdd, "btnAdd");
    name(btnDelete, "btnDelete");
    name(Features, "Features");
    name(lblName, "lblName");
    name(ebName, "ebName");
    name(lblCaption, "lblCaption");
    name(ebCaption, "ebCaption");
    name(lblCount, "lblCount");
    name(ebCount, "ebCount");
    name(lblPrefix, "lblPrefix");
    name(ebPrefix, "ebPrefix");
    name(lblRelate, "lblRelate");
    name(ebRelate, "ebRelate");
    name(lblPostfix, "lblPostfix");
    name(ebPostfix, "ebPostfix");
    name(lblSQLCaption, "lblSQLCaption");
    name(lblSQL, "lblSQL");
    name(lblHint, "lblHint");
    name(btnOK, "btnOK");
    name(btnCancel, "btnCancel");
}

void TorvQDOperatorsPropertyDlg::connectControls() {
    QWidget* const order[] = {lbOperators, btnAdd,   btnDelete, ebName,    ebCaption, ebCount,
                              ebPrefix,    ebRelate, ebPostfix, m_preview, btnOK,     btnCancel};
    for (std::size_t index = 1; index < std::size(order); ++index) {
        setTabOrder(order[index - 1], order[index]);
    }
    connect(lbOperators, &QListWidget::itemSelectionChanged, this, [this] { userSelected(); });
    for (QLineEdit* edit : {ebName, ebCaption, ebCount, ebPrefix, ebRelate, ebPostfix}) {
        connect(edit, &QLineEdit::textEdited, this, [this, edit] { userEdited(edit); });
    }
    // Who has no mouse scrolls a preview that is too long.
    connect(m_preview->verticalScrollBar(), &QScrollBar::rangeChanged, this,
            [this](int least, int most) {
                m_preview->setFocusPolicy(most > least ? Qt::StrongFocus : Qt::NoFocus);
            });
    connect(btnAdd, &QPushButton::clicked, this, [this] { userAdds(); });
    connect(btnDelete, &QPushButton::clicked, this, [this] { userDeletes(); });
    connect(btnOK, &QPushButton::clicked, this, [this] {
        orv::guarded([this] { btnOKClick(); });
        accept();
    });
    connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void TorvQDOperatorsPropertyDlg::fitFonts() {
    QFont preview = withFamily(font(), QStringLiteral("Tahoma"));
    if (preview.pointSizeF() > 0) {
        preview.setPointSizeF(preview.pointSizeF() * previewScale);
    } else {
        preview.setPixelSize(int(preview.pixelSize() * previewScale));
    }
    lblSQL->setFont(preview);
    fitSizes();
}

// An explicit least size takes the place of what the control itself needs.
void TorvQDOperatorsPropertyDlg::fitSizes() {
    const std::pair<QWidget*, QSize> least[] = {{btnAdd, addSizePx},    {btnDelete, deleteSizePx},
                                                {btnOK, okSizePx},      {btnCancel, cancelSizePx},
                                                {ebName, textSizePx},   {ebCaption, textSizePx},
                                                {ebCount, countSizePx}, {ebPrefix, partSizePx},
                                                {ebRelate, partSizePx}, {ebPostfix, partSizePx}};
    for (const auto& [control, size] : least) {
        control->setMinimumSize(size.expandedTo(control->minimumSizeHint()));
    }
    ebCount->setMaximumWidth(2 * ebCount->minimumWidth());
    // Two lines of preview show without scrolling.
    m_preview->setMinimumHeight(std::max(previewHeightPx, 2 * lblSQL->fontMetrics().lineSpacing()));
}

void TorvQDOperatorsPropertyDlg::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (!m_preview) return;
    if (event->type() == QEvent::FontChange) fitFonts();
    if (event->type() == QEvent::StyleChange) fitSizes();
}

// --- the form ---

void TorvQDOperatorsPropertyDlg::FormCreate() {
    Operators.Clear();
    FormShow();
    SetRestrictions({});
}

void TorvQDOperatorsPropertyDlg::FormShow() {
    {
        const QSignalBlocker silent(lbOperators);
        lbOperators->clear();
        for (int index = 0; index < Operators.Count(); ++index) {
            lbOperators->addItem(Operators.Items(index)->Name);
        }
        lbOperators->clearSelection();
    }
    makeCurrent(-1);
    lbOperators->setFocus();
}

void TorvQDOperatorsPropertyDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (event->spontaneous()) return;
    fitSizes();
    orv::guarded([this] { FormShow(); });
}

void TorvQDOperatorsPropertyDlg::SetRestrictions(TEditRestrictions Restrictions) {
    m_restrictions = Restrictions;
    btnAdd->setHidden(Restrictions.contains(erAdd));
    btnDelete->setHidden(Restrictions.contains(erDelete));
    ebName->setDisabled(Restrictions.contains(erAdd) || Restrictions.contains(erName));
    for (QLineEdit* edit : {ebCount, ebPrefix, ebRelate, ebPostfix}) {
        edit->setDisabled(Restrictions.contains(erArgument));
    }
}

// --- the list ---

int TorvQDOperatorsPropertyDlg::selectedIndex() const {
    const QList<QListWidgetItem*> selected = lbOperators->selectedItems();
    return selected.isEmpty() ? -1 : lbOperators->row(selected.front());
}

void TorvQDOperatorsPropertyDlg::selectLine(int index) {
    const QSignalBlocker silent(lbOperators);
    if (index < 0) {
        lbOperators->clearSelection();
    } else {
        lbOperators->setCurrentRow(index, QItemSelectionModel::ClearAndSelect);
    }
}

void TorvQDOperatorsPropertyDlg::makeCurrent(int index) {
    m_currentIndex = index;
    m_modified = false;
    btnDelete->setEnabled(index != -1);
    Features->setVisible(index != -1);
    showHint();
}

void TorvQDOperatorsPropertyDlg::lbOperatorsClick() {
    const TOperatorList::Entry shown = Operators.Items(m_currentIndex);
    if (shown && m_modified) storeEdits(*shown);
    makeCurrent(selectedIndex());
    const TOperatorList::Entry entry = Operators.Items(m_currentIndex);
    if (!entry) return;
    showEdits(*entry);
    ChangeData();
}

// The operator whose count is none stays the selected one.
void TorvQDOperatorsPropertyDlg::returnToCount() {
    selectLine(m_currentIndex);
    ebCount->setFocus();
    ebCount->selectAll();
}

void TorvQDOperatorsPropertyDlg::userSelected() {
    orv::guarded([this] {
        try {
            lbOperatorsClick();
        } catch (const orv::Error&) {
            returnToCount();
            throw;
        }
    });
}

// --- the edits ---

TorvQDOperator TorvQDOperatorsPropertyDlg::typed() const {
    TorvQDOperator entry;
    entry.Name = ebName->text();
    entry.Caption = ebCaption->text();
    entry.Relate = ebRelate->text();
    entry.Prefix = ebPrefix->text();
    entry.Postfix = ebPostfix->text();
    entry.Count = 0;
    return entry;
}

// The texts are stored although the count may turn out to be none.
void TorvQDOperatorsPropertyDlg::storeEdits(TorvQDOperator& entry) const {
    const int count = entry.Count;
    entry.Assign(typed());
    entry.Count = count;
    entry.Count = operandsOf(ebCount->text());
}

void TorvQDOperatorsPropertyDlg::showEdits(const TorvQDOperator& entry) {
    const auto show = [](QLineEdit* edit, const QString& text) {
        edit->setText(text);
        edit->setCursorPosition(0);
    };
    show(ebCount, shownCount(entry));
    show(ebName, entry.Name);
    show(ebCaption, entry.Caption);
    show(ebPrefix, entry.Prefix);
    show(ebRelate, entry.Relate);
    show(ebPostfix, entry.Postfix);
}

void TorvQDOperatorsPropertyDlg::ChangeData(QObject* Sender) {
    if (qobject_cast<QLineEdit*>(Sender)) m_modified = true;
    QListWidgetItem* line = lbOperators->item(selectedIndex());
    if (Sender == ebName && line) line->setText(ebName->text());
    const int operands = operandsOf(ebCount->text());
    lblSQL->setText(orv::operatorPreview(typed(), qint64(operands) + 1).left(mostPreviewChars));
}

void TorvQDOperatorsPropertyDlg::userEdited(QLineEdit* edit) {
    try {
        ChangeData(edit);
    } catch (const orv::Error& error) {
        lblSQL->setText(error.Message());  // a box at each key would be in the way
    }
    showHint();
}

bool TorvQDOperatorsPropertyDlg::losesByOK() const {
    const TOperatorList::Entry entry = Operators.Items(m_currentIndex);
    if (!entry || !m_modified) return false;
    TorvQDOperator edited = typed();
    edited.Caption = entry->Caption;
    edited.Count = entry->Count;
    return !(edited == *entry) || ebCount->text() != shownCount(*entry);
}

void TorvQDOperatorsPropertyDlg::showHint() {
    lblHint->setVisible(losesByOK());
}

QLineEdit* TorvQDOperatorsPropertyDlg::firstFreeEdit() const {
    return ebName->isEnabled() ? ebName : ebCaption;
}

// --- the buttons ---

void TorvQDOperatorsPropertyDlg::btnAddClick() {
    const int index = Operators.Add(TorvQDOperator());
    {
        const QSignalBlocker silent(lbOperators);
        lbOperators->addItem(Operators.Items(index)->Name);
    }
    selectLine(index);
    lbOperatorsClick();
}

void TorvQDOperatorsPropertyDlg::userAdds() {
    orv::guarded([this] {
        try {
            btnAddClick();
        } catch (const orv::Error&) {
            returnToCount();
            throw;
        }
        firstFreeEdit()->setFocus();
        firstFreeEdit()->selectAll();
    });
}

// The line beside the deleted one must not be selected: the edits still show what was deleted.
void TorvQDOperatorsPropertyDlg::btnDeleteClick() {
    if (m_currentIndex == -1) return;
    Operators.Delete(m_currentIndex);
    {
        const QSignalBlocker silent(lbOperators);
        const std::unique_ptr<QListWidgetItem> line(lbOperators->takeItem(m_currentIndex));
    }
    selectLine(-1);
    makeCurrent(-1);
}

void TorvQDOperatorsPropertyDlg::userDeletes() {
    orv::guarded([this] { btnDeleteClick(); });
    lbOperators->setFocus();
}

void TorvQDOperatorsPropertyDlg::btnOKClick() {
    const TOperatorList::Entry entry = Operators.Items(m_currentIndex);
    if (entry && ebCaption->text() != entry->Caption) entry->Caption = ebCaption->text();
}
