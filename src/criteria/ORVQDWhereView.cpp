// SPDX-License-Identifier: MIT
// How a criteria panel shows its rows: where they lie, scrolling, painting, tool tips.
#include "catalogue/ORVQDOptions.h"
#include "contract/IPagesHost.h"
#include "core/Text.h"
#include "criteria/ORVQDConditionEditor.h"
#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDFontWidths.h"
#include "criteria/ORVQDWhereAccessible.h"
#include "criteria/ORVQDWherePanel.h"
#include "toolkit/Edges.h"
#include "toolkit/Glyph.h"
#include "toolkit/Services.h"
#include "toolkit/TipText.h"

#include <QHelpEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>

namespace {

const QColor navy(0, 0, 128);
const QColor red(255, 0, 0);
const QColor grey(128, 128, 128);

constexpr int readableContrast = 60;  // between the lightnesses of text and ground
constexpr int markLeftPx = 2;         // of the sign in front of a row, in content coordinates
constexpr int frameGapPx = 1;         // between a text and its frame
constexpr int longestTip = 2000;      // characters
constexpr qreal mutedOpacity = 0.55;  // still to be read, on the colours of all desktops

// The colours are made for light grounds: on a dark one they are as much lighter.
QColor inkOn(const QColor& ground, const QColor& ink) {
    if (std::abs(ground.lightness() - ink.lightness()) >= readableContrast) return ink;
    const int hue = ink.hslHue();
    const int saturation = ink.hslSaturation();
    return ground.lightness() < 128 ? QColor::fromHsl(hue, saturation, 190)
                                    : QColor::fromHsl(hue, saturation, 60);
}

// What stands behind the operator of a group.
QString groupWords() {
    return QStringLiteral(" of following are met");
}

QColor blackOn(const QColor& ground) {
    return ground.lightness() < 128 ? Qt::white : Qt::black;
}

void drawTwoTone(QPainter& painter, const QRect& rect, const QColor& upper, const QColor& lower) {
    painter.fillRect(rect.left(), rect.top(), rect.width(), 1, upper);
    painter.fillRect(rect.left(), rect.top(), 1, rect.height(), upper);
    painter.fillRect(rect.left(), rect.bottom(), rect.width(), 1, lower);
    painter.fillRect(rect.right(), rect.top(), 1, rect.height(), lower);
}

// A gap in a row tells what belongs there.
QString whatIsMissing(int kind) {
    switch (kind) {
    case ekFieldFunc: return QStringLiteral("No function: a click chooses one for the field.");
    case ekFieldName: return QStringLiteral("A field or an expression belongs here.");
    case ekOperator: return QStringLiteral("A click chooses an operator.");
    case ekArgFunc: return QStringLiteral("No function: a click chooses one for the value.");
    default:
        return QStringLiteral(
            "A value belongs here: a number, a text in quotes, a field or an "
            "expression.");
    }
}

// What is behind the last row when there is no condition yet.
QString invitation() {
    return QStringLiteral(
        "No conditions. The menu of the button adds one, and so does the Insert key.");
}

}  // namespace

