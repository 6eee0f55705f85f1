// SPDX-License-Identifier: MIT
#include "window/CompareDialog.h"

#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QDialogButtonBox>
#include <QHash>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QSet>
#include <QSplitter>
#include <QTextBrowser>
#include <QVBoxLayout>

#include <algorithm>

namespace orvquery {

namespace {

constexpr int marginPx = 24;
constexpr int framePx = 3;
constexpr int tagPaddingPx = 4;
constexpr int listIndentPx = 20;
constexpr qreal smallestFactor = 0.6;
constexpr QSize firstSize(980, 680);
constexpr QColor changedColor(0x9a, 0x5b, 0x00);

struct Mark {
    QColor color;
    QString text;
};

// Dark enough for white letters. The words and signs are for those who cannot tell the colours.
Mark markOf(Difference::Kind kind) {
    switch (kind) {
    case Difference::Kind::Added: return {QColor(0x1b, 0x7f, 0x3b), CompareDialog::tr("+ added")};
    case Difference::Kind::Removed:
        return {QColor(0xb3, 0x26, 0x1e), CompareDialog::tr("- removed")};
    case Difference::Kind::Muted: return {changedColor, CompareDialog::tr("~ muted")};
    case Difference::Kind::Unmuted: return {changedColor, CompareDialog::tr("~ not muted")};
    case Difference::Kind::Changed:
    case Difference::Kind::Moved: break;
    }
    return {changedColor, CompareDialog::tr("~ changed")};
}

void paintFrame(QPainter& painter, const QRect& inner, int width, const QColor& color) {
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(inner.adjusted(-width, -width, width - 1, width - 1));
}

QSize tagSize(const QPainter& painter, const QString& text) {
    const QFontMetrics metrics(painter.font());
    return {metrics.horizontalAdvance(text) + 2 * tagPaddingPx, metrics.height()};
}

void paintTag(QPainter& painter, const QRect& place, const Mark& mark, const QString& text) {
    painter.fillRect(place, mark.color);
    painter.setPen(Qt::white);
    painter.drawText(place, Qt::AlignCenter, text);
}

void paintBoxMark(QPainter& painter, const QRect& box, const Mark& mark) {
    paintFrame(painter, box, framePx, mark.color);
    // Above the box; its caption stays free.
    const QSize size = tagSize(painter, mark.text);
    const QPoint place(box.left() - framePx, box.top() - framePx - size.height());
    paintTag(painter, {place, size}, mark, mark.text);
}

// The lines of a join, and on the first one the sign of the mark: boxes may be close to each other.
void paintJoinMark(QPainter& painter, const std::vector<const TorvQDLink*>& links,
                   const Mark& mark) {
    painter.setPen(QPen(mark.color, framePx));
    painter.setBrush(Qt::NoBrush);
    for (const TorvQDLink* link : links) {
        const std::vector<QPoint>& points = link->points();
        painter.drawPolyline(points.data(), int(points.size()));
    }
    const std::vector<QPoint>& points = links.front()->points();
    const std::size_t middle = points.size() / 2;
    const QString sign = mark.text.left(1);
    QRect tag(QPoint(), tagSize(painter, sign));
    tag.moveCenter((points[middle - 1] + points[middle]) / 2);
    paintTag(painter, tag, mark, sign);
}

// A row of a box. Its name stays free: of the mark there is room for the sign.
void paintRowMark(QPainter& painter, const QRect& row, const Mark& mark) {
    paintFrame(painter, row.adjusted(1, 1, -1, -1), 1, mark.color);
    const QString sign = mark.text.left(1);
    QRect tag(QPoint(), QSize(tagSize(painter, sign).width(), row.height()));
    tag.moveTopRight(row.topRight());
    paintTag(painter, tag, mark, sign);
}

std::vector<const TorvQDLink*> linksOf(const TorvQDWorkArea& diagram, const orv::QueryState& state,
                                       int join) {
    const orv::QueryState::Join& wanted = state.joins[std::size_t(join)];
    const QString alias1 = state.tables[std::size_t(wanted.table1)].alias;
    const QString alias2 = state.tables[std::size_t(wanted.table2)].alias;
    std::vector<const TorvQDLink*> links;
    for (const TorvQDLink* link : diagram.Links()) {
        const bool isOfJoin =
            link->Join->Table1->GetAlias() == alias1 && link->Join->Table2->GetAlias() == alias2;
        if (isOfJoin && link->points().size() > 1) links.push_back(link);
    }
    return links;
}

// Where the field stands that a column is; empty for an expression and for a row out of sight. In
// diagram coordinates.
QRect rowOf(const TorvQDWorkArea& diagram, const QString& source) {
    for (const TorvQDTable* table : diagram.tablesByCreation()) {
        for (const auto& item : table->Items) {
            if (item->qualifiedName() != source) continue;
            const QRect row = table->GetItemRect(item.get()).toQRect();
            const bool isShown = table->toView(table->GetClientRect()).toQRect().contains(row);
            return isShown ? row.translated(diagram.scrollPosition()) : QRect();
        }
    }
    return {};
}

// Shows a picture whole where that leaves it readable; else it can be scrolled.
class PictureArea : public QScrollArea {
public:
    PictureArea(QLabel* label, const QPixmap& picture, QWidget* parent)
        : QScrollArea(parent), m_label(label), m_picture(picture) {
        m_label->setPixmap(picture);
        setWidget(m_label);
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QScrollArea::resizeEvent(event);
        const qreal ratio = m_picture.devicePixelRatio();
        const QSizeF whole = QSizeF(m_picture.size()) / ratio;
        const QSize room = maximumViewportSize();
        const qreal factor =
            std::clamp(std::min(room.width() / whole.width(), room.height() / whole.height()),
                       smallestFactor, 1.0);
        QPixmap shown = m_picture;
        if (factor < 1.0) {
            shown = m_picture.scaled((whole * factor * ratio).toSize(), Qt::KeepAspectRatio,
                                     Qt::SmoothTransformation);
            shown.setDevicePixelRatio(ratio);
        }
        m_label->setPixmap(shown);
        m_label->adjustSize();
    }

private:
    QLabel* m_label;
    QPixmap m_picture;
};

}  // namespace

QPixmap markedDiagram(const TorvQDWorkArea& diagram, const orv::QueryState& state,
                      const std::vector<Difference>& differences, bool isBefore, qreal pixelRatio) {
    const QRect bounds = diagram.diagramBounds();
    if (bounds.isEmpty()) return {};
    const QSize size = bounds.size() + QSize(2, 2) * marginPx;
    QPixmap picture(size * pixelRatio);
    picture.setDevicePixelRatio(pixelRatio);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.translate(QPoint(marginPx, marginPx) - bounds.topLeft());
    painter.save();
    diagram.paintDiagram(painter);
    painter.restore();
    QFont font = painter.font();
    font.setBold(true);
    painter.setFont(font);
    QSet<int> marked;  // joins
    for (const Difference& difference : differences) {
        const int table = isBefore ? difference.tableBefore : difference.tableAfter;
        if (table >= 0) {
            paintBoxMark(painter, state.tables[std::size_t(table)].bounds, markOf(difference.kind));
        }
        const int column = isBefore ? difference.columnBefore : difference.columnAfter;
        if (column >= 0) {
            const QRect row = rowOf(diagram, state.columns[std::size_t(column)].source);
            if (!row.isEmpty()) paintRowMark(painter, row, markOf(difference.kind));
        }
        const int join = isBefore ? difference.joinBefore : difference.joinAfter;
        if (join < 0 || marked.contains(join)) continue;
        marked.insert(join);
        // What is added to a join or taken from it changes the join.
        const bool isOnBothSides = difference.joinBefore >= 0 && difference.joinAfter >= 0;
        const bool isMuting = difference.kind == Difference::Kind::Muted ||
                              difference.kind == Difference::Kind::Unmuted;
        const std::vector<const TorvQDLink*> links = linksOf(diagram, state, join);
        if (links.empty()) continue;
        paintJoinMark(
            painter, links,
            markOf(isOnBothSides && !isMuting ? Difference::Kind::Changed : difference.kind));
    }
    return picture;
}

CompareDialog::CompareDialog(const Side& before, const Side& after,
                             const std::vector<Difference>& differences, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(tr("Compare queries"));
    auto* text = new QTextBrowser(this);
    text->setObjectName(QStringLiteral("differences"));
    text->setAccessibleName(tr("The differences in words"));
    text->setTabChangesFocus(true);
    text->setOpenLinks(false);
    text->document()->setIndentWidth(listIndentPx);
    text->setHtml(richText(inWords(differences)));
    auto* title = new QLabel(
        tr("What is different in \"%2\", compared with \"%1\":").arg(before.title, after.title),
        this);
    title->setTextFormat(Qt::PlainText);
    title->setWordWrap(true);

    auto* diagrams = new QSplitter(Qt::Horizontal, this);
    diagrams->setChildrenCollapsible(false);
    diagrams->addWidget(makeSide(before, "before"));
    diagrams->addWidget(makeSide(after, "after"));
    // Alike wide, whatever the diagrams are.
    diagrams->setSizes({firstSize.width(), firstSize.width()});
    auto* parts = new QSplitter(Qt::Vertical, this);
    parts->setChildrenCollapsible(false);
    parts->addWidget(text);
    parts->addWidget(diagrams);
    parts->setSizes({2 * firstSize.height(), 3 * firstSize.height()});

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(parts, 1);
    layout->addWidget(buttons);
    const QSize room = screen()->availableSize();
    resize(firstSize.boundedTo(room.isEmpty() ? firstSize : room * 0.9));
    text->setFocus();
}

QWidget* CompareDialog::makeSide(const Side& side, const char* name) {
    auto* widget = new QWidget;
    auto* title = new QLabel(side.title, widget);
    title->setTextFormat(Qt::PlainText);
    auto* picture = new QLabel;
    picture->setObjectName(QLatin1String(name));
    picture->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    picture->setAutoFillBackground(true);
    QScrollArea* area = nullptr;
    if (side.diagram.isNull()) {
        picture->setText(tr("There is no table."));
        area = new QScrollArea(widget);
        area->setWidget(picture);
    } else {
        picture->setAccessibleName(tr("Diagram of %1").arg(side.title));
        area = new PictureArea(picture, side.diagram, widget);
    }
    title->setBuddy(area);
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(title);
    if (!side.note.isEmpty()) {
        auto* note = new QLabel(side.note, widget);
        note->setObjectName(QLatin1String(name) + QStringLiteral("Note"));
        note->setTextFormat(Qt::PlainText);
        note->setWordWrap(true);
        layout->addWidget(note);
    }
    layout->addWidget(area, 1);
    return widget;
}

}  // namespace orvquery
