// SPDX-License-Identifier: MIT
#include "diagram/Orvqdlnkprop.h"

#include "core/Error.h"
#include "diagram/ORVQDFloatTable.h"
#include "toolkit/Services.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextDocument>

#include <algorithm>

namespace {

// The design: every size is the least one, and larger fonts and other styles make them grow.
constexpr int designWidthPx = 341;
constexpr int leastMinWidthPx = 360;
constexpr int captionHeightPx = 25;
constexpr int comparisonTopPx = 32;
constexpr int leftFieldWidthPx = 65;
constexpr int rightFieldWidthPx = 75;
constexpr int operatorWidthPx = 49;
constexpr int operatorHeightPx = 21;
constexpr int checkBoxesTopPx = 64;
constexpr int checkBoxHeightPx = 17;
constexpr int buttonsTopPx = 96;
constexpr int buttonWidthPx = 75;
constexpr int buttonHeightPx = 25;
constexpr int smallFontPx = 11;
constexpr int largeFontPx = 13;

constexpr int checkSquarePx = 20;     // a check box beside its text
constexpr int checkBoxesRoomPx = 28;  // the two of them, apart from their widths
constexpr int textRoomPx = 22;        // a line of texts, apart from their widths
constexpr int fieldGapPx = 1;         // between a field's name and the operator
constexpr int checkBoxGapPx = 4;      // from the middle of the dialog
constexpr int buttonGapPx = 20;       // from the middle of the dialog
constexpr int sideMarginPx = 10;
constexpr int bottomMarginPx = 8;
constexpr int fieldPaddingPx = 4;

// The gaps between the rows when these are as high as designed.
constexpr int captionGapPx = comparisonTopPx - captionHeightPx;
constexpr int comparisonGapPx = checkBoxesTopPx - comparisonTopPx - operatorHeightPx;
constexpr int checkBoxesGapPx = buttonsTopPx - checkBoxesTopPx - checkBoxHeightPx;

int widthOf(const QWidget* control, int least) {
    return std::max(least, control->sizeHint().width());
}

int heightOf(const QWidget* control, int least) {
    return std::max(least, control->sizeHint().height());
}

// The key that "&" would make of the next character is no key here, but part of a name.
QString withoutMnemonics(QString text) {
    return text.replace(u'&', QStringLiteral("&&"));
}

// Names show as they are: "<b>" in a name is no markup.
QLabel* plainLabel(QWidget* parent, Qt::Alignment alignment) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(alignment | Qt::AlignVCenter);
    return label;
}

void setTextWidth(QCheckBox* box) {
    QString text = box->text();
    text.replace(QStringLiteral("&&"), QStringLiteral("&"));
    const int textWidth = box->fontMetrics().horizontalAdvance(text);
    box->resize(widthOf(box, textWidth + checkSquarePx), box->height());
}

}  // namespace

namespace orv {

LnkPropLefts lnkPropLayout(int formWidth, const LnkPropWidths& widths) {
    const int middle = formWidth / 2;
    LnkPropLefts lefts;
    lefts.cbConditions = (formWidth - widths.cbConditions) / 2;
    lefts.lblLeftField = (formWidth - widths.cbConditions) / 2 - fieldGapPx - widths.lblLeftField;
    lefts.lblRightField = (widths.cbConditions + formWidth) / 2 + fieldGapPx;
    lefts.btnLeftOuter = middle - checkBoxGapPx - widths.btnLeftOuter;
    lefts.btnRightOuter = middle + checkBoxGapPx;
    lefts.btnOK = middle - buttonGapPx - widths.btnOK;
    lefts.btnCancel = middle + buttonGapPx;
    return lefts;
}

int lnkPropMinWidth(const LnkPropWidths& widths, int captionTextWidth) {
    return std::max(
        {captionTextWidth + textRoomPx,
         2 * std::max(widths.lblLeftField, widths.lblRightField) + widths.cbConditions + textRoomPx,
         2 * std::max(widths.btnLeftOuter, widths.btnRightOuter) + checkBoxesRoomPx,
         leastMinWidthPx});
}

}  // namespace orv