void TorvQDWherePanel::prepareView() {
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setLineWidth(1);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(QStringLiteral("Conditions"));
    QFont font(QStringLiteral("Arial"));
    font.setStyleHint(QFont::SansSerif);
    setFont(font);
    m_widths = std::make_unique<orv::FontWidths>();
    m_widths->setFont(this->font());
    m_teller = std::make_unique<orv::ConditionTeller>(*this);
    viewport()->setMouseTracking(true);
    setAcceptDrops(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    verticalScrollBar()->setSingleStep(m_context.rowHeight);
    horizontalScrollBar()->setSingleStep(orv::levelIndentPx);
}

// --- where things are ---

void TorvQDWherePanel::rowsChanged(TorvQDWhereRow* row) {
    if (!m_layout) return;
    m_isUnsettled = true;
    m_teller->rowsChanged(row);
    row ? m_layout->rowChanged(*row) : m_layout->rowsChanged();
}

QPoint TorvQDWherePanel::contentOffset() const {
    return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

const std::vector<TorvQDWhereRow*>& TorvQDWherePanel::shownRows() {
    m_layout->ensure();
    return m_layout->rows();
}

void TorvQDWherePanel::relay() {
    if (!m_layout) return;
    m_layout->ensure();
    setScrollRanges();
    repositionEditor();
    viewport()->update();
    m_teller->tell();
}

void TorvQDWherePanel::refreshView() {
    if (isVisible()) relay();
}

void TorvQDWherePanel::SetRowHeight(int height) {
    m_context.rowHeight = std::max(1, height);
    verticalScrollBar()->setSingleStep(m_context.rowHeight);
    if (!m_layout) return;
    m_layout->textsChanged();
    refreshView();
}

void TorvQDWherePanel::setScrollRanges() {
    const QSize extent = m_layout->extent().expandedTo(m_editor->contentExtent());
    const QSize rest = extent - viewport()->size();
    horizontalScrollBar()->setRange(0, std::max(0, rest.width() + frameGapPx + 1));
    horizontalScrollBar()->setPageStep(viewport()->width());
    verticalScrollBar()->setRange(0, std::max(0, rest.height()));
    verticalScrollBar()->setPageStep(viewport()->height());
}

QRect TorvQDWherePanel::GetFullExtention(bool AllRows) {
    if (!m_layout) return {};
    m_layout->ensure();
    return {QPoint(), AllRows ? m_layout->fullExtent() : m_layout->extent()};
}

TorvQDWhereRow* TorvQDWherePanel::LookRows(int y, int& top) {
    if (!m_layout) return nullptr;
    m_layout->ensure();
    TorvQDWhereRow* row = m_layout->rowAt(y);
    if (row) top = row->GetTopBound();
    return row;
}

TorvQDControl* TorvQDWherePanel::LookControl(const TorvQDWhereRow& row, int x) const {
    return orv::ConditionLayout::controlAt(row, x);
}

TorvQDControl* TorvQDWherePanel::elementAt(const QPoint& viewPoint) {
    const QPoint point = viewPoint + contentOffset();
    int top = 0;
    const TorvQDWhereRow* row = LookRows(point.y(), top);
    return row ? LookControl(*row, point.x()) : nullptr;
}

QRect TorvQDWherePanel::elementRect(const TorvQDControl& element) {
    if (m_layout) m_layout->ensure();
    const int top = element.Row->GetTopBound();
    if (top < 0) return {};
    return QRect(element.Left, top, element.Width, m_context.rowHeight)
        .translated(-contentOffset());
}

void TorvQDWherePanel::showElement(const TorvQDControl& element) {
    relay();
    const QRect rect = elementRect(element);
    if (rect.isNull()) return;
    QScrollBar& down = *verticalScrollBar();
    QScrollBar& across = *horizontalScrollBar();
    if (rect.y() + rect.height() > viewport()->height()) {
        down.setValue(down.value() + rect.y() + rect.height() - viewport()->height());
    }
    if (rect.y() < 0) down.setValue(down.value() + rect.y());
    const int right = rect.x() + rect.width() + 2;
    if (right > viewport()->width()) across.setValue(across.value() + right - viewport()->width());
    const int left = elementRect(element).x() - 1;
    if (left < 0) across.setValue(across.value() + left);
}

void TorvQDWherePanel::scrollContentsBy(int dx, int dy) {
    viewport()->scroll(dx, dy);
    if (m_editor) m_editor->place();
}

void TorvQDWherePanel::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    if (!m_layout || !isVisible()) return;
    orv::guarded([this] { relay(); });
}

void TorvQDWherePanel::showEvent(QShowEvent* event) {
    QAbstractScrollArea::showEvent(event);
    orv::guarded([this] { relay(); });
}

// A page that is left takes what was typed over, also where the editor had no focus to lose; a
// window that is closed may be about to die.
void TorvQDWherePanel::hideEvent(QHideEvent* event) {
    QAbstractScrollArea::hideEvent(event);
    if (event->spontaneous() || window()->isHidden()) return;
    orv::guarded([this] { commitEdit(); });
}

void TorvQDWherePanel::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange && m_widths) {
        m_widths->setFont(font());
        if (m_layout) m_layout->textsChanged();
    }
    if (m_layout) orv::guarded([this] { refreshView(); });
}

// --- elements ---

void TorvQDWherePanel::updateRow(const TorvQDWhereRow* row) {
    if (!row || row->GetTopBound() < 0) return;
    viewport()->update(0, row->GetTopBound() - contentOffset().y(), viewport()->width(),
                       m_context.rowHeight);
}

