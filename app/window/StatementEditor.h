// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>

namespace orvquery {

/// The editor of a statement. What would make the statement so long that the window stands still is
/// neither pasted nor dropped into it.
class StatementEditor : public QPlainTextEdit {
    Q_OBJECT

public:
    static constexpr qsizetype mostCharacters = 2'000'000;

    explicit StatementEditor(QWidget* parent = nullptr);

Q_SIGNALS:
    /// Nothing was inserted; one sentence that says why.
    void refused(const QString& reason);

protected:
    void insertFromMimeData(const QMimeData* source) override;
};

}  // namespace orvquery
