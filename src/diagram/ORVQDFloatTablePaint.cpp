// SPDX-License-Identifier: MIT
// How a box looks: borders, caption, caption buttons, rows.
#include "diagram/ORVQDFloatTable.h"
#include "toolkit/Glyph.h"

#include <QFontMetrics>
#include <QPalette>

#include <algorithm>

namespace {

const QColor selectionColor(0xC0, 0xC0, 0xC0);
const QColor dropColor(0x00, 0x80, 0x80);
const QColor shadowColor(0x80, 0x80, 0x80);

constexpr int buttonCount = 3;
constexpr int rowOffsetPx = 1;         // what is drawn of a row lies below the top of its rectangle
constexpr int readableContrast = 100;  // between the lightnesses of text and ground

enum ButtonState { buttonPressed = 0, buttonNormal = 1, buttonHot = 2 };

const orv::Glyph& buttonGlyph(int index) {
    static const orv::Glyph* const glyphs[] = {&orv::glyph(QStringLiteral("BTN1")),
                                               &orv::glyph(QStringLiteral("BTN2")),
                                               &orv::glyph(QStringLiteral("BTN3"))};
    return *glyphs[index];
}

const orv::Glyph& fieldStateGlyph(int state) {
    static const orv::Glyph* const glyphs[] = {&orv::glyph(QStringLiteral("BOX1")),
                                               &orv::glyph(QStringLiteral("BOX2")),
                                               &orv::glyph(QStringLiteral("BOX3"))};
    return *glyphs[std::clamp(state, 0, 2)];
}

const orv::Glyph& rowGlyph(const TorvQDListItem& item) {
    static const orv::Glyph& unchecked = orv::glyph(QStringLiteral("UNCHECKBMP"));
    static const orv::Glyph& checked = orv::glyph(QStringLiteral("CHECKBMP"));
    static const orv::Glyph& noValue = orv::glyph(QStringLiteral("INPUTNULL"));
    static const orv::Glyph& value = orv::glyph(QStringLiteral("INPUTPARAM"));
    if (item.ParamType == ptOutput) return item.Checked ? checked : unchecked;
    return item.Checked && !item.IsNull ? value : noValue;
}

void paintGlyph(QPainter& painter, const orv::Glyph& glyph, int left, int top,
                const QColor& ink = {}) {
    glyph.paint(painter, QRectF(QPointF(left, top), QSizeF(glyph.size())), ink);
}

// The caption's text: the palette's, unless that cannot be read on the ground, as white text on the
// grey of a selected box.
QColor captionInk(const QPalette& palette, const QColor& ground) {
    const QColor ink = palette.color(QPalette::ButtonText);
    if (std::abs(ink.lightness() - ground.lightness()) >= readableContrast) return ink;
    return ground.lightness() < 128 ? Qt::white : Qt::black;
}

void drawFocus(QPainter& painter, const QRect& rect) {
    QPen dots(Qt::black, 1, Qt::CustomDashLine, Qt::FlatCap);
    dots.setDashPattern({1, 1});
    painter.setPen(dots);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect.adjusted(0, 0, -1, -1));
}

constexpr TSetOfItemStates stateBit(TorvQDItemState state) {
    return TSetOfItemStates(1U << state);
}

}  // namespace

QColor TorvQDTable::GetClientColor() const {
    return canvas() ? canvas()->options().GetTableColor() : QColor(Qt::white);
}

orv::Bevel TorvQDTable::GetTableBorder() const {
    if (!canvas()) return orv::Bevel::Raised;
    switch (canvas()->options().GetTableBorder()) {
    case edgeBump: return orv::Bevel::Bump;
    case edgeEtched: return orv::Bevel::Etched;
    case edgeRaised: return orv::Bevel::Raised;
    case edgeSunken: return orv::Bevel::Sunken;
    }
    return orv::Bevel::Raised;
}

bool TorvQDTable::GetFlat() const {
    return canvas() && canvas()->options().GetFlat();
}