TdlgLnkProp::TdlgLnkProp(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                          Qt::WindowCloseButtonHint),
      lblCaption(plainLabel(this, Qt::AlignHCenter)),
      lblLeftField(plainLabel(this, Qt::AlignRight)),
      cbConditions(new QComboBox(this)),
      lblRightField(plainLabel(this, Qt::AlignLeft)),
      btnLeftOuter(new QCheckBox(this)),
      btnRightOuter(new QCheckBox(this)),
      btnOK(new QPushButton(QStringLiteral("OK"), this)),
      btnCancel(new QPushButton(QStringLiteral("Cancel"), this)),
      lblJoinText(plainLabel(this, Qt::AlignLeft)),
      edJoinText(new QLineEdit(this)) {
    setWindowTitle(QStringLiteral("Link properties"));
    lblLeftField->setContentsMargins(fieldPaddingPx, 0, fieldPaddingPx, 0);
    lblRightField->setContentsMargins(fieldPaddingPx, 0, fieldPaddingPx, 0);
    cbConditions->addItems(orv::linkOperators());
    cbConditions->setAccessibleName(QStringLiteral("Operator"));
    btnRightOuter->setLayoutDirection(Qt::LeftToRight);
    lblJoinText->setText(QStringLiteral("and:"));
    edJoinText->setReadOnly(true);
    edJoinText->setAccessibleName(QStringLiteral("Other conditions of the join"));
    btnOK->setDefault(true);
    QWidget* const order[] = {btnOK,        btnCancel,     cbConditions,
                              btnLeftOuter, btnRightOuter, edJoinText};
    for (std::size_t index = 1; index < std::size(order); ++index) {
        setTabOrder(order[index - 1], order[index]);
    }
    connect(btnOK, &QPushButton::clicked, this, [this] {
        orv::guarded([this] { btnOKClick(); });
        accept();
    });
    connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    resize(designWidthPx, height());
}

TdlgLnkProp::~TdlgLnkProp() = default;

bool TdlgLnkProp::edit(TorvQDLink* link) {
    if (isVisible()) return false;
    CurrentLnk = link;
    FormShow();
    const QPointer<TdlgLnkProp> self(this);
    (void)orv::runDialog(*this);
    return self && m_changed;
}

void TdlgLnkProp::FormShow() {
    if (!CurrentLnk) throw orv::Error(QStringLiteral("Invalid link"));
    m_changed = false;
    fitFonts();
    fill(*CurrentLnk);
    placeRows();
    CalcMinWidth();
    setMinimumWidth(MinWidth);
    if (MinWidth > width()) resize(MinWidth, height());
    FormResize();
    btnOK->setFocus();
}

void TdlgLnkProp::fill(const TorvQDLink& link) {
    const TorvQDJoin& join = *link.Join;
    const QString tables[] = {join.GetTableName(0), join.GetTableName(1)};
    const QString fields[] = {link.Item1->Name, link.Item2->Name};
    lblCaption->setText(QStringLiteral("join tables: ") + tables[0] + QStringLiteral(" and ") +
                        tables[1]);
    lblLeftField->setText(fields[0]);
    lblLeftField->setAccessibleName(QStringLiteral("Left field: ") + fields[0]);
    lblRightField->setText(fields[1]);
    lblRightField->setAccessibleName(QStringLiteral("Right field: ") + fields[1]);
    cbConditions->setAccessibleDescription(QStringLiteral("Compares ") + fields[0] +
                                           QStringLiteral(" with ") + fields[1]);
    btnLeftOuter->setText(withoutMnemonics(QStringLiteral("Include all from ") + tables[0]));
    btnRightOuter->setText(withoutMnemonics(QStringLiteral("Include all from ") + tables[1]));
    btnLeftOuter->setChecked(join.KindOfJoin == klLOuterJoin || join.KindOfJoin == klFOuterJoin);
    btnRightOuter->setChecked(join.KindOfJoin == klROuterJoin || join.KindOfJoin == klFOuterJoin);
    const bool isListed = link.Operator >= 0 && link.Operator < cbConditions->count();
    cbConditions->setCurrentIndex(isListed ? link.Operator : -1);
    edJoinText->setText(join.Text);
    edJoinText->setCursorPosition(0);
    edJoinText->setToolTip(Qt::convertFromPlainText(join.Text));
    lblJoinText->setVisible(!join.Text.isEmpty());
    edJoinText->setVisible(!join.Text.isEmpty());
}

void TdlgLnkProp::btnOKClick() {
    if (!CurrentLnk) return;
    const bool left = btnLeftOuter->isChecked();
    const bool right = btnRightOuter->isChecked();
    const TKindOfJoin kind = left && right ? klFOuterJoin
                             : left        ? klLOuterJoin
                             : right       ? klROuterJoin
                                           : klInnerJoin;
    m_changed = m_changed || kind != CurrentLnk->Join->KindOfJoin;
    CurrentLnk->Join->KindOfJoin = kind;
    // An operator that the list does not have stays until another one is chosen.
    const int chosen = cbConditions->currentIndex();
    if (chosen < 0 || chosen == CurrentLnk->Operator) return;
    CurrentLnk->setOperatorText(cbConditions->itemText(chosen));
    m_changed = true;
}

