// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;
class TorvQueryBuilder;

namespace orvquery {

/// Watches what is being typed in an editor of the control, which is no part of the query before
/// the editor is left. It disturbs nobody.
class OpenEditor : public QObject {
    Q_OBJECT

public:
    explicit OpenEditor(TorvQueryBuilder& builder);
    OpenEditor(const OpenEditor&) = delete;
    OpenEditor& operator=(const OpenEditor&) = delete;
    ~OpenEditor() override;

    /// What was typed and not taken over yet; empty when there is none.
    [[nodiscard]] QString text() const;

Q_SIGNALS:
    /// text() may have changed.
    void edited();

private:
    void focusChanged(QWidget* now);
    void typed();

    TorvQueryBuilder& m_builder;
    QPointer<QWidget> m_editor;  ///< the last one that had the focus
    bool m_isTyped = false;      ///< something was typed there since the query changed
};

}  // namespace orvquery
