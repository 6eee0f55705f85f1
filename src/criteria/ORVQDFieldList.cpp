// SPDX-License-Identifier: MIT
#include "criteria/ORVQDFieldList.h"

#include "criteria/ORVQDFieldModel.h"
#include "toolkit/InPlace.h"
#include "toolkit/Keys.h"
#include "toolkit/Services.h"

#include <QApplication>
#include <QFocusEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr QSize usualSizePx(240, 180);
constexpr int leastHeightPx = 100;  // of a list that is not as high as it wants to be
constexpr int iconPx = 16;
constexpr int typeGapPx = 8;
// So many tables and fields are shown at once, more of them with the tables closed.
constexpr int fewRows = 12;

// The name of a field, and in grey behind it what its type is called, where there is room.
class FieldDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& given,
               const QModelIndex& index) const override {
        QStyledItemDelegate::paint(painter, given, index);
        const QString type = index.data(orv::FieldModel::TypeRole).toString();
        if (type.isEmpty()) return;
        QStyleOptionViewItem option = given;
        initStyleOption(&option, index);
        const QStyle* style = option.widget->style();
        QRect text = style->subElementRect(QStyle::SE_ItemViewItemText, &option, option.widget);
        const int name = option.fontMetrics.horizontalAdvance(option.text) + typeGapPx;
        const bool isMirrored = option.direction == Qt::RightToLeft;
        text.adjust(isMirrored ? 0 : name, 0, isMirrored ? -name : 0, 0);
        if (option.fontMetrics.horizontalAdvance(type) > text.width()) return;
        const bool isSelected = option.state & QStyle::State_Selected;
        QColor colour = option.palette.color(isSelected ? QPalette::HighlightedText
                                                        : QPalette::PlaceholderText);
        if (isSelected) colour.setAlphaF(0.7F);
        painter->save();
        painter->setFont(option.font);
        painter->setPen(colour);
        const Qt::Alignment side =
            QStyle::visualAlignment(option.direction, Qt::AlignLeading | Qt::AlignVCenter);
        painter->drawText(text, int(side) | Qt::TextSingleLine, type);
        painter->restore();
    }
};

bool moves(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: return true;
    default: return false;
    }
}

// Ctrl and Alt together are AltGr.
bool typesText(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::ShiftModifier;
    const bool isCommand = modifiers == Qt::ControlModifier || modifiers == Qt::AltModifier;
    return !isCommand && !event.text().isEmpty() && event.text().front().isPrint();
}

}  // namespace

TTreeViewEx::TTreeViewEx(QWidget* parent) : QTreeView(parent) {
    setFrameShape(QFrame::NoFrame);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setIconSize(QSize(iconPx, iconPx));
    setItemDelegate(new FieldDelegate(this));
}

