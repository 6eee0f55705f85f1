// SPDX-License-Identifier: MIT
// SVG files of the few elements that glyphs have.
#include "core/Error.h"
#include "toolkit/GlyphReader_p.h"

#include <QRegularExpression>

namespace orv {

namespace {

QColor colorOf(const QString& text, bool& known) {
    known = true;
    if (text == QLatin1String("none")) return {};
    known = text.startsWith(u'#') && (text.size() == 4 || text.size() == 7);
    const QColor color = known ? QColor(text) : QColor();
    known = color.isValid();
    return color;
}

/// The data of a path: commands of one letter, each with its numbers.
class PathData {
public:
    explicit PathData(const QString& text) : m_rest(text) {}

    /// False when the text holds something else than the commands that are drawn.
    [[nodiscard]] bool read(QPainterPath& path, bool& isSmooth) {
        isSmooth = false;
        skipBlanks();
        while (!m_rest.isEmpty()) {
            const QChar command = m_rest[0];
            m_rest = m_rest.mid(1);
            skipBlanks();
            if (path.elementCount() == 0 && command.toUpper() != u'M') return false;
            do {
                if (!readCommand(command, path, isSmooth)) return false;
                skipBlanks();
            } while (command.toUpper() != u'Z' && startsWithNumber());
        }
        return path.elementCount() > 0;
    }

private:
    void skipBlanks() {
        int count = 0;
        while (count < m_rest.size() && (m_rest[count].isSpace() || m_rest[count] == u',')) ++count;
        m_rest = m_rest.mid(count);
    }
    [[nodiscard]] bool startsWithNumber() const {
        return !m_rest.isEmpty() && (m_rest[0].isDigit() || m_rest[0] == u'-' || m_rest[0] == u'.');
    }
    [[nodiscard]] bool number(qreal& value) {
        static const QRegularExpression form(QStringLiteral("^-?(\\d+(\\.\\d*)?|\\.\\d+)"));
        skipBlanks();
        const QRegularExpressionMatch match = form.match(m_rest);
        if (!match.hasMatch()) return false;
        value = match.captured().toDouble();
        m_rest = m_rest.mid(match.capturedLength());
        return true;
    }
    [[nodiscard]] bool point(QPointF& value, const QPointF& origin) {
        qreal x = 0;
        qreal y = 0;
        if (!number(x) || !number(y)) return false;
        value = origin + QPointF(x, y);
        return true;
    }
    void lineTo(QPainterPath& path, const QPointF& to, bool& isSmooth) const {
        const QPointF from = path.currentPosition();
        if (from.x() != to.x() && from.y() != to.y()) isSmooth = true;
        path.lineTo(to);
    }
    [[nodiscard]] bool readCommand(QChar command, QPainterPath& path, bool& isSmooth) {
        const bool isRelative = command.isLower();
        const QPointF here = path.currentPosition();
        const QPointF origin = isRelative ? here : QPointF();
        QPointF to;
        qreal value = 0;
        switch (command.toUpper().unicode()) {
        case u'M':
            // Further points of a move would be lines; no file of ours needs them.
            if (!point(to, origin)) return false;
            path.moveTo(to);
            skipBlanks();
            return !startsWithNumber();
        case u'L':
            if (!point(to, origin)) return false;
            lineTo(path, to, isSmooth);
            return true;
        case u'H':
            if (!number(value)) return false;
            path.lineTo(origin.x() + value, here.y());
            return true;
        case u'V':
            if (!number(value)) return false;
            path.lineTo(here.x(), origin.y() + value);
            return true;
        case u'C': {
            QPointF first;
            QPointF second;
            if (!point(first, origin) || !point(second, origin) || !point(to, origin)) return false;
            path.cubicTo(first, second, to);
            isSmooth = true;
            return true;
        }
        case u'Z': {
            const QPointF start = subpathStart(path);
            if (here.x() != start.x() && here.y() != start.y()) isSmooth = true;
            path.closeSubpath();
            return true;
        }
        default: return false;
        }
    }
    [[nodiscard]] static QPointF subpathStart(const QPainterPath& path) {
        for (int index = path.elementCount(); index-- > 0;) {
            if (path.elementAt(index).isMoveTo()) return path.elementAt(index);
        }
        return {};
    }

