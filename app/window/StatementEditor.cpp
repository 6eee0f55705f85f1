// SPDX-License-Identifier: MIT
#include "window/StatementEditor.h"

#include <QLocale>
#include <QMimeData>
#include <QTextCursor>

namespace orvquery {

StatementEditor::StatementEditor(QWidget* parent) : QPlainTextEdit(parent) {}

void StatementEditor::insertFromMimeData(const QMimeData* source) {
    const QTextCursor cursor = textCursor();
    const qsizetype replaced = cursor.selectionEnd() - cursor.selectionStart();
    // A document counts its end, too.
    const qsizetype kept = document()->characterCount() - 1 - replaced;
    const qsizetype length = kept + source->text().size();
    if (length <= mostCharacters) return QPlainTextEdit::insertFromMimeData(source);
    const QLocale locale;
    Q_EMIT refused(
        tr("Nothing was inserted: the statement would have %1 characters, and takes %2.")
            .arg(locale.toString(qlonglong(length)), locale.toString(qlonglong(mostCharacters))));
}

}  // namespace orvquery