namespace orv {

FieldList::FieldList(QWidget* parent)
    : QFrame(parent),
      m_model(new FieldModel(this)),
      m_filter(new QLineEdit(this)),
      m_tree(new TTreeViewEx(this)) {
    setFrameStyle(QFrame::Box | QFrame::Plain);
    setForegroundRole(QPalette::Mid);  // of the frame
    setAutoFillBackground(true);
    setAccessibleName(tr("Fields"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setAccessibleName(tr("Filter of the fields"));
    m_filter->setFrame(false);
    m_tree->setAccessibleName(tr("Tables and fields"));
    auto* line = new QFrame(this);
    line->setFrameStyle(QFrame::HLine | QFrame::Plain);
    line->setForegroundRole(QPalette::Mid);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_filter);
    layout->addWidget(line);
    layout->addWidget(m_tree);
    setFocusProxy(m_filter);
    for (QWidget* part : std::initializer_list<QWidget*>{m_filter, m_tree}) {
        part->installEventFilter(this);
    }
    connect(m_filter, &QLineEdit::textChanged, this, &FieldList::applyFilter);
    connect(m_tree, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
        if (!m_model->isTable(index)) choose(index);
    });
    hide();
}

QSize FieldList::sizeWithin(const QSize& area) {
    return usualSizePx.boundedTo(area);
}

QRect FieldList::rectBeside(const QRect& editor, const QRect& area) {
    const int below = area.bottom() - editor.bottom();
    const int above = editor.top() - area.top();
    const int room = std::max(below, above);
    QSize size = sizeWithin(area.size());
    if (room >= leastHeightPx) size.setHeight(std::min(size.height(), room));
    QRect rect(editor.left(), editor.bottom() + 1, size.width(), size.height());
    if (size.height() > room) {
        rect.moveTopLeft(QPoint(editor.right() + 1, area.top()));
    } else if (size.height() > below) {
        rect.moveTop(editor.top() - size.height());
    }
    rect.moveLeft(std::max(area.left(), std::min(rect.left(), area.right() - rect.width() + 1)));
    rect.moveTop(std::max(area.top(), std::min(rect.top(), area.bottom() - rect.height() + 1)));
    return rect;
}

// What takes its time is for those who open the list: each page of conditions has one.
void FieldList::complete() {
    if (m_tree->model()) return;
    m_tree->setModel(m_model);
    m_filter->setClearButtonEnabled(true);  // its picture comes from a file
}

void FieldList::open(const IPagesHost& host) {
    m_isOpen = false;
    complete();
    m_filter->clear();
    m_model->fill(host);
    expandFew();
    for (QWidget* part : std::initializer_list<QWidget*>{m_filter, m_tree})
        part->setFocusProxy(nullptr);
    m_isOpen = true;
    raise();
    show();
    m_filter->setFocus();
}

// The focus goes first: hiding a focused widget would hand it to the next one of the tab chain.
void FieldList::discard() {
    m_isOpen = false;
    const QPointer<FieldList> self(this);
    QWidget* focus = QApplication::focusWidget();
    if (focus && isAncestorOf(focus) && parentWidget()) parentWidget()->setFocus();
    if (!self) return;
    hide();
    m_model->clear();
}

// One after another: expandAll() keeps an index of every field, too, which takes seconds for many.
void FieldList::openTables() {
    for (int row = 0; row < m_model->rowCount(); ++row) m_tree->expand(m_model->index(row, 0));
}

void FieldList::expandFew() {
    if (m_model->rowCount() == 1 || m_model->shownCount() <= fewRows) openTables();
}

// What is found first is what Enter takes.
void FieldList::applyFilter(const QString& text) {
    m_model->setFilter(text);
    if (text.isEmpty()) {
        expandFew();
        return;
    }
    openTables();
    m_tree->setCurrentIndex(m_model->firstField());
}

void FieldList::choose(const QModelIndex& index) {
    if (!m_isOpen || !index.isValid()) return;
    if (m_model->isTable(index)) {
        m_tree->setExpanded(index, !m_tree->isExpanded(index));
        return;
    }
    const auto handler = chosen;
    const QString name = m_model->qualifiedName(index);
    if (handler) guarded([&] { handler(name); });
}

// Its keys are its own, also where the window has shortcuts on them.
bool FieldList::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride: {
        const auto& key = static_cast<QKeyEvent&>(*event);
        const bool isPlain = !(key.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier));
        const bool isOwn =
            isEnter(key.key()) || key.key() == Qt::Key_Escape || moves(key) || typesText(key);
        if (!isPlain || !isOwn) return false;
        event->accept();
        return true;
    }
    case QEvent::KeyPress: return pressKey(watched, static_cast<QKeyEvent&>(*event));
    case QEvent::FocusOut: {
        const QPointer<FieldList> self(this);
        loseFocus(static_cast<QFocusEvent*>(event)->reason());
        return !self;  // then its parts are gone, too
    }
    default: return false;
    }
}

bool FieldList::pressKey(QObject* watched, QKeyEvent& event) {
    const bool isPlain = !(event.modifiers() & ~Qt::KeypadModifier);
    if (event.key() == Qt::Key_Escape) {
        event.accept();
        const auto handler = cancelled;
        if (handler && m_isOpen) guarded(handler);
    } else if (isEnter(event.key())) {
        event.accept();
        if (isPlain) choose(m_tree->currentIndex());
    } else if (watched == m_filter) {
        if (!isPlain || (event.key() != Qt::Key_Down && event.key() != Qt::Key_PageDown)) {
            return false;
        }
        stepIntoTree(event);
    } else if (event.key() == Qt::Key_Up && isPlain &&
               !m_tree->indexAbove(m_tree->currentIndex()).isValid()) {
        m_filter->setFocus(Qt::BacktabFocusReason);
    } else if (typesText(event) || event.key() == Qt::Key_Backspace) {
        typeIntoFilter(event);
    } else {
        return false;
    }
    return true;
}

// Nothing is chosen at first; later the key goes on from what is.
void FieldList::stepIntoTree(QKeyEvent& event) {
    if (m_tree->currentIndex().isValid()) {
        QCoreApplication::sendEvent(m_tree, &event);
    } else {
        m_tree->setCurrentIndex(m_model->index(0, 0));
    }
    m_tree->setFocus(Qt::TabFocusReason);
}

void FieldList::typeIntoFilter(QKeyEvent& event) {
    m_filter->setFocus(Qt::OtherFocusReason);
    m_filter->end(false);
    QCoreApplication::sendEvent(m_filter, &event);
}

void FieldList::loseFocus(Qt::FocusReason reason) {
    if (!isExit(reason)) return;
    QWidget* newFocus = QApplication::focusWidget();
    if (!m_isOpen || (newFocus && (newFocus == this || isAncestorOf(newFocus)))) return;
    for (QWidget* part : std::initializer_list<QWidget*>{m_filter, m_tree}) {
        handOnFocus(*part, parentWidget(), reason);
    }
    const QPointer<QWidget> there(newFocus);
    const auto handler = exited;
    const QPointer<FieldList> self(this);
    discard();
    if (self && handler) guarded([&] { handler(there); });
}

}  // namespace orv