// Rows and elements that were referred to may be gone or hidden.
void TorvQDWherePanel::settleElements() const {
    if (!std::exchange(m_isUnsettled, false)) return;
    const TorvQDWhereRow* root = rootRow();
    const auto settled = [](const orv::ElementRef& reference) -> orv::ElementRef {
        const TorvQDWhereRow* row = reference.row();
        if (!row) return {};
        const TorvQDWhereRow* collapsed = nullptr;
        for (const TorvQDWhereRow* group = row->parentRow(); group; group = group->parentRow()) {
            if (!group->Expanded) collapsed = group;
        }
        if (collapsed) return {*collapsed, ekGroupOper};
        if (row->isGroup()) return {*row, std::min(reference.kind(), int(ekGroupOper))};
        return {*row, std::min(reference.kind(), int(row->Controls.size()) - 1)};
    };
    m_current = settled(m_current);
    m_active = settled(m_active);
    if (!m_active.get() && root) m_active = orv::ElementRef(*root, ekGroupOper);
}

TorvQDControl* TorvQDWherePanel::CurrentElement() const {
    settleElements();
    return m_current.get();
}

TorvQDControl* TorvQDWherePanel::ActiveElement() const {
    settleElements();
    return m_active.get();
}

void TorvQDWherePanel::setCurrentElement(const TorvQDControl* element) {
    m_current = orv::ElementRef(element);
}

void TorvQDWherePanel::setActiveElement(const TorvQDControl* element) {
    settleElements();
    const orv::ElementRef next(element);
    if (next == m_active) return;
    updateRow(m_active.row());
    m_active = next;
    updateRow(m_active.row());
    // While rows change, all is told at the end.
    if (m_layout && !m_layout->isStale()) m_teller->tell();
}

void TorvQDWherePanel::setHotElement(const TorvQDControl* element) {
    const Qt::CursorShape shape = element ? Qt::PointingHandCursor : Qt::ArrowCursor;
    if (viewport()->cursor().shape() != shape) viewport()->setCursor(shape);
    const orv::ElementRef next(element);
    if (next == m_hot) return;
    for (const orv::ElementRef& changed : {std::exchange(m_hot, next), next}) {
        const TorvQDControl* control = changed.get();
        if (control && control->Kind == ekButton) updateRow(control->Row);
    }
}

QString TorvQDWherePanel::rowProblem(const TorvQDWhereRow& row) const {
    if (row.isMutedWithin()) return {};
    if (row.isGroup()) {
        if (!row.parentRow() || row.SubRows->GetCount() > 0) return {};
        return QStringLiteral("This group has no conditions.");
    }
    const QStringList texts = QStringList(row.FieldName) + row.Arguments;
    if (std::any_of(texts.begin(), texts.end(),
                    [](const QString& text) { return orv::isBlank(text); })) {
        return QStringLiteral("This condition is not filled in.");
    }
    const IPagesHost* owner = host();
    if (!owner) return {};
    for (const QString& text : texts) {
        QString problem = owner->nameProblem(text);
        if (!problem.isEmpty()) return problem;
    }
    return {};
}

// --- painting ---

QColor TorvQDWherePanel::bandColor(const TorvQDWhereRow& row) const {
    const QColor ground =
        (parentWidget() ? parentWidget()->palette() : palette()).color(QPalette::Window);
    const IPagesHost* owner = host();
    if (!owner || m_active.row() != &row) return ground;
    const TorvQDConditionOptions& options = owner->conditionOptions();
    return options.GetSelectRow() ? options.GetActiveRowColor() : ground;
}

void TorvQDWherePanel::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    const QRect region = event->rect();
    painter.fillRect(
        region, (parentWidget() ? parentWidget()->palette() : palette()).color(QPalette::Window));
    if (!m_layout) return;
    orv::guarded([&] {
        settleElements();
        m_layout->ensure();
        const std::vector<TorvQDWhereRow*>& rows = m_layout->rows();
        const int height = m_context.rowHeight;
        const int top = contentOffset().y();
        const int first = std::max(0, (region.top() + top) / height);
        const int last = std::min(int(rows.size()) - 1, (region.bottom() + top) / height);
        for (int index = first; index <= last; ++index) {
            DrawRow(painter, *rows[std::size_t(index)], index * height - top);
        }
        drawDropMark(painter);
        if (isEditing()) {
            // The editor has no border of its own and is as white as the active row.
            const QRect frame = m_editor->memo().geometry().adjusted(-1, -1, 1, 1);
            drawTwoTone(painter, frame, grey, grey);
            return;
        }
        if (rows.size() != 1) return;
        painter.setFont(m_widths->plainFont());
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(QRect(2 * orv::levelIndentPx, height - top, viewport()->width(), height),
                         Qt::AlignVCenter | Qt::TextSingleLine, invitation());
    });
}