// --- layout ---

// The names are larger than the rest, as much as they were designed to be.
void TdlgLnkProp::fitFonts() {
    QFont large = font();
    const int grown = QFontInfo(large).pixelSize() * largeFontPx / smallFontPx;
    large.setPixelSize(std::max(largeFontPx, grown));
    lblLeftField->setFont(large);
    lblRightField->setFont(large);
    large.setBold(true);
    lblCaption->setFont(large);
}

void TdlgLnkProp::CalcMinWidth() {
    setTextWidth(btnLeftOuter);
    setTextWidth(btnRightOuter);
    orv::LnkPropWidths widths;
    widths.cbConditions = cbConditions->width();
    widths.lblLeftField = lblLeftField->width();
    widths.lblRightField = lblRightField->width();
    widths.btnLeftOuter = btnLeftOuter->width();
    widths.btnRightOuter = btnRightOuter->width();
    MinWidth = orv::lnkPropMinWidth(
        widths, lblCaption->fontMetrics().horizontalAdvance(lblCaption->text()));
}

// Tops, heights, and the widths that do not depend on the dialog's.
void TdlgLnkProp::placeRows() {
    const int captionHeight = heightOf(lblCaption, captionHeightPx);
    lblCaption->setGeometry(0, 0, width(), captionHeight);
    int top = captionHeight + captionGapPx;

    const int comparisonHeight = std::max({heightOf(cbConditions, operatorHeightPx),
                                           heightOf(lblLeftField, 0), heightOf(lblRightField, 0)});
    lblLeftField->setGeometry(0, top, widthOf(lblLeftField, leftFieldWidthPx), comparisonHeight);
    cbConditions->setGeometry(0, top, widthOf(cbConditions, operatorWidthPx), comparisonHeight);
    lblRightField->setGeometry(0, top, widthOf(lblRightField, rightFieldWidthPx), comparisonHeight);
    top += comparisonHeight + comparisonGapPx;

    const int checkBoxHeight = std::max(heightOf(btnLeftOuter, checkBoxHeightPx),
                                        heightOf(btnRightOuter, checkBoxHeightPx));
    for (QCheckBox* box : {btnLeftOuter, btnRightOuter}) {
        box->setGeometry(0, top, box->width(), checkBoxHeight);
    }
    top += checkBoxHeight;

    if (!edJoinText->isHidden()) {
        top += comparisonGapPx;
        const int textHeight = heightOf(edJoinText, operatorHeightPx);
        lblJoinText->setGeometry(sideMarginPx, top, widthOf(lblJoinText, 0), textHeight);
        edJoinText->setGeometry(0, top, 0, textHeight);
        top += textHeight;
    }

    top += checkBoxesGapPx;
    const int buttonHeight = heightOf(btnOK, buttonHeightPx);
    for (QPushButton* button : {btnOK, btnCancel}) {
        button->setGeometry(0, top, widthOf(button, buttonWidthPx), buttonHeight);
    }
    setFixedHeight(top + buttonHeight + bottomMarginPx);
}

void TdlgLnkProp::FormResize() {
    const orv::LnkPropWidths widths = {cbConditions->width(),  lblLeftField->width(),
                                       lblRightField->width(), btnLeftOuter->width(),
                                       btnRightOuter->width(), btnOK->width(),
                                       btnCancel->width()};
    const orv::LnkPropLefts lefts = orv::lnkPropLayout(width(), widths);
    const auto move = [](QWidget* control, int left) { control->move(left, control->y()); };
    move(cbConditions, lefts.cbConditions);
    move(lblLeftField, lefts.lblLeftField);
    move(lblRightField, lefts.lblRightField);
    move(btnLeftOuter, lefts.btnLeftOuter);
    move(btnRightOuter, lefts.btnRightOuter);
    move(btnOK, lefts.btnOK);
    move(btnCancel, lefts.btnCancel);
    lblCaption->resize(width(), lblCaption->height());
    const int textLeft = lblJoinText->x() + lblJoinText->width() + fieldPaddingPx;
    edJoinText->setGeometry(textLeft, edJoinText->y(), width() - textLeft - sideMarginPx,
                            edJoinText->height());
}

void TdlgLnkProp::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    FormResize();
}