bool TorvQDTable::GetbtnFlat() const {
    return canvas() && canvas()->options().GetFlatCaptionBtns();
}

bool TorvQDTable::GetHideSelection() const {
    return canvas() && canvas()->options().GetHideSelection();
}

const orv::BoxFonts& TorvQDTable::fonts() const {
    m_fonts.follow(canvas()->options().GetFont());
    return m_fonts;
}

void TorvQDTable::Paint(QPainter& Painter) {
    if (!canvas()) return;
    const QRect bounds = toView(GetBoundsRect()).toQRect();
    if (Painter.hasClipping() && !Painter.clipBoundingRect().intersects(bounds)) return;
    Painter.save();
    Painter.setRenderHint(QPainter::Antialiasing, false);
    paintFrame(Painter, bounds);
    paintCaption(Painter);
    if (Expanded) paintRows(Painter);
    Painter.restore();
}

QColor TorvQDTable::captionColor() const {
    return Selected ? selectionColor : Parent->palette().color(QPalette::Button);
}

void TorvQDTable::paintFrame(QPainter& painter, const QRect& bounds) const {
    const QPalette& palette = Parent->palette();
    const bool isFlat = GetFlat();
    // One ring is thinner than a border: what it leaves free belongs to the box all the same.
    if (isFlat) painter.fillRect(bounds, palette.color(QPalette::Button));
    painter.fillRect(toView(captionStrip()).toQRect(), captionColor());
    orv::drawBevel(painter, bounds, palette, GetTableBorder(), isFlat);
    if (!Expanded) return;
    QRect rows = bounds.adjusted(BorderWidth, BorderWidth, -BorderWidth, -BorderWidth);
    rows.setTop(rows.top() - BorderWidth + CaptionHeight);
    orv::drawBevel(painter, rows, palette, orv::Bevel::Sunken, isFlat);
}

void TorvQDTable::paintCaption(QPainter& painter) const {
    const QRect area = toView(GetCaptionRect()).toQRect();
    if (area.width() > 0) {
        QString caption = GetCaption();
        if (caption.isEmpty()) caption = QStringLiteral(" ");
        const QFont& font = fonts().bold;
        orv::CaptionText& text = m_captionText;
        if (text.width != area.width() || text.caption != caption || text.font != font) {
            text.caption = caption;
            text.font = font;
            text.width = area.width();
            text.line.setText(QFontMetrics(font).elidedText(caption, Qt::ElideRight, area.width()));
        }
        painter.setFont(font);
        painter.setPen(captionInk(Parent->palette(), captionColor()));
        text.line.draw(painter, area, m_fonts.boldHeight);
    }
    const TRect buttons = toView(GetButtonRect());
    for (int index = 0; index < buttonCount; ++index) {
        const bool isHot = HotButton == index;
        int state = buttonNormal;
        if (isHot && PressedButton == index) state = buttonPressed;
        if (isHot && PressedButton < 0) state = buttonHot;
        DrawButton(painter, state, index, buttons);
    }
    const TRect box = toView(checkBoxRect());
    paintGlyph(painter, fieldStateGlyph(FieldState), box.Left, box.Top);
}

void TorvQDTable::DrawButton(QPainter& Painter, int State, int Index, const TRect& R) const {
    if (Index < 0 || Index >= buttonCount) return;
    const int side = buttonGlyph(0).size().width();
    const int left = R.Left + (side + 1) * Index;
    const int top = R.Top + (R.height() - side - 2) / 2;
    const QColor leftTop = State == buttonPressed                  ? QColor(Qt::black)
                           : State == buttonNormal && GetbtnFlat() ? shadowColor
                                                                   : QColor(Qt::white);
    const QColor rightBottom = State == buttonPressed ? QColor(Qt::white) : shadowColor;
    Painter.fillRect(left, top, 1, side + 1, leftTop);
    Painter.fillRect(left, top, side, 1, leftTop);
    Painter.fillRect(left + side, top, 1, side + 1, rightBottom);
    Painter.fillRect(left + 1, top + side, side, 1, rightBottom);
    const QColor ground = captionColor();
    const bool isDark = ground.lightness() < 128;
    paintGlyph(Painter, buttonGlyph(Index), left + 1, top + 1,
               isDark ? captionInk(Parent->palette(), ground) : QColor());
}