    QString m_rest;
};

}  // namespace

void GlyphReader::fail(const QString& what) const {
    throw Error(QStringLiteral("line %1: %2").arg(m_xml.lineNumber()).arg(what));
}

QString GlyphReader::take(const char* name) {
    const QLatin1String wanted(name);
    for (qsizetype index = 0; index < m_attributes.size(); ++index) {
        if (m_attributes[index].qualifiedName() != wanted) continue;
        QString value = m_attributes[index].value().toString().trimmed();
        m_attributes.removeAt(index);
        return value;
    }
    return {};
}

qreal GlyphReader::takeNumber(const char* name, qreal absent) {
    const QString text = take(name);
    if (text.isEmpty()) return absent;
    bool isNumber = false;
    const qreal value = text.toDouble(&isNumber);
    if (!isNumber) fail(QStringLiteral("\"%1\" is no number").arg(text));
    return value;
}

void GlyphReader::requireNothingLeft() const {
    if (m_attributes.isEmpty()) return;
    fail(QStringLiteral("attribute %1 is not supported")
             .arg(m_attributes.first().qualifiedName().toString()));
}

void GlyphReader::readRoot(Glyph& glyph) {
    m_attributes = m_xml.attributes();
    const QStringList box = take("viewBox").split(u' ', Qt::SkipEmptyParts);
    if (box.size() != 4) fail(QStringLiteral("a viewBox of four numbers is missing"));
    glyph.m_viewBox =
        QRectF(box[0].toDouble(), box[1].toDouble(), box[2].toDouble(), box[3].toDouble());
    if (glyph.m_viewBox.isEmpty()) fail(QStringLiteral("the viewBox is empty"));
    glyph.m_size = QSizeF(takeNumber("width", glyph.m_viewBox.width()),
                          takeNumber("height", glyph.m_viewBox.height()))
                       .toSize();
    requireNothingLeft();
}

void GlyphReader::readGeometry(Glyph::Shape& shape) {
    const auto element = m_xml.name();
    if (element == QLatin1String("rect")) {
        shape.isRect = true;
        const qreal x = takeNumber("x", 0);
        const qreal y = takeNumber("y", 0);
        const qreal width = takeNumber("width", 0);
        shape.rect = QRectF(x, y, width, takeNumber("height", 0));
        shape.radius = takeNumber("rx", 0);
        shape.isSmooth = shape.radius > 0;
        if (shape.rect.isEmpty()) fail(QStringLiteral("the rectangle is empty"));
    } else if (element == QLatin1String("circle") || element == QLatin1String("ellipse")) {
        const QPointF centre(takeNumber("cx", 0), takeNumber("cy", 0));
        const bool isCircle = element == QLatin1String("circle");
        const qreal rx = takeNumber(isCircle ? "r" : "rx", 0);
        const qreal ry = isCircle ? rx : takeNumber("ry", 0);
        if (rx <= 0 || ry <= 0) fail(QStringLiteral("the ellipse is empty"));
        shape.path.addEllipse(centre, rx, ry);
        shape.isSmooth = true;
    } else if (element == QLatin1String("path")) {
        const QString data = take("d");
        if (!PathData(data).read(shape.path, shape.isSmooth)) {
            fail(QStringLiteral("the path \"%1\" is not supported").arg(data));
        }
        shape.path.setFillRule(Qt::WindingFill);
    } else {
        fail(QStringLiteral("element <%1> is not supported").arg(element.toString()));
    }
}

void GlyphReader::readPaint(Glyph::Shape& shape) {
    const auto takeColor = [this](const char* name, QColor& color) {
        const QString text = take(name);
        if (text.isEmpty()) return;
        bool known = false;
        color = colorOf(text, known);
        if (!known) fail(QStringLiteral("colour \"%1\" is not supported").arg(text));
    };
    const auto takeWord = [this](const char* name, std::initializer_list<const char*> words) {
        const QString text = take(name);
        if (text.isEmpty()) return 0;
        int index = 0;
        for (const char* word : words) {
            if (text == QLatin1String(word)) return index;
            ++index;
        }
        fail(QStringLiteral("%1=\"%2\" is not supported").arg(QLatin1String(name), text));
    };
    takeColor("fill", shape.fill);
    takeColor("stroke", shape.stroke);
    shape.strokeWidth = takeNumber("stroke-width", 1);
    if (shape.strokeWidth <= 0) fail(QStringLiteral("a line has no width"));
    const Qt::PenCapStyle caps[] = {Qt::FlatCap, Qt::RoundCap, Qt::SquareCap};
    shape.cap = caps[takeWord("stroke-linecap", {"butt", "round", "square"})];
    const Qt::PenJoinStyle joins[] = {Qt::SvgMiterJoin, Qt::RoundJoin, Qt::BevelJoin};
    shape.join = joins[takeWord("stroke-linejoin", {"miter", "round", "bevel"})];
    if (!shape.fill.isValid() && !shape.stroke.isValid()) fail(QStringLiteral("nothing is drawn"));
}

Glyph::Shape GlyphReader::readShape() {
    Glyph::Shape shape;
    m_attributes = m_xml.attributes();
    readGeometry(shape);
    readPaint(shape);
    requireNothingLeft();
    while (m_xml.readNext() == QXmlStreamReader::Comment || m_xml.isWhitespace()) {
    }
    if (!m_xml.isEndElement()) fail(QStringLiteral("a shape has content"));
    return shape;
}

Glyph GlyphReader::read() {
    Glyph glyph;
    if (!m_xml.readNextStartElement() || m_xml.name() != QLatin1String("svg")) {
        fail(QStringLiteral("there is no <svg>"));
    }
    readRoot(glyph);
    while (!m_xml.atEnd()) {
        const QXmlStreamReader::TokenType token = m_xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            glyph.m_shapes.push_back(readShape());
        } else if (token == QXmlStreamReader::Characters && !m_xml.isWhitespace()) {
            fail(QStringLiteral("text is not supported"));
        }
    }
    if (m_xml.hasError()) fail(m_xml.errorString());
    if (glyph.m_shapes.empty()) fail(QStringLiteral("there is no shape"));
    return glyph;
}

}  // namespace orv
