// SPDX-License-Identifier: MIT
#pragma once

#include "data/FieldTypes.h"

#include <QFont>
#include <QStaticText>
#include <QString>

// Texts of a box as they were laid out last: a repaint of many boxes lays out nothing that did not
// change.
namespace orv {

/// The fonts of a box. Its rows and its caption follow the weight that they need, whatever weight
/// the font of the options has.
struct BoxFonts {
    QFont regular;          ///< of the rows
    QFont bold;             ///< of the caption
    int regularHeight = 0;  ///< of a line, in pixels
    int boldHeight = 0;     ///< of a line, in pixels

    /// Makes the fonts anew when the font of the options is another one.
    void follow(const QFont& font);

private:
    QFont m_source;
    bool m_isMade = false;
};

/// One line of text. It is drawn as it stands: no mark-up, no line breaks.
class TextLine {
public:
    /// Draws the line from the left, in the middle of the rectangle's height, with the painter's
    /// font and pen, and leaves cutting to the painter's clip. Where painters know no clip, in
    /// vector files, the line ends with the last letter that fits.
    void draw(QPainter& painter, const QRect& rect, int lineHeight) const;
    /// Takes the text as it stands.
    void setText(const QString& text);

private:
    QStaticText m_text;
};

/// The text of a row, rebuilt when what it is made of changes.
struct RowText {
    QString name;                 ///< of the field, as it is written
    TFieldType type = ftUnknown;  ///< of the field
    bool showsType = false;       ///< whether the type stands behind the name
    bool isMade = false;          ///< whether `line` is of these values
    TextLine line;                ///< as it was laid out
};

/// The text of a caption, rebuilt when what it is made of or its room changes.
struct CaptionText {
    QString caption;  ///< as it was given
    QFont font;       ///< with which it was laid out
    int width = -1;   ///< of its room, in pixels; -1 before it is made
    TextLine line;    ///< as it was laid out, shortened to its room
};

}  // namespace orv