void TorvQDWherePanel::DrawRow(QPainter& painter, const TorvQDWhereRow& row, int y) const {
    const QColor ground = bandColor(row);
    painter.fillRect(0, y, viewport()->width(), m_context.rowHeight, ground);
    if (!rowProblem(row).isEmpty()) {
        const orv::Glyph& mark = orv::glyph(QStringLiteral("PROBLEM"));
        const int markTop = y + (m_context.rowHeight - mark.size().height()) / 2;
        mark.paint(painter,
                   QRectF(QPointF(markLeftPx - contentOffset().x(), markTop), QSizeF(mark.size())));
    }
    DrawButton(painter, row, y);
    painter.save();
    if (row.isMutedWithin()) painter.setOpacity(mutedOpacity);
    row.isGroup() ? drawGroup(painter, row, y) : drawElements(painter, row, y);
    if (row.Muted) {
        const bool hasWords = row.isGroup() && row.Expanded;
        const int width =
            hasWords ? m_widths->width(row.GroupOper, true) + m_widths->width(groupWords(), false)
                     : row.rightBound() - row.Controls[1]->Left;
        painter.fillRect(row.Controls[1]->Left - contentOffset().x(), y + m_context.rowHeight / 2,
                         width, 1, blackOn(ground));
    }
    painter.restore();
}

void TorvQDWherePanel::drawGroup(QPainter& painter, const TorvQDWhereRow& row, int y) const {
    const QColor ground = bandColor(row);
    const TorvQDControl& element = *row.Controls[ekGroupOper];
    const int x = element.Left - contentOffset().x();
    if (m_active.get() == &element) {
        DrawActiveElement(painter, QRect(x, y, element.Width, m_context.rowHeight), hasFocus());
    }
    if (row.Expanded) {
        DrawGroupCondition(painter, row.GroupOper, QPoint(x, y), ground);
        return;
    }
    painter.setFont(m_widths->emphasisedFont());
    painter.setPen(inkOn(ground, navy));
    painter.drawText(QRect(x, y, element.Width, m_context.rowHeight),
                     Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip, element.GetText());
}

void TorvQDWherePanel::drawElements(QPainter& painter, const TorvQDWhereRow& row, int y) const {
    const QColor ground = bandColor(row);
    const int offset = contentOffset().x();
    const QColor ink = inkOn(ground, row.Valid ? navy : red);
    constexpr int flags = Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip;
    for (std::size_t index = 1; index < row.Controls.size(); ++index) {
        const TorvQDControl& element = *row.Controls[index];
        const QRect rect(element.Left - offset, y, element.Width, m_context.rowHeight);
        if (index > ekArgument) {
            const TorvQDControl& before = *row.Controls[index - 1];
            const int gapLeft = before.Left + before.Width - offset;
            painter.setFont(m_widths->plainFont());
            painter.setPen(blackOn(ground));
            painter.drawText(QRect(gapLeft, y, rect.left() - gapLeft, rect.height()),
                             Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip,
                             row.Operator ? row.Operator->Relate : QString());
        }
        if (element.Width <= 0) continue;
        if (m_active.get() == &element) DrawActiveElement(painter, rect, hasFocus());
        painter.setFont(m_widths->emphasisedFont());
        painter.setPen(ink);
        painter.drawText(rect, flags, element.GetText());
    }
}

void TorvQDWherePanel::DrawGroupCondition(QPainter& painter, const QString& text, const QPoint& at,
                                          const QColor& ground) const {
    const int width = m_widths->width(text, true);
    const QRect band(at.x(), at.y(), viewport()->width() - at.x(), m_context.rowHeight);
    constexpr int flags = Qt::AlignVCenter | Qt::TextSingleLine;
    painter.setFont(m_widths->emphasisedFont());
    painter.setPen(inkOn(ground, navy));
    painter.drawText(band, flags, text);
    painter.setFont(m_widths->plainFont());
    painter.setPen(blackOn(ground));
    painter.drawText(band.adjusted(width, 0, 0, 0), flags, groupWords());
}

// One pixel around the text. With the focus it lies lower than the row, without it higher.
void TorvQDWherePanel::DrawActiveElement(QPainter& painter, const QRect& rect,
                                         bool isSunken) const {
    const QRect frame = rect.adjusted(-frameGapPx, 0, frameGapPx, 0);
    drawTwoTone(painter, frame, isSunken ? grey : QColor(Qt::white),
                isSunken ? QColor(Qt::white) : grey);
}