void TorvQDTable::paintRows(QPainter& painter) const {
    painter.fillRect(toView(GetClientRect()).toQRect(), GetClientColor());
    const TRect area = toView(scrolledArea());
    if (area.isEmpty()) return;
    painter.setClipRect(area.toQRect(), Qt::IntersectClip);
    // Not every vector file knows clipping: what of a row is hardly seen is left out.
    const int leastVisible = orv::paintsVectors(painter) ? ItemHeight / 2 : 1;
    const bool showsCurrent = Selected || !GetHideSelection();
    for (std::size_t index = std::size_t(std::max(0, FirstVisibleItem)); index < Items.size();
         ++index) {
        TorvQDListItem& item = *Items[index];
        TRect rect = GetItemRect(&item);
        if (area.Bottom - rect.Top - rowOffsetPx < leastVisible) break;
        rect.Right = std::min(rect.Right, area.Right);
        TSetOfItemStates state = 0;
        if (&item == CurrentItem && showsCurrent) state |= stateBit(isSelected);
        if (Selected) state |= stateBit(isFocused);
        if (&item == DropItem) state |= stateBit(isDroped);
        item.DrawItem(painter, rect.toQRect(), state, false);
    }
}

void TorvQDListItem::DrawItem(QPainter& Painter, const QRect& Rect, TSetOfItemStates State,
                              bool Flag) const {
    const IDiagramCanvas* canvas = Table->canvas();
    if (!canvas) return;
    QRect rect = Rect.adjusted(0, rowOffsetPx, 0, 0);
    paintGlyph(Painter, rowGlyph(*this), rect.left(), rect.top());
    rect.setLeft(rect.left() + Table->ItemHeight);

    QColor ground = Flag ? Table->GetClientColor() : QColor();
    QColor ink = Qt::black;
    if (State & stateBit(isSelected)) ground = selectionColor;
    if (State & stateBit(isDroped)) ground = dropColor;
    if (State & (stateBit(isSelected) | stateBit(isDroped))) ink = Qt::white;
    if (ground.isValid()) Painter.fillRect(rect, ground);

    const orv::BoxFonts& fonts = Table->fonts();
    const int lineHeight = Selected ? fonts.boldHeight : fonts.regularHeight;
    Painter.setFont(Selected ? fonts.bold : fonts.regular);
    Painter.setPen(ink);
    // Rows are as high as their letters, and lines of large fonts higher.
    const bool isCut = lineHeight > rect.height();
    if (isCut) {
        Painter.save();
        Painter.setClipRect(rect, Qt::IntersectClip);
    }
    text().draw(Painter, rect, lineHeight);
    if (isCut) Painter.restore();
    Painter.setPen(Qt::black);
    if ((State & stateBit(isFocused)) && (State & stateBit(isSelected))) drawFocus(Painter, rect);
}

const orv::TextLine& TorvQDListItem::text() const {
    const bool showsType = Table->canvas()->options().GetShowFieldsType();
    orv::RowText& made = m_text;
    if (made.isMade && made.name == Name && made.showsType == showsType &&
        (made.type == FieldType || !showsType)) {
        return made.line;
    }
    made.isMade = true;
    made.name = Name;
    made.type = FieldType;
    made.showsType = showsType;
    made.line.setText(caption());
    return made.line;
}

QString TorvQDListItem::caption() const {
    QString text = u' ' + Name;
    if (!Table->canvas() || !Table->canvas()->options().GetShowFieldsType()) return text;
    return text + QStringLiteral(" (") +
           GetDataName().replace(QStringLiteral("&&"), QStringLiteral("&")) + u')';
}
