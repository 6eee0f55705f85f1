// SPDX-License-Identifier: MIT
// How a box looks: caption, check box, rows. Plain so far; borders and caption buttons are not
// drawn yet.
#include "diagram/ORVQDFloatTable.h"

#include <QFontMetrics>
#include <QPalette>

#include <algorithm>

namespace {

const QColor selectedCaptionColor(0xC0, 0xC0, 0xC0);

enum class Tick { None, Some, All };

// A check box of the size of `box`, without smoothing so that its edges stay on pixels.
void drawCheckBox(QPainter& painter, const QRect& box, Tick tick) {
    painter.save();
    painter.setPen(QColor(0x60, 0x60, 0x60));
    painter.setBrush(tick == Tick::Some ? QColor(0xD0, 0xD0, 0xD0) : QColor(Qt::white));
    painter.drawRect(box.adjusted(0, 0, -1, -1));
    if (tick != Tick::None) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(
            QPen(tick == Tick::Some ? QColor(0x50, 0x50, 0x50) : QColor(Qt::black), 1.6));
        const QRectF area(box);
        const QPointF marks[] = {
            {area.left() + area.width() * 0.24, area.top() + area.height() * 0.52},
            {area.left() + area.width() * 0.44, area.top() + area.height() * 0.72},
            {area.left() + area.width() * 0.78, area.top() + area.height() * 0.28}};
        painter.drawPolyline(marks, 3);
    }
    painter.restore();
}

}  // namespace

QColor TorvQDTable::GetClientColor() const {
    return canvas() ? canvas()->options().GetTableColor() : QColor(Qt::white);
}

void TorvQDTable::Paint(QPainter& Painter) {
    if (!canvas()) return;
    const QRect bounds = toView(GetBoundsRect()).toQRect();
    Painter.save();
    Painter.setClipRect(bounds, Qt::IntersectClip);
    if (Expanded) paintRows(Painter);
    paintCaption(Painter);
    Painter.setPen(Selected ? QColor(0x40, 0x40, 0x40) : QColor(0x90, 0x90, 0x90));
    Painter.setBrush(Qt::NoBrush);
    Painter.drawRect(bounds.adjusted(0, 0, -1, -1));
    Painter.restore();
}

void TorvQDTable::paintCaption(QPainter& painter) const {
    const QPalette palette = Parent->palette();
    const QRect strip = toView(captionStrip()).toQRect();
    painter.fillRect(strip, Selected ? selectedCaptionColor : palette.color(QPalette::Button));
    painter.setPen(QColor(0x90, 0x90, 0x90));
    painter.drawLine(strip.bottomLeft(), strip.bottomRight());
    const Tick ticks[] = {Tick::None, Tick::Some, Tick::All};
    drawCheckBox(painter, toView(checkBoxRect()).toQRect(), ticks[FieldState]);
    QFont font = canvas()->options().GetFont();
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(palette.color(QPalette::ButtonText));
    // Until the caption buttons are drawn, their place belongs to the text.
    QRect area = toView(GetCaptionRect()).toQRect();
    area.setRight(strip.right() - BorderWidth);
    painter.drawText(area, Qt::AlignVCenter | Qt::TextSingleLine,
                     QFontMetrics(font).elidedText(GetCaption(), Qt::ElideRight, area.width()));
}

void TorvQDTable::paintRows(QPainter& painter) const {
    painter.save();
    painter.fillRect(toView(GetBoundsRect()).toQRect(), GetClientColor());
    painter.setClipRect(toView(scrolledArea()).toQRect(), Qt::IntersectClip);
    painter.setFont(canvas()->options().GetFont());
    const int last = std::min(int(Items.size()), FirstVisibleItem + VisibleCount + 1);
    for (int index = std::max(0, FirstVisibleItem); index < last; ++index) {
        const TorvQDListItem& item = *Items[std::size_t(index)];
        // Vector files know no clipping: what of a row is hardly seen is left out.
        const int visible = toView(GetClientRect()).Bottom - GetItemRect(&item).Top;
        if (visible >= ItemHeight / 2) paintRow(painter, item);
    }
    painter.restore();
}

void TorvQDTable::paintRow(QPainter& painter, const TorvQDListItem& item) const {
    QRect rect = GetItemRect(&item).toQRect().adjusted(0, 1, 0, 0);
    const TorvQDWorkAreaOptions& options = canvas()->options();
    const bool selected = &item == CurrentItem && (Selected || !options.GetHideSelection());
    const int glyph = std::min(13, ItemHeight - 2);
    drawCheckBox(painter, {rect.left() + 1, rect.top() + (rect.height() - glyph) / 2, glyph, glyph},
                 item.Checked ? Tick::All : Tick::None);
    rect.setLeft(rect.left() + ItemHeight);
    rect.setRight(std::min(rect.right(), toView(scrolledArea()).Right - 1));
    if (selected) painter.fillRect(rect, selectedCaptionColor);
    QString text = u' ' + item.Name;
    if (options.GetShowFieldsType()) {
        text += QStringLiteral(" (") +
                item.GetDataName().replace(QStringLiteral("&&"), QStringLiteral("&")) + u')';
    }
    painter.setPen(selected ? Qt::white : Qt::black);
    painter.drawText(rect, Qt::AlignVCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text, Qt::ElideRight, rect.width()));
}