void TorvQDWherePanel::DrawButton(QPainter& painter, const TorvQDWhereRow& row, int y) const {
    const TorvQDControl& element = *row.Controls[ekButton];
    const QRect rect(element.Left - contentOffset().x(), y + 1, element.Width,
                     m_context.rowHeight - 2);
    const bool isHot = m_hot.get() == &element;
    const bool isPressed = isHot && m_pressed.get() == &element;
    const IPagesHost* owner = host();
    const TbtnStyle style = owner ? owner->conditionOptions().GetBtnsStyle() : btnFlat;
    const QColor face = palette().color(QPalette::Button);
    painter.fillRect(rect, face);
    if (style == btnFlat) {
        drawTwoTone(painter, rect, grey, grey);
    } else if (isPressed) {
        drawTwoTone(painter, rect, grey, Qt::white);
    } else if (style == btn3DLook || isHot) {
        drawTwoTone(painter, rect, Qt::white, blackOn(Qt::white));
        drawTwoTone(painter, rect.adjusted(1, 1, -1, -1), face, grey);
    }
    const int shift = isPressed ? 1 : 0;
    const QColor ink = palette().color(QPalette::ButtonText);
    if (row.parentRow()) {
        painter.setFont(m_widths->plainFont());
        painter.setPen(ink);
        painter.drawText(rect.translated(shift, shift), Qt::AlignCenter | Qt::TextSingleLine,
                         element.GetText());
        return;
    }
    // The root row has no number: an arrow tells of its menu.
    const QPoint middle = rect.center() + QPoint(shift, shift);
    for (int line = 0; line < 4; ++line) {
        painter.fillRect(middle.x() - 3 + line, middle.y() - 1 + line, 7 - 2 * line, 1, ink);
    }
}

// --- tool tips ---

namespace {

QString tipOf(const QString& text) {
    return text.size() > longestTip ? text.left(longestTip) + QStringLiteral("...") : text;
}

// What an element of a condition stands for, in full.
QString fullText(TorvQDWhereRow& row, int kind) {
    switch (kind) {
    case ekFieldFunc: return row.FieldFunc;
    case ekArgFunc: return row.ArgFunc;
    case ekOperator: return row.Operator ? row.Operator->Caption : QString();
    default: break;
    }
    const QString* text = row.textOf(kind);
    return text ? *text : QString();
}

}  // namespace

// What is cut in the row, what a group means in SQL, and what is wrong.
QString TorvQDWherePanel::hintAt(const QPoint& viewPoint) {
    const QPoint point = viewPoint + contentOffset();
    int top = 0;
    TorvQDWhereRow* row = LookRows(point.y(), top);
    if (!row) return {};
    // The words of a group go on behind its element.
    if (row->isGroup() && point.x() >= row->Controls[ekGroupOper]->Left &&
        row->SubRows->GetCount() > 0) {
        return tipOf(orv::orvTrim(row->shortCondition(longestTip)));
    }
    const TorvQDControl* element = LookControl(*row, point.x());
    QString problem = row->isMutedWithin()
                          ? QStringLiteral("Muted: the statement does not have this condition.")
                          : rowProblem(*row);
    if (row->isGroup() || !element || element->Kind == ekButton) return problem;
    const QString full = fullText(*row, element->Kind);
    if (orv::isBlank(full) && !row->isExpression()) return whatIsMissing(element->Kind);
    if (problem.isEmpty() && !row->Valid) {
        problem = QStringLiteral("The types of the two sides do not go together.");
    }
    if (full == element->GetText()) return problem;
    return problem.isEmpty() ? tipOf(full) : tipOf(full) + u'\n' + problem;
}

bool TorvQDWherePanel::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip && m_layout) {
        const auto* help = static_cast<QHelpEvent*>(event);
        orv::guarded([&] {
            // It goes when the mouse leaves what it is about.
            const TorvQDControl* element = elementAt(help->pos());
            QToolTip::showText(help->globalPos(), orv::plainTip(hintAt(help->pos())), viewport(),
                               element ? elementRect(*element) : QRect());
        });
        return true;
    }
    if (event->type() == QEvent::Leave) setHotElement(nullptr);
    return QAbstractScrollArea::viewportEvent(event);
}
